// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_SESSION_INTERRUPTGUARD_H
#define ORV_HOST_CLI_SESSION_INTERRUPTGUARD_H

#include "client/CancellationToken.h"

#include <signal.h>

namespace OrvHost {

/// For a session at the prompt. While it lives, Ctrl-C ends nothing by itself: while a command
/// runs, it cancels that one; otherwise it is only noted. A second Ctrl-C within a second, wherever
/// the first one came, means that somebody wants to leave. While a command runs, it asks at the
/// terminal whether to end the program: work between two looks at the token cannot be stopped.
/// After a yes, SIGINT ends the process as usual.
///
/// Only one at a time, on the thread that runs the commands.
class InterruptGuard {
public:
    InterruptGuard();
    ~InterruptGuard();
    InterruptGuard(const InterruptGuard&) = delete;
    InterruptGuard& operator=(const InterruptGuard&) = delete;

    /// While it lives, a command runs.
    class Command {
    public:
        /// \p token is borrowed; the destructor renews it.
        explicit Command(CancellationToken& token);
        ~Command();
        Command(const Command&) = delete;
        Command& operator=(const Command&) = delete;

    private:
        CancellationToken& mToken;
    };

    /// Whether the second Ctrl-C asks, as it does at first. Not while another program has the
    /// keyboard.
    static void ask(bool wanted);

    /// Whether a second Ctrl-C came while no command ran. From then on, the next one is a first
    /// one.
    bool takeSecond();
    /// The next one is a first one: a question was answered.
    void forget();

private:
    struct sigaction mBefore {};
};

}

#endif
