// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_VERSIONEDTREE_H
#define ORV_HOST_STORE_VERSIONEDTREE_H

#include "MoTree.h"
#include "StoreTypes.h"
#include "base/ReaderLock.h"

#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>
#include <set>
#include <shared_mutex>

namespace OrvHost {

/// The committed tree for many threads: snapshots to read from, and commits that become visible as
/// a whole.
///
/// A reader holds the lock shared, and only for one short look. A commit holds it exclusively while
/// it links in what was prepared before. What no open snapshot can read is reclaimed when a
/// snapshot is closed.
class VersionedTree {
public:
    explicit VersionedTree(const Model& model);

    /// Opens a snapshot of all that is committed now. Close each snapshot once.
    CommitNumber openSnapshot();
    void closeSnapshot(CommitNumber snapshot) noexcept;

    /// Runs \p look on the tree while no commit changes it, and returns its result. Of this object
    /// \p look may call nothing but committer.
    template <class Look>
    auto read(Look&& look) const {
        const std::shared_lock<ReaderLock> guard(mLock);
        return look(static_cast<const MoTree&>(mTree));
    }

    /// Applies \p change for \p committer, all or nothing. Returns the number of the commit. The
    /// transaction that commits has one snapshot open, which is not read any more after that, only
    /// closed: what only this snapshot could still see is not kept.
    CommitNumber commit(TreeChange& change, TransactionName committer);
    /// Where the transaction of an entry of a commit log was: one of this store has a snapshot
    /// here.
    enum class Origin { Here, Elsewhere };
    /// The same for the entry of a commit log at the position \p number. OrvHostWrongState if that
    /// is not the number of the next commit.
    void commitEntry(CommitNumber number, TreeChange& change, TransactionName committer,
                     Origin origin);
    /// The number of the last commit.
    CommitNumber last() const;
    /// Who made a commit; kNoTransaction if no open snapshot is older.
    TransactionName committer(CommitNumber number) const;

    /// Runs \p change on the tree, for data at start. OrvHostWrongState if a snapshot is open.
    template <class Change>
    void load(Change&& change) {
        refuseOpenSnapshots();
        const std::unique_lock<ReaderLock> guard(mLock);
        change(mTree);
    }
    /// Puts \p tree, of the same model, in the place of all objects; what was there is in \p tree
    /// then. Commits are numbered after \p last from now on. OrvHostWrongState if a snapshot is
    /// open.
    void replace(MoTree& tree, CommitNumber last);

private:
    CommitNumber apply(TreeChange& change, TransactionName committer, std::size_t ownSnapshots);
    void refuseOpenSnapshots() const;
    void requireNoSnapshot() const; ///< mMutex is held
    CommitNumber oldestNeeded() const;
    CommitNumber forgetOldCommitters();
    void reclaim(CommitNumber oldest) noexcept;

    mutable ReaderLock mLock;
    MoTree mTree; ///< guarded by mLock
    std::atomic<CommitNumber> mOldestGarbage{kNever};

    mutable std::mutex mMutex; ///< guards all below; may be taken with mLock held
    CommitNumber mLast = 0;
    std::multiset<CommitNumber> mOpen;
    std::map<CommitNumber, TransactionName> mCommitters;
};

}

#endif
