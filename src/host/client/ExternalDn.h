// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_EXTERNALDN_H
#define ORV_HOST_CLIENT_EXTERNALDN_H

#include <string>
#include <string_view>

namespace OrvHost {

/// What clients call the object with that internal DN; \p internal as it is if they cannot name it.
std::string externalDn(std::string_view internal);

}

#endif
