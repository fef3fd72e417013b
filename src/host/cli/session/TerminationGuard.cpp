// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "TerminationGuard.h"

#include <atomic>

namespace OrvHost {
namespace {

// What the handler can reach.
std::atomic<CancellationToken*> theToken{nullptr};
volatile sig_atomic_t theSignal = 0;

extern "C" void cancelWork(int signal) {
    theSignal = signal;
    if (CancellationToken* token = theToken.load()) {
        token->cancel();
    }
}

}

TerminationGuard::TerminationGuard(CancellationToken& token) {
    theSignal = 0;
    theToken = &token;
    for (std::size_t at = 0; at < kSignals.size(); ++at) {
        sigaction(kSignals[at], nullptr, &mBefore[at]);
        if (mBefore[at].sa_handler == SIG_DFL) {
            struct sigaction action {};
            action.sa_handler = cancelWork;
            action.sa_flags = SA_RESTART;
            sigaction(kSignals[at], &action, nullptr);
        }
    }
}

TerminationGuard::~TerminationGuard() {
    for (std::size_t at = 0; at < kSignals.size(); ++at) {
        sigaction(kSignals[at], &mBefore[at], nullptr);
    }
    theToken = nullptr;
    if (theSignal != 0) {
        raise(theSignal);
    }
}

}
