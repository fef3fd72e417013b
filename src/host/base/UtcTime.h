// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_BASE_UTCTIME_H
#define ORV_HOST_BASE_UTCTIME_H

#include <ctime>
#include <string>

namespace OrvHost {

/// "2026-01-31T12:00:00Z", for a time in seconds since 1970.
std::string utcText(std::time_t seconds);

}

#endif
