// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "cli/session/TerminationGuard.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace OrvHost {
namespace {

TEST(TerminationGuard, NoSignal_ChangesNothing) {
    CancellationToken token;
    { const TerminationGuard guard(token); }
    EXPECT_FALSE(token.isCancelled());
}

TEST(TerminationGuardDeathTest, Signal_CancelsAndEndsTheProcessAfterwards) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        EXPECT_EXIT(
            {
                CancellationToken token;
                {
                    const TerminationGuard guard(token);
                    raise(signal);
                    if (!token.isCancelled()) {
                        std::_Exit(1);
                    }
                }
                std::_Exit(2);
            },
            testing::KilledBySignal(signal), "");
    }
}

TEST(TerminationGuardDeathTest, IgnoredSignal_StaysIgnored) {
    EXPECT_EXIT(
        {
            signal(SIGHUP, SIG_IGN);
            CancellationToken token;
            {
                const TerminationGuard guard(token);
                raise(SIGHUP);
            }
            std::_Exit(token.isCancelled() ? 1 : 0);
        },
        testing::ExitedWithCode(0), "");
}

}
}
