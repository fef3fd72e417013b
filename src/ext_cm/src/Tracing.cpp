// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Tracing.h"

#include "OrvReturnText.h"

namespace OrvExtCmRouterService {

OrvReturnT traceResult(const TracePoint& point, OrvReturnT code) {
    Orv::LoggingWrapper* const wrapper = Orv::LoggingWrapper::instance();
    if (wrapper->get_level() > traceGate) {
        const char* const text = Orv::OrvReturn::strerror(code);
        wrapper->trace_printf(point.file, point.function, point.line, TraceExit, " << ret: %s",
                              text);
        wrapper->trace_v2_printf(Orv::Trace::ExtCm, traceLevel, point.file, point.function,
                                 point.line, " << ret: %s", text);
    }
    return code;
}

}
