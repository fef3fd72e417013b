// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_CORE_SERVERLOG_H
#define ORV_HOST_NETCONF_CORE_SERVERLOG_H

#include <string>

namespace OrvHost {

/// Writes a line about what the server does to the log: \p level is 3 (error), 4 (warning) or 6
/// (information). No secrets. Any thread.
void logServer(int level, const std::string& text);

}

#endif
