// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_TRACING_H
#define ORV_EXT_CM_TRACING_H

#include "LoggingWrapper.h"
#include "OrvReturn.h"

#include <atomic>
#include <cstddef>
#include <exception>
#include <string_view>

/// \file
/// Traces and logs. Every message goes out in the old and in the new form, under one gate on the
/// level; below the gate nothing is evaluated. These are macros because a message carries the plain
/// name of the function that it stands in and its line, and because the compiler then checks each
/// format against its arguments. Not for use inside a lambda, which has no name of its own.
///
///     OrvReturnT Thing::doIt(const char* dn) {
///         ORV_TRACE_ENTRY(" >> dn: %s", dn);
///         ...
///         return ORV_TRACE_RESULT(code);
///     }

namespace OrvExtCmRouterService {

/// The name under which a source traces: its path in the repository, without the extension. Made
/// at compile time, so that no path of the building machine gets into the binary.
template <std::size_t Size>
class SourceName {
public:
    constexpr explicit SourceName(const char (&path)[Size]) {
        const std::string_view whole(path, Size - 1);
        const std::size_t root = whole.rfind("src/ext_cm/");
        const std::string_view name = whole.substr(
            root == std::string_view::npos ? 0 : root,
            root == std::string_view::npos ? whole.rfind('.') : whole.rfind('.') - root);
        name.copy(mText, name.size());
    }

    constexpr const char* text() const { return mText; }

private:
    char mText[Size] = {};
};

/// What the kinds of traces are called in the old form.
enum TraceKind : int { TraceBetween = 0, TraceEntry = 9, TraceExit = 10 };

constexpr unsigned int traceGate = 7;          ///< traces go out above this level
constexpr VekMwSpiTraceLevelT traceLevel = 14; ///< the level of traces in the new form

/// The place that a message comes from. An operation hands its own on to the steps that it is made
/// of: readers of a log know the operation, not the step.
struct TracePoint {
    const char* file;
    const char* function;
    int line;
};

/// What logging() knows. Null until somebody asks for it.
inline constinit std::atomic<Orv::LoggingWrapper*> knownLogging{nullptr};

/// Asks for the wrapper and keeps it.
[[gnu::cold]] Orv::LoggingWrapper* lookUpLogging();

/// Where messages go. Asked for once: the wrapper stays for the life of the process, and each
/// operation looks at the level twice and more.
inline Orv::LoggingWrapper* logging() {
    Orv::LoggingWrapper* const known = knownLogging.load(std::memory_order_acquire);
    return known != nullptr ? known : lookUpLogging();
}

inline bool isTracing() {
    return logging()->get_level() > traceGate;
}

/// A text for a message. Clients may hand over null, and not every formatter takes that.
inline const char* shown(const char* text) {
    return text != nullptr ? text : "(null)";
}

// The writers below are called above the gate only. They stand apart from the functions that trace,
// so that little of a trace that is not written is executed.

/// Writes the exit of a function with its code. The first three are those of a TracePoint: as one
/// they would be put together also for an exit that is not traced.
[[gnu::cold]] void writeResult(const char* file, const char* function, int line, OrvReturnT code);

/// For the compiler, which compares \p format with what comes after it. Never called.
void checkFormat(const char* format, ...) __attribute__((format(printf, 1, 2)));

// Their formats are those that checkFormat has been shown.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#pragma GCC diagnostic ignored "-Wformat-security"

/// Writes a trace. \p arguments are what \p format names.
template <class... Arguments>
[[gnu::cold, gnu::noinline]] void writeTrace(TracePoint point, TraceKind kind, const char* format,
                                             Arguments... arguments) {
    Orv::LoggingWrapper* const wrapper = logging();
    wrapper->trace_printf(point.file, point.function, point.line, kind, format, arguments...);
    wrapper->trace_v2_printf(Orv::Trace::ExtCm, traceLevel, point.file, point.function, point.line,
                             format, arguments...);
}

/// Writes a log of \p level.
template <class... Arguments>
[[gnu::cold, gnu::noinline]] void writeLog(TracePoint point, int level, const char* format,
                                           Arguments... arguments) {
    Orv::LoggingWrapper* const wrapper = logging();
    wrapper->log_printf(point.function, level, 1, format, arguments...);
    wrapper->trace_v2_printf(Orv::Trace::ExtCm, level, point.file, point.function, point.line,
                             format, arguments...);
}

#pragma GCC diagnostic pop

/// Traces \p code as the result of a function, and gives it back. A trace that cannot be written is
/// left out: no std::exception leaves this function.
inline OrvReturnT traceResult(const char* file, const char* function, int line, OrvReturnT code) {
    try {
        if (isTracing()) [[unlikely]] {
            writeResult(file, function, line, code);
        }
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch)
        // The operation is done and its outputs belong to the caller: an answer of failure now
        // would make the caller leave what it has been given.
    }
    return code;
}

