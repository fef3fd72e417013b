// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_COUNTBELOW_H
#define ORV_HOST_CLIENT_COUNTBELOW_H

#include <string>
#include <vector>

namespace OrvHost {

class ClientSession;

/// The classes whose objects can stand below \p dn, external; empty: at the top level.
std::vector<std::string> childClassesOf(ClientSession& session, const std::string& dn);

/// How many objects stand below \p dn, external, on all levels. Ctrl-C ends it.
unsigned long long countBelow(ClientSession& session, unsigned long txHandle,
                              const std::string& dn);

}

#endif
