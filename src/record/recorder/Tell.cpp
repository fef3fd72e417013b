// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Tell.h"

#include "LoggingWrapper.h"

namespace OrvRecord {

void tell(const std::string& text) noexcept {
    Orv::LoggingWrapper* const log = Orv::LoggingWrapper::instance();
    if (log->get_level() <= 2) {
        return;
    }
    // The host did not ask for this line: what its sink throws must not reach it.
    const auto write = [](const auto& line) {
        try {
            line();
        } catch (...) { // NOLINT(bugprone-empty-catch): there is nobody to tell
        }
    };
    write([&] { log->log_printf("tell", 3, 1, "orv-record: %s", text.c_str()); });
    write([&] {
        log->trace_v2_printf(Orv::Trace::ExtCm, 3, "src/record/recorder/Tell", "tell", __LINE__,
                             "orv-record: %s", text.c_str());
    });
}

}
