// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "LogCapture.h"

#include "HostCode.h"

namespace Scripted {

namespace {

constexpr unsigned int kFirstLevel = 4;

std::string subsystemName(VekMwSpiTraceSubsystemHandle_2T subsystem) {
    if (subsystem == Orv::Trace::ExtCm) {
        return "ExtCm";
    }
    return subsystem == Orv::Trace::Common ? "Common" : std::to_string(subsystem);
}

std::string lineOf(const Orv::LogRecord& record) {
    const std::string rest = record.function + ": " + record.text;
    switch (record.form) {
    case Orv::LogRecord::Form::Trace:
        return "trace " + std::to_string(record.kind) + " " + rest;
    case Orv::LogRecord::Form::TraceV2:
        return "trace2 " + subsystemName(record.subsystem) + " " + std::to_string(record.level) +
               " " + rest;
    case Orv::LogRecord::Form::Log:
        return "log " + std::to_string(record.level) + " " + rest;
    }
    return rest;
}

}

LogCapture::LogCapture() {
    Orv::LoggingWrapper::instance()->setSink([this](const Orv::LogRecord& record) {
        const HostCode here;
        const std::lock_guard<std::mutex> guard(mMutex);
        mRecords.push_back(record);
    });
}

LogCapture::~LogCapture() {
    Orv::LoggingWrapper::instance()->setSink(nullptr);
    Orv::LoggingWrapper::instance()->setLevel(kFirstLevel);
}

std::vector<Orv::LogRecord> LogCapture::records() const {
    const std::lock_guard<std::mutex> guard(mMutex);
    return mRecords;
}

std::vector<std::string> LogCapture::lines() const {
    std::vector<std::string> lines;
    for (const Orv::LogRecord& record : records()) {
        lines.push_back(lineOf(record));
    }
    return lines;
}

void LogCapture::forget() {
    const std::lock_guard<std::mutex> guard(mMutex);
    mRecords.clear();
}

}
