// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_TRACING_H
#define ORV_EXT_CM_TRACING_H

#include "LoggingWrapper.h"
#include "OrvReturn.h"

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

/// Where messages go. Asked for once: the wrapper stays for the life of the process, and each
/// operation looks at the level twice and more.
inline Orv::LoggingWrapper* logging() {
    static Orv::LoggingWrapper* const theWrapper = Orv::LoggingWrapper::instance();
    return theWrapper;
}

inline bool isTracing() {
    return logging()->get_level() > traceGate;
}

/// A text for a message. Clients may hand over null, and not every formatter takes that.
inline const char* shown(const char* text) {
    return text != nullptr ? text : "(null)";
}

/// Writes the exit of a function with its code. Call it only above the gate.
void writeResult(const TracePoint& point, OrvReturnT code);

/// Traces \p code as the result of the function at \p point, and gives it back. A trace that cannot
/// be written is left out: no std::exception leaves this function.
inline OrvReturnT traceResult(const TracePoint& point, OrvReturnT code) {
    try {
        if (isTracing()) [[unlikely]] {
            writeResult(point, code);
        }
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch)
        // The operation is done and its outputs belong to the caller: an answer of failure now
        // would make the caller leave what it has been given.
    }
    return code;
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
        ::Orv::LoggingWrapper* const orvWrapper = ::OrvExtCmRouterService::logging();              \
        if (orvWrapper->get_level() > ::OrvExtCmRouterService::traceGate) [[unlikely]] {           \
            const ::OrvExtCmRouterService::TracePoint orvPoint = (point);                          \
            orvWrapper->trace_printf(orvPoint.file, orvPoint.function, orvPoint.line, kind,        \
                                     __VA_ARGS__);                                                 \
            orvWrapper->trace_v2_printf(::Orv::Trace::ExtCm, ::OrvExtCmRouterService::traceLevel,  \
                                        orvPoint.file, orvPoint.function, orvPoint.line,           \
                                        __VA_ARGS__);                                              \
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
#define ORV_TRACE_RESULT(code) ::OrvExtCmRouterService::traceResult(ORV_TRACE_POINT, (code))

/// Logs at level 3 (grave), 4 or 6 (for information).
#define ORV_LOG(level, ...) ORV_LOG_AT(ORV_TRACE_POINT, level, __VA_ARGS__)

/// The same for a step, in the name of the operation at \p point.
#define ORV_LOG_AT(point, level, ...)                                                              \
    do {                                                                                           \
        ::Orv::LoggingWrapper* const orvWrapper = ::OrvExtCmRouterService::logging();              \
        if (orvWrapper->get_level() > (level)-1U) {                                                \
            const ::OrvExtCmRouterService::TracePoint orvPoint = (point);                          \
            orvWrapper->log_printf(orvPoint.function, level, 1, __VA_ARGS__);                      \
            orvWrapper->trace_v2_printf(::Orv::Trace::ExtCm, level, orvPoint.file,                 \
                                        orvPoint.function, orvPoint.line, __VA_ARGS__);            \
        }                                                                                          \
    } while (false)

#endif
