// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "messages/Tracing.h"

#include "OrvReturnText.h"

namespace OrvExtCmRouterService {

// The text is asked for twice: that of a host's own code ends when the sink asks for another.
void writeResult(const TracePoint& point, OrvReturnT code) {
    Orv::LoggingWrapper* const wrapper = logging();
    wrapper->trace_printf(point.file, point.function, point.line, TraceExit, " << ret: %s",
                          Orv::OrvReturn::strerror(code));
    wrapper->trace_v2_printf(Orv::Trace::ExtCm, traceLevel, point.file, point.function, point.line,
                             " << ret: %s", Orv::OrvReturn::strerror(code));
}

}
