// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "messages/Tracing.h"

#include "OrvReturnText.h"

namespace OrvExtCmRouterService {

// Threads that come here at once get the same answer.
Orv::LoggingWrapper* lookUpLogging() {
    Orv::LoggingWrapper* const wrapper = Orv::LoggingWrapper::instance();
    knownLogging.store(wrapper, std::memory_order_release);
    return wrapper;
}

// The text is asked for twice: that of a host's own code ends when the sink asks for another.
void writeResult(const char* file, const char* function, int line, OrvReturnT code) {
    Orv::LoggingWrapper* const wrapper = logging();
    wrapper->trace_printf(file, function, line, TraceExit, " << ret: %s",
                          Orv::OrvReturn::strerror(code));
    wrapper->trace_v2_printf(Orv::Trace::ExtCm, traceLevel, file, function, line, " << ret: %s",
                             Orv::OrvReturn::strerror(code));
}

}
