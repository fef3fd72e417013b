// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_COMPONENT_SUPPORT_LOGCAPTURE_H
#define ORV_TESTS_COMPONENT_SUPPORT_LOGCAPTURE_H

#include "LoggingWrapper.h"

#include <mutex>
#include <string>
#include <vector>

namespace Scripted {

/// Collects all that is logged and traced while it lives; afterwards the wrapper is as at first.
///
/// Threads: every operation, any thread.
class LogCapture {
public:
    LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;
    ~LogCapture();

    std::vector<Orv::LogRecord> records() const;

    /// One line for each record: "trace 9 existsMo: text" (with the kind),
    /// "trace2 ExtCm 14 existsMo: text" (with subsystem and level), "log 3 start: text" (with the
    /// level).
    std::vector<std::string> lines() const;

    void forget();

private:
    mutable std::mutex mMutex;
    std::vector<Orv::LogRecord> mRecords;
};

}

#endif
