// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ResidentMemory.h"

#include <fstream>

#include <unistd.h>

namespace OrvHost {

std::int64_t residentBytes() {
    std::int64_t size = 0;
    std::int64_t residentPages = 0;
    std::ifstream("/proc/self/statm") >> size >> residentPages;
    return residentPages * sysconf(_SC_PAGESIZE);
}

}
