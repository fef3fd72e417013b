// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Writer.h"

#include "Actor.h"
#include "Random.h"
#include "Scene.h"
#include "Tally.h"

#include <thread>

namespace Soak {

using namespace OrvHost;

namespace {

constexpr int kTries = 4;
constexpr std::size_t kMostDeadIterators = 200;

bool holds(const TransactionOutcome& outcome, const char* text) {
    for (const ThreadContext::Message& message : outcome.messages) {
        if (message.text.find(text) != std::string::npos) {
            return true;
        }
    }
    return false;
}

// Only the store's messages about a conflict contain this text: they name the other transaction.
bool tellsOfConflict(const TransactionOutcome& outcome) {
    return holds(outcome, " transaction");
}

std::string textOf(const TransactionOutcome& outcome) {
    std::string text = outcome.reason;
    for (const ThreadContext::Message& message : outcome.messages) {
        text += " | " + message.text;
    }
    return text;
}

}

Writer::Writer(Scene& scene, Tally& tally, const SoakOptions& options, unsigned number)
    : mScene(scene),
      mTally(tally),
      mOptions(options),
      mNumber(number),
      mCast(scene.ownCast(number)),
      mIsAlone(true) {}

Writer::Writer(Scene& scene, Tally& tally, const SoakOptions& options, unsigned number,
               const Cast& cast)
    : mScene(scene),
      mTally(tally),
      mOptions(options),
      mNumber(number),
      mCast(cast),
      mIsAlone(false) {}

void Writer::runTo(std::uint64_t operations, std::uint64_t transactions) {
    while (mOperations < operations || mTransactions < transactions) {
        runOnce();
    }
}

void Writer::runOnce() {
    work(mTransactions);
    ++mTransactions;
}

void Writer::work(std::uint64_t number) {
    for (int tries = 1;; ++tries) {
        const End end = attempt(number);
        if (end != End::Conflict) {
            return;
        }
        ++mTally.conflicts;
        if (tries == kTries) {
            ++mTally.givenUp;
            return;
        }
        ++mTally.retried;
        std::this_thread::yield();
    }
}

Writer::End Writer::attempt(std::uint64_t number) {
    Random random(mOptions.seed, mNumber, number);
    const bool isShared = random.oneIn(6);
    const unsigned long tx = mScene.host().transactions().begin();
    ++mTally.transactions;
    Actor actor(mScene, tx, random, isShared ? mScene.sharedCast() : mCast,
                isShared || !mIsAlone ? nullptr : &mLedger);
    const End end = play(actor, tx, random, isShared);
    if (end == End::Committed) {
        mLedger.commit();
    } else {
        mLedger.rollback();
    }
    mOperations += actor.operations();
    mTally.operations += actor.operations();
    for (const ChildIterator& iterator : actor.leftOpen()) {
        if (mDeadIterators.size() < kMostDeadIterators) {
            mDeadIterators.push_back(iterator);
        }
    }
    return end;
}

Writer::End Writer::play(Actor& actor, unsigned long txHandle, Random& random, bool isShared) {
    const std::uint64_t share = mOptions.operations / mOptions.transactions;
    if (random.oneIn(4)) {
        const std::size_t counter = random.below(kCounters);
        actor.increment(counter);
        mLedger.count(counter);
    }
    while (actor.operations() < share && !actor.isDoomed()) {
        actor.step();
        if (isShared && random.oneIn(8)) {
            std::this_thread::yield(); // let another writer in between
        }
    }
    const bool violates = random.oneIn(16);
    if (violates && !actor.isDoomed()) {
        actor.violate();
    }
    if (isInConflict(actor, txHandle)) {
        return abort(txHandle, End::Conflict);
    }
    if (violates) {
        const TransactionOutcome outcome = mScene.host().transactions().validate(txHandle);
        if (outcome.accepted) {
            mTally.fail("transaction " + std::to_string(txHandle) + ": a violation is accepted");
        }
        ++mTally.refused;
        return abort(txHandle, End::Refused);
    }
    if (random.oneIn(12)) {
        ++mTally.aborted;
        return abort(txHandle, End::Aborted);
    }
    if (random.oneIn(4)) {
        const TransactionOutcome outcome = mScene.host().transactions().validate(txHandle);
        if (!outcome.accepted) {
            return abort(txHandle, endOf(outcome, "validate"));
        }
    }
    return commit(txHandle);
}

bool Writer::isInConflict(const Actor& actor, unsigned long txHandle) {
    if (actor.isDoomed() || actor.doubts().empty()) {
        return actor.isDoomed();
    }
    if (tellsOfConflict(mScene.host().transactions().validate(txHandle))) {
        return true;
    }
    for (const std::string& doubt : actor.doubts()) {
        mTally.fail(doubt);
    }
    return false;
}

Writer::End Writer::abort(unsigned long txHandle, End end) {
    const TransactionOutcome outcome = mScene.host().transactions().abort(txHandle);
    if (!outcome.accepted || !outcome.reason.empty()) {
        mTally.fail("abort: " + textOf(outcome));
    }
    return end;
}

Writer::End Writer::commit(unsigned long txHandle) {
    const TransactionOutcome outcome = mScene.host().transactions().commit(txHandle);
    if (!outcome.accepted) {
        return endOf(outcome, "commit");
    }
    ++mTally.committed;
    return End::Committed;
}

// A transaction without a violation made on purpose may only be refused because of another writer.
Writer::End Writer::endOf(const TransactionOutcome& outcome, const char* phase) {
    if (!tellsOfConflict(outcome)) {
        mTally.fail(std::string(phase) + " refuses for no reason: " + textOf(outcome));
    }
    // The names of hosts that share a store begin so, see SharedHost.
    if (holds(outcome, " on host-")) {
        ++mTally.elsewhere;
    }
    return End::Conflict;
}

}
