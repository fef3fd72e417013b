// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_UNIT_ORV_COMMON_LOGCAPTURE_H
#define ORV_TESTS_UNIT_ORV_COMMON_LOGCAPTURE_H

#include "LoggingWrapper.h"

#include <vector>

/// Keeps what is logged while it lives, and leaves the wrapper as it is in a new process.
class LogCapture {
public:
    explicit LogCapture(unsigned int level = 4) {
        Orv::LoggingWrapper::instance()->setLevel(level);
        Orv::LoggingWrapper::instance()->setSink(
            [this](const Orv::LogRecord& record) { records.push_back(record); });
    }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;
    ~LogCapture() {
        Orv::LoggingWrapper::instance()->setSink(nullptr);
        Orv::LoggingWrapper::instance()->setLevel(4);
    }

    std::vector<Orv::LogRecord> records;
};

#endif
