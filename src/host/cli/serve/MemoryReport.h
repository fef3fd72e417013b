// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_SERVE_MEMORYREPORT_H
#define ORV_HOST_CLI_SERVE_MEMORYREPORT_H

#include "runtime/WorkListGauge.h"

#include <cstdint>

namespace OrvHost {

/// Tells in the log how much memory the server has, and how much of it the component's work list
/// takes, which lasts until the program ends. One thread.
class MemoryReport {
public:
    /// Writes a line of information; a warning as soon as the list has 256 MB, and then each time
    /// it has doubled. \p resident: bytes of the process that are in memory.
    void log(const WorkListGauge::Size& workList, std::int64_t resident);

private:
    std::int64_t mNextWarning = std::int64_t{256} * 1024 * 1024;
};

}

#endif
