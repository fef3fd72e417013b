// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "messages/Tracing.h"

#include "OrvReturnText.h"

#include <exception>

namespace OrvExtCmRouterService {

namespace {

void writeResult(const TracePoint& point, OrvReturnT code) {
    Orv::LoggingWrapper* const wrapper = Orv::LoggingWrapper::instance();
    if (wrapper->get_level() > traceGate) {
        // Asked for twice: the text of a host's own code ends when the sink asks for another.
        wrapper->trace_printf(point.file, point.function, point.line, TraceExit, " << ret: %s",
                              Orv::OrvReturn::strerror(code));
        wrapper->trace_v2_printf(Orv::Trace::ExtCm, traceLevel, point.file, point.function,
                                 point.line, " << ret: %s", Orv::OrvReturn::strerror(code));
    }
}

}

OrvReturnT traceResult(const TracePoint& point, OrvReturnT code) {
    try {
        writeResult(point, code);
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch)
        // The operation is done and its outputs belong to the caller: an answer of failure now
        // would make the caller leave what it has been given.
    }
    return code;
}

}
