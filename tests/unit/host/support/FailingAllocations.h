// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_UNIT_HOST_SUPPORT_FAILINGALLOCATIONS_H
#define ORV_TESTS_UNIT_HOST_SUPPORT_FAILINGALLOCATIONS_H

namespace OrvHost {

/// The process's operator new, so programs with it are for nothing else: fails when told to.
/// All threads, unless they are spared.
class FailingAllocations {
public:
    /// After \p number more of them, \p howMany allocations fail, and those behind them succeed
    /// again.
    static void failAfter(long number, long howMany = 1);
    /// How many have failed since failAfter.
    static long count();
    /// None fails from now on. True if one has failed since failAfter.
    static bool stop();

    /// While it lives, allocations of its thread are neither counted nor fail.
    class Spared {
    public:
        Spared();
        ~Spared();
        Spared(const Spared&) = delete;
        Spared& operator=(const Spared&) = delete;

    private:
        bool mBefore;
    };
};

}

#endif
