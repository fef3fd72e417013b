// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "LogSink.h"

#include "base/JsonText.h"

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <stdexcept>
#include <system_error>

namespace OrvHost {

namespace {

std::string timestamp() {
    const auto now = std::chrono::system_clock::now();
    const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
    const auto milliseconds =
        std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() %
        1000;
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    char text[80];
    std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", parts.tm_year + 1900,
                  parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec,
                  static_cast<int>(milliseconds));
    return text;
}

std::string subsystemName(VekMwSpiTraceSubsystemHandle_2T subsystem) {
    if (subsystem == Orv::Trace::ExtCm) {
        return "ext_cm";
    }
    if (subsystem == Orv::Trace::Common) {
        return "common";
    }
    return std::to_string(subsystem);
}

// A message must never look like two lines, with any characters.
std::string oneLine(const std::string& text) {
    std::string line;
    for (const char character : text) {
        if (character == '\n') {
            line += "\\n";
        } else {
            line += static_cast<unsigned char>(character) < ' ' ? ' ' : character;
        }
    }
    return line;
}

std::string textLine(const Orv::LogRecord& record) {
    return timestamp() + " " + logLevelName(record.level) + " " + subsystemName(record.subsystem) +
           " " + record.file + ":" + std::to_string(record.line) + " " + record.function + ": " +
           oneLine(record.text);
}

// Not by a document of the JSON library, whose destructor ends the process if there is no memory.
std::string jsonLine(const Orv::LogRecord& record) {
    return "{\"time\":" + jsonText(timestamp()) + ",\"level\":" + std::to_string(record.level) +
           ",\"levelName\":" + jsonText(logLevelName(record.level)) +
           ",\"subsystem\":" + jsonText(subsystemName(record.subsystem)) +
           ",\"file\":" + jsonText(record.file) + ",\"line\":" + std::to_string(record.line) +
           ",\"function\":" + jsonText(record.function) + ",\"text\":" + jsonText(record.text) +
           "}";
}

std::ofstream openForAppending(const std::string& path) {
    errno = 0;
    std::ofstream file(path, std::ios::app);
    if (!file) {
        throw std::runtime_error(
            path + ": cannot be opened for writing: " + std::generic_category().message(errno));
    }
    return file;
}

}

std::string logLevelName(int level) {
    switch (level) {
    case 3:
        return "error";
    case 4:
        return "warning";
    case 6:
        return "info";
    case 14:
        return "trace";
    default:
        return std::to_string(level);
    }
}

LogSink::LogSink(std::ostream& stream, LogFormat format) : mStream(stream), mFormat(format) {
    install();
}

LogSink::LogSink(const std::string& path, LogFormat format)
    : mPath(path), mFile(openForAppending(path)), mStream(mFile), mFormat(format) {
    install();
}

LogSink::~LogSink() {
    Orv::LoggingWrapper::instance()->setSink(nullptr);
}

void LogSink::install() {
    Orv::LoggingWrapper::instance()->setSink(
        [this](const Orv::LogRecord& record) { write(record); });
}

void LogSink::write(const Orv::LogRecord& record) {
    if (record.form != Orv::LogRecord::Form::TraceV2) {
        return;
    }
    std::string line = mFormat == LogFormat::Json ? jsonLine(record) : textLine(record);
    const std::lock_guard lock(mMutex);
    mStream << line << std::endl;
    mRecent.push_back(std::move(line));
    if (mRecent.size() > kKept) {
        mRecent.pop_front();
    }
}

bool LogSink::reopen() {
    if (mPath.empty()) {
        return true;
    }
    std::ofstream again(mPath, std::ios::app);
    if (!again) {
        return false;
    }
    const std::lock_guard lock(mMutex);
    mFile = std::move(again);
    return true;
}

bool LogSink::isComplete() const {
    const std::lock_guard lock(mMutex);
    return !mStream.fail();
}

std::vector<std::string> LogSink::recent(std::size_t count) const {
    const std::lock_guard lock(mMutex);
    const std::size_t taken = std::min(count, mRecent.size());
    return {mRecent.end() - static_cast<std::ptrdiff_t>(taken), mRecent.end()};
}

}
