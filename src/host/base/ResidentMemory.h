// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_BASE_RESIDENTMEMORY_H
#define ORV_HOST_BASE_RESIDENTMEMORY_H

#include <cstdint>

namespace OrvHost {

/// The number of bytes of the process that are in memory; 0 if the system does not tell.
std::int64_t residentBytes();

}

#endif
