// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_RUNTIME_LOGSINK_H
#define ORV_HOST_RUNTIME_LOGSINK_H

#include "LoggingWrapper.h"

#include <cstddef>
#include <deque>
#include <fstream>
#include <mutex>
#include <ostream>
#include <string>
#include <vector>

namespace OrvHost {

enum class LogFormat { Text, Json };

/// Receives what components log and trace and writes one line for each message, as text or as a
/// JSON document, to a stream or a file. Also keeps the latest lines in memory.
///
/// Components send each message in two forms. This sink keeps the newer form, since only that has
/// the subsystem and the level of traces and the source line of logs, and drops the older one.
///
/// Threads: any, once it is built.
class LogSink {
public:
    /// The largest number of lines that recent() can return.
    static constexpr std::size_t kKept = 1000;

    /// Becomes the log sink of the process. \p stream is borrowed.
    LogSink(std::ostream& stream, LogFormat format);

    /// The same with a file; lines are appended to it. Throws std::runtime_error, with the path and
    /// the reason, if it cannot be opened.
    LogSink(const std::string& path, LogFormat format);

    /// After this, records are dropped.
    ~LogSink();
    LogSink(const LogSink&) = delete;
    LogSink& operator=(const LogSink&) = delete;

    /// Writes one record, as it comes from Orv::LoggingWrapper.
    void write(const Orv::LogRecord& record);

    /// Up to \p count of the latest lines, the oldest first, without line ends.
    std::vector<std::string> recent(std::size_t count) const;

    /// True if all lines so far have reached the stream or the file.
    bool isComplete() const;

    LogFormat format() const { return mFormat; }

    /// Opens the file again by its name, after somebody has moved the old one away; does nothing
    /// for a stream. False if it cannot be opened: the old one is used on.
    bool reopen();

private:
    void install();

    const std::string mPath; ///< empty: a stream of somebody else
    std::ofstream mFile;
    std::ostream& mStream;
    const LogFormat mFormat;
    mutable std::mutex mMutex; ///< guards the stream and mRecent
    std::deque<std::string> mRecent;
};

/// The name of a level: "error", "warning", "info", "trace", or its number.
std::string logLevelName(int level);

}

#endif
