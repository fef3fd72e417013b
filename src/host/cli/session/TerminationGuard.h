// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_SESSION_TERMINATIONGUARD_H
#define ORV_HOST_CLI_SESSION_TERMINATIONGUARD_H

#include "client/CancellationToken.h"

#include <array>

#include <signal.h>

namespace OrvHost {

/// For work that must put something in order before the program ends. While it lives, a signal that
/// asks the program to end (Ctrl-C, SIGTERM, the end of the terminal) cancels the token instead;
/// the destructor sends the signal again, which then ends the program. A signal that is ignored or
/// has a handler, such as Ctrl-C at the prompt, stays as it is.
///
/// Only one at a time, on one thread.
class TerminationGuard {
public:
    /// \p token is borrowed.
    explicit TerminationGuard(CancellationToken& token);
    ~TerminationGuard();
    TerminationGuard(const TerminationGuard&) = delete;
    TerminationGuard& operator=(const TerminationGuard&) = delete;

private:
    static constexpr std::array kSignals{SIGINT, SIGTERM, SIGHUP};

    std::array<struct sigaction, kSignals.size()> mBefore{};
};

}

#endif
