// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "VersionedTree.h"

#include "base/HostError.h"

#include <string>

namespace OrvHost {

namespace {

// How much is reclaimed before the lock is given to readers and commits for a moment.
constexpr std::size_t kReclaimPortion = 4096;

}

VersionedTree::VersionedTree(const Model& model) : mTree(model) {}

CommitNumber VersionedTree::openSnapshot() {
    const std::lock_guard<std::mutex> guard(mMutex);
    mOpen.insert(mLast);
    return mLast;
}

CommitNumber VersionedTree::oldestNeeded() const {
    return mOpen.empty() ? mLast : *mOpen.begin();
}

// Returns the oldest commit that somebody can still read.
CommitNumber VersionedTree::forgetOldCommitters() {
    const CommitNumber oldest = oldestNeeded();
    mCommitters.erase(mCommitters.begin(), mCommitters.upper_bound(oldest));
    return oldest;
}

void VersionedTree::closeSnapshot(CommitNumber snapshot) noexcept {
    CommitNumber oldest = 0;
    {
        const std::lock_guard<std::mutex> guard(mMutex);
        mOpen.erase(mOpen.find(snapshot));
        oldest = forgetOldCommitters();
    }
    reclaim(oldest);
}

// A snapshot that is opened meanwhile is not older than `oldest`.
void VersionedTree::reclaim(CommitNumber oldest) noexcept {
    while (mOldestGarbage.load() <= oldest) {
        const std::unique_lock<ReaderLock> guard(mLock);
        mTree.reclaim(oldest, kReclaimPortion);
        mOldestGarbage = mTree.oldestGarbage();
    }
}

CommitNumber VersionedTree::commit(TreeChange& change, TransactionName committer) {
    const std::unique_lock<ReaderLock> guard(mLock);
    // Held until the end, so that nobody opens a snapshot of what is replaced meanwhile.
    const std::lock_guard<std::mutex> inner(mMutex);
    return apply(change, std::move(committer), 1);
}

void VersionedTree::commitEntry(CommitNumber number, TreeChange& change, TransactionName committer,
                                Origin origin) {
    CommitNumber oldest = 0;
    {
        const std::unique_lock<ReaderLock> guard(mLock);
        const std::lock_guard<std::mutex> inner(mMutex);
        if (number != mLast + 1) {
            throw HostError(OrvHostWrongState, "commit " + std::to_string(mLast + 1) +
                                                   " was expected, and this is " +
                                                   std::to_string(number));
        }
        apply(change, std::move(committer), origin == Origin::Here ? 1 : 0);
        oldest = forgetOldCommitters();
    }
    // No snapshot may ever be closed here, if all that is done is to follow others.
    if (origin == Origin::Elsewhere) {
        reclaim(oldest);
    }
}

CommitNumber VersionedTree::last() const {
    const std::lock_guard<std::mutex> guard(mMutex);
    return mLast;
}

void VersionedTree::replace(MoTree& tree, CommitNumber last) {
    const std::unique_lock<ReaderLock> guard(mLock);
    const std::lock_guard<std::mutex> inner(mMutex);
    requireNoSnapshot();
    mTree.swap(tree);
    mOldestGarbage = mTree.oldestGarbage();
    mLast = last;
}

CommitNumber VersionedTree::apply(TreeChange& change, TransactionName committer,
                                  std::size_t ownSnapshots) {
    const CommitNumber number = mLast + 1;
    const bool hasReaders = mOpen.size() > ownSnapshots;
    if (hasReaders) {
        mCommitters[number] = std::move(committer);
    }
    mTree.apply(change, number, hasReaders ? MoTree::OldRecords::Keep : MoTree::OldRecords::Drop);
    mOldestGarbage = mTree.oldestGarbage();
    mLast = number;
    return number;
}

TransactionName VersionedTree::committer(CommitNumber number) const {
    const std::lock_guard<std::mutex> guard(mMutex);
    const auto found = mCommitters.find(number);
    return found == mCommitters.end() ? TransactionName{} : found->second;
}

void VersionedTree::refuseOpenSnapshots() const {
    const std::lock_guard<std::mutex> guard(mMutex);
    requireNoSnapshot();
}

void VersionedTree::requireNoSnapshot() const {
    if (!mOpen.empty()) {
        throw HostError(OrvHostWrongState, "data is loaded before the first transaction begins, "
                                           "and there are " +
                                               std::to_string(mOpen.size()) + " open");
    }
}

}
