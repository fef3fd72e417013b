// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "MemoryReport.h"

#include "base/Counted.h"
#include "netconf/core/ServerLog.h"

#include <string>

namespace OrvHost {

namespace {

std::string megabytes(std::int64_t bytes) {
    constexpr auto kMegabyte = std::int64_t{1024} * 1024;
    return std::to_string(bytes / kMegabyte) + " MB";
}

}

void MemoryReport::log(const WorkListGauge::Size& workList, std::int64_t resident) {
    const bool isWarning = workList.bytes >= mNextWarning;
    while (workList.bytes >= mNextWarning) {
        mNextWarning *= 2;
    }
    logServer(isWarning ? 4 : 6, "memory: " + megabytes(resident) + ", of which " +
                                     megabytes(workList.bytes) + " for " +
                                     counted(workList.entries, "written reference") +
                                     ", which the component keeps until the server ends");
}

}