/// The same for the function at \p point.
inline OrvReturnT traceResult(const TracePoint& point, OrvReturnT code) {
    return traceResult(point.file, point.function, point.line, code);
}

}

#define ORV_SOURCE_NAME                                                                            \
    ([]() -> const char* {                                                                         \
        static constexpr ::OrvExtCmRouterService::SourceName orvSourceName(__FILE__);              \
        return orvSourceName.text();                                                               \
    }())

/// The place that this stands in.
#define ORV_TRACE_POINT (::OrvExtCmRouterService::TracePoint{ORV_SOURCE_NAME, __func__, __LINE__})

#define ORV_TRACE_OF_KIND(point, kind, ...)                                                        \
    do {                                                                                           \
        if (::OrvExtCmRouterService::isTracing()) [[unlikely]] {                                   \
            if (false) {                                                                           \
                ::OrvExtCmRouterService::checkFormat(__VA_ARGS__);                                 \
            }                                                                                      \
            ::OrvExtCmRouterService::writeTrace((point), (kind), __VA_ARGS__);                     \
        }                                                                                          \
    } while (false)

/// Traces the entry of a function, its exit, or something in between.
#define ORV_TRACE_ENTRY(...)                                                                       \
    ORV_TRACE_OF_KIND(ORV_TRACE_POINT, ::OrvExtCmRouterService::TraceEntry, __VA_ARGS__)
#define ORV_TRACE_EXIT(...)                                                                        \
    ORV_TRACE_OF_KIND(ORV_TRACE_POINT, ::OrvExtCmRouterService::TraceExit, __VA_ARGS__)
#define ORV_TRACE(...) ORV_TRACE_AT(ORV_TRACE_POINT, __VA_ARGS__)

/// The last of these for a step, in the name of the operation at \p point.
#define ORV_TRACE_AT(point, ...)                                                                   \
    ORV_TRACE_OF_KIND(point, ::OrvExtCmRouterService::TraceBetween, __VA_ARGS__)

/// Evaluates to a code and traces it as the function's exit: `return ORV_TRACE_RESULT(code);`
#define ORV_TRACE_RESULT(code)                                                                     \
    ::OrvExtCmRouterService::traceResult(ORV_SOURCE_NAME, __func__, __LINE__, (code))

/// Logs at level 3 (grave), 4 or 6 (for information).
#define ORV_LOG(level, ...) ORV_LOG_AT(ORV_TRACE_POINT, level, __VA_ARGS__)

/// The same for a step, in the name of the operation at \p point.
#define ORV_LOG_AT(point, level, ...)                                                              \
    do {                                                                                           \
        if (::OrvExtCmRouterService::logging()->get_level() > (level)-1U) [[unlikely]] {           \
            if (false) {                                                                           \
                ::OrvExtCmRouterService::checkFormat(__VA_ARGS__);                                 \
            }                                                                                      \
            ::OrvExtCmRouterService::writeLog((point), (level), __VA_ARGS__);                      \
        }                                                                                          \
    } while (false)

#endif
