// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_SESSION_HELDINTERRUPTS_H
#define ORV_HOST_CLI_SESSION_HELDINTERRUPTS_H

#include <signal.h>

namespace OrvHost {

/// While it lives, Ctrl-C waits for a wait with before() as its mask, which it then interrupts,
/// since SIGINT has a handler. So none is lost between a look at what the handler sets and the
/// wait. One thread.
class HeldInterrupts {
public:
    HeldInterrupts() {
        sigset_t held;
        sigemptyset(&held);
        sigaddset(&held, SIGINT);
        pthread_sigmask(SIG_BLOCK, &held, &mBefore);
    }
    ~HeldInterrupts() { pthread_sigmask(SIG_SETMASK, &mBefore, nullptr); }
    HeldInterrupts(const HeldInterrupts&) = delete;
    HeldInterrupts& operator=(const HeldInterrupts&) = delete;

    const sigset_t& before() const { return mBefore; }

private:
    sigset_t mBefore{};
};

}

#endif
