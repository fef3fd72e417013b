// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_SESSION_INTERRUPTGUARD_H
#define ORV_HOST_CLI_SESSION_INTERRUPTGUARD_H

#include "client/CancellationToken.h"

#include <signal.h>

namespace OrvHost {

/// For a command at the prompt. While it lives, Ctrl-C cancels the token, and nothing ends. A
/// second Ctrl-C within a second asks at the terminal whether to end the program: work between two
/// looks at the token cannot be stopped. After a yes, SIGINT ends the process as usual.
///
/// Only one at a time, on the thread that runs the command.
class InterruptGuard {
public:
    /// \p token is borrowed; the destructor renews it.
    explicit InterruptGuard(CancellationToken& token);
    ~InterruptGuard();
    InterruptGuard(const InterruptGuard&) = delete;
    InterruptGuard& operator=(const InterruptGuard&) = delete;

    /// Whether the second Ctrl-C asks, as it does at first. Not while another program has the
    /// keyboard.
    static void ask(bool wanted);

private:
    CancellationToken& mToken;
    struct sigaction mBefore {};
};

}

#endif
