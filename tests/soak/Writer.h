// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_SOAK_WRITER_H
#define ORV_TESTS_SOAK_WRITER_H

#include "Ledger.h"
#include "SoakOptions.h"
#include "client/Client.h"

#include <cstdint>
#include <vector>

namespace OrvHost {
struct TransactionOutcome;
}

namespace Soak {

class Actor;
class Cast;
class Random;
class Scene;
class Tally;

/// One writer, which runs transaction after transaction: most of them on its own objects, every
/// sixth on objects that all writers share, every fourth with a counter that all increment. A
/// transaction with a conflict is repeated with the same draws, a few times, and then given up.
/// Both objects must outlive this one. One thread at a time.
class Writer {
public:
    Writer(Scene& scene, Tally& tally, const SoakOptions& options, unsigned number);
    /// One that has a rival on another host: both work on the objects of \p cast, and have
    /// different numbers.
    Writer(Scene& scene, Tally& tally, const SoakOptions& options, unsigned number,
           const Cast& cast);

    /// Continues until it has done this number of operations and of transactions in total.
    void runTo(std::uint64_t operations, std::uint64_t transactions);
    /// One more transaction, with its repetitions.
    void runOnce();

    const Ledger& ledger() const { return mLedger; }
    /// The last iterators whose transactions have ended.
    const std::vector<OrvHost::ChildIterator>& deadIterators() const { return mDeadIterators; }

private:
    enum class End { Committed, Aborted, Refused, Conflict };

    void work(std::uint64_t number);
    End attempt(std::uint64_t number);
    End play(Actor& actor, unsigned long txHandle, Random& random, bool isShared);
    bool isInConflict(const Actor& actor, unsigned long txHandle);
    End abort(unsigned long txHandle, End end);
    End commit(unsigned long txHandle);
    End endOf(const OrvHost::TransactionOutcome& outcome, const char* phase);

    Scene& mScene;
    Tally& mTally;
    const SoakOptions& mOptions;
    unsigned mNumber;
    const Cast& mCast;
    bool mIsAlone; ///< nobody else writes the objects of mCast
    Ledger mLedger;
    std::uint64_t mOperations = 0;
    std::uint64_t mTransactions = 0;
    std::vector<OrvHost::ChildIterator> mDeadIterators;
};

}

#endif
