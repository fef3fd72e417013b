// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_ORV_COMMON_LOGGINGWRAPPER_H
#define ORV_ORV_COMMON_LOGGINGWRAPPER_H

#include "VekMwSpiTrace.h"

#include <atomic>
#include <functional>
#include <mutex>
#include <string>

namespace Orv {

/// Where traces come from: the component, and what components have in common. Constants.
struct Trace {
    static const VekMwSpiTraceSubsystemHandle_2T ExtCm;
    static const VekMwSpiTraceSubsystemHandle_2T Common;
};

/// One line that a component wrote, as the sink gets it.
struct LogRecord {
    enum class Form {
        Trace,   ///< trace_printf: `kind` is set
        TraceV2, ///< trace_v2_printf: `subsystem` and `level` are set
        Log      ///< log_printf: `level` and `flag` are set; there is no `file`
    };
    Form form = Form::Log;
    VekMwSpiTraceSubsystemHandle_2T subsystem = 0;
    int level = 0;
    int kind = 0; ///< 9 entry of a function, 10 exit, 0 in between
    int flag = 0;
    std::string file;
    std::string function;
    int line = 0;
    std::string text;
};

/// The one way out for traces and logs of every component in the process. Conventions:
/// OrvConventions.h.
///
/// For the host there are setLevel and setSink; the rest is for components.
///
/// A component asks get_level() first and calls only what the level lets through; the wrapper hands
/// on every record that it is given. Each message of a component comes twice, in an old and a new
/// form, so a sink that wants each once keeps one of the forms.
///
/// If memory is too short for a record, it is dropped: no operation fails because of what it has
/// to say, and none of the three writers throws. All texts that go in are borrowed and not null;
/// `format` is a printf format and fits its arguments.
///
/// Threads: every operation, any thread, also before main and after it. A component may write while
/// it holds a lock: see setSink.
class LoggingWrapper {
public:
    using Sink = std::function<void(const LogRecord&)>;

    /// The one object, built on first use. Owned by the library; never null.
    static LoggingWrapper* instance();

    LoggingWrapper(const LoggingWrapper&) = delete;
    LoggingWrapper& operator=(const LoggingWrapper&) = delete;

    /// Traces are meant for levels above 7, logs of level 3, 4 and 6 for levels above 2, 3 and 5.
    unsigned int get_level() const;

    /// A trace in the old form. `file`: the source's path in its project, without an ending.
    /// `kind`: 9 for the entry of a function, 10 for its exit, 0 for what lies between.
    void trace_printf(const char* file, const char* function, int line, int kind,
                      const char* format, ...) __attribute__((format(printf, 6, 7)));
    /// A trace or a log in the new form. `subsystem`: one of Trace. `level`: 14 for a trace, the
    /// log's own level for a log.
    void trace_v2_printf(VekMwSpiTraceSubsystemHandle_2T subsystem, VekMwSpiTraceLevelT level,
                         const char* file, const char* function, int line, const char* format, ...)
        __attribute__((format(printf, 7, 8)));
    /// A log in the old form. `level`: 3, 4 or 6, where 3 weighs most. `flag`: always 1.
    void log_printf(const char* function, int level, int flag, const char* format, ...)
        __attribute__((format(printf, 5, 6)));

    /// Host only. The level at first is 4, which lets logs of level 3 and 4 through.
    void setLevel(unsigned int level);

    /// Host only: where records go. Called on the thread that writes the record, one call at a
    /// time, and with locks of the component held. A sink must not log and must not call a
    /// component. Its record is borrowed. A record for which it throws a std::exception is dropped.
    /// Null: all records are dropped, which is the state at first. When this returns, the previous
    /// sink is no longer running.
    void setSink(Sink sink);

private:
    LoggingWrapper() = default;
    ~LoggingWrapper() = default;

    /// \p fill makes the record.
    template <class Fill>
    void write(const Fill& fill);

    std::atomic<unsigned int> mLevel{4};
    std::mutex mMutex; ///< guards mSink
    Sink mSink;
};

}

#endif
