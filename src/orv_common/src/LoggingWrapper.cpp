// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "LoggingWrapper.h"

#include "FormatText.h"
#include "OrvThreadLock.h"

#include <cstdarg>
#include <exception>
#include <utility>

namespace Orv {

const VekMwSpiTraceSubsystemHandle_2T Trace::ExtCm = 1;
const VekMwSpiTraceSubsystemHandle_2T Trace::Common = 2;

namespace {

// Both are ready before any constructor runs, so that static objects of a component may log.
constinit OrvThreadLock orvLoggingWrapperInstanceLock;
constinit std::atomic<LoggingWrapper*> theInstance{nullptr};

}

LoggingWrapper* LoggingWrapper::instance() {
    LoggingWrapper* wrapper = theInstance.load(std::memory_order_acquire);
    if (wrapper != nullptr) {
        return wrapper;
    }
    const std::lock_guard<OrvThreadLock> guard(orvLoggingWrapperInstanceLock);
    wrapper = theInstance.load(std::memory_order_relaxed);
    if (wrapper == nullptr) {
        // Never destroyed: static objects of other libraries may log until the process has ended.
        wrapper = new LoggingWrapper;
        theInstance.store(wrapper, std::memory_order_release);
    }
    return wrapper;
}

unsigned int LoggingWrapper::get_level() const {
    return mLevel.load(std::memory_order_relaxed);
}

void LoggingWrapper::setLevel(unsigned int level) {
    mLevel.store(level, std::memory_order_relaxed);
}

template <class Fill>
void LoggingWrapper::write(const Fill& fill) {
    try {
        LogRecord record;
        fill(record);
        const std::lock_guard<std::mutex> guard(mMutex);
        if (mSink) {
            mSink(record);
        }
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch)
        // A record that cannot be made or written must not fail the operation that it describes,
        // which may have done its work already.
    }
}

void LoggingWrapper::trace_printf(const char* file, const char* function, int line, int kind,
                                  const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    write([&](LogRecord& record) {
        record.form = LogRecord::Form::Trace;
        record.file = file;
        record.function = function;
        record.line = line;
        record.kind = kind;
        record.text = formatText(format, arguments);
    });
    va_end(arguments);
}

void LoggingWrapper::trace_v2_printf(VekMwSpiTraceSubsystemHandle_2T subsystem,
                                     VekMwSpiTraceLevelT level, const char* file,
                                     const char* function, int line, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    write([&](LogRecord& record) {
        record.form = LogRecord::Form::TraceV2;
        record.subsystem = subsystem;
        record.level = level;
        record.file = file;
        record.function = function;
        record.line = line;
        record.text = formatText(format, arguments);
    });
    va_end(arguments);
}

void LoggingWrapper::log_printf(const char* function, int level, int flag, const char* format,
                                ...) {
    std::va_list arguments;
    va_start(arguments, format);
    write([&](LogRecord& record) {
        record.form = LogRecord::Form::Log;
        record.function = function;
        record.level = level;
        record.flag = flag;
        record.text = formatText(format, arguments);
    });
    va_end(arguments);
}

void LoggingWrapper::setSink(Sink sink) {
    // The previous sink goes when `sink` goes, after the lock is free: its destructor may log.
    const std::lock_guard<std::mutex> guard(mMutex);
    mSink.swap(sink);
}

}
