// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_CORE_SERVERLOG_H
#define ORV_HOST_NETCONF_CORE_SERVERLOG_H

#include <string>

namespace OrvHost {

/// Writes a line about what the server does to the log: \p level is 3 (error), 4 (warning) or 6
/// (information). No secrets. Any thread.
void logServer(int level, const std::string& text);

/// Logs the exception that is being handled, after \p what. If that is not possible, nothing is
/// logged.
void logFailure(const char* what) noexcept;

/// Calls \p work. What it throws is logged, after \p what, and goes no further: at the top of a
/// thread, or below a library in C, it would end the process. False if it has thrown.
template <class Work>
bool contain(const char* what, const Work& work) noexcept {
    try {
        work();
        return true;
    } catch (...) {
        logFailure(what);
        return false;
    }
}

}

#endif
