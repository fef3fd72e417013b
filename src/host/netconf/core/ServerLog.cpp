// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ServerLog.h"

#include "LoggingWrapper.h"

#include <exception>

namespace OrvHost {

void logServer(int level, const std::string& text) {
    Orv::LoggingWrapper& log = *Orv::LoggingWrapper::instance();
    if (static_cast<int>(log.get_level()) >= level) {
        log.trace_v2_printf(Orv::Trace::Common, static_cast<VekMwSpiTraceLevelT>(level), "netconf",
                            "server", 0, "%s", text.c_str());
    }
}

void logFailure(const char* what) noexcept {
    try {
        try {
            throw;
        } catch (const std::exception& failure) {
            logServer(3, std::string(what) + ": " + failure.what());
        } catch (...) {
            logServer(3, std::string(what) + ": an exception of an unknown type");
        }
    } catch (...) { // NOLINT(bugprone-empty-catch): there is no memory even for the text
    }
}

}
