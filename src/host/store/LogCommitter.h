// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_LOGCOMMITTER_H
#define ORV_HOST_STORE_LOGCOMMITTER_H

#include "ChangeSet.h"
#include "CommitFeed.h"
#include "CommitLog.h"
#include "MoTree.h"
#include "VersionedTree.h"
#include "WriteGuard.h"

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace OrvHost {

struct LogChange;

/// Takes the commits of one store through a commit log: first they are in the log, then they are
/// visible. Commits of several threads that wait at the same time go into the log together: the
/// first of them works for all.
///
/// In its turn the log gives the entries of other stores that this one has not seen. They are
/// applied, and then each waiting transaction looks once more whether what it claims is as it was
/// at its snapshot. Watchers hear of the entries when the turn is over.
///
/// Threads: any.
class LogCommitter {
public:
    /// One transaction that commits. All that it refers to must stay until commit returns.
    struct Work {
        TreeChange& change;
        WriteGuard& guard;
        std::string entry;                   ///< see LogChange::encoded
        std::function<ChangeSet()> describe; ///< what it changes, for watchers
    };

    /// \p host: how messages on other hosts name this one; empty if there are no others. \p mark:
    /// what \p tree holds. All references must outlive the object.
    LogCommitter(const Model& model, VersionedTree& tree, CommitFeed& feed, CommitLog& log,
                 std::string host, LogMark mark);

    /// Appends one commit and applies it. Throws HostError: with OrvHostOutcomeUnknown if it may be
    /// in the log or is there, and then it is applied by a later call; otherwise, with
    /// OrvHostWriteConflict, OrvHostStoreUnavailable or OrvInvalidArgument, nothing of it is left.
    void commit(Work work);
    /// Applies what other stores have appended. Throws LogUnavailable or LogDiverged.
    void catchUp();
    /// Calls \p load, which puts the objects of the log into the tree and returns their mark; goes
    /// on there and forgets the fault. Throws what \p load throws.
    void restart(const std::function<LogMark(CommitLog& log)>& load);

    /// Whether an entry of another store was applied after \p snapshot.
    bool hasForeignAfter(CommitNumber snapshot) const { return mLastForeign.load() > snapshot; }
    /// How many commits wait for their turn, without those whose turn it is.
    std::size_t waiting() const;

    /// Why nothing can be committed any more, for people; empty if it can.
    std::string fault() const;

private:
    /// A commit on its way.
    struct Pending {
        Work& work;
        LogMark mark{};                     ///< the position is known when its entry is made
        std::optional<ChangeSet> changes{}; ///< for watchers
        std::exception_ptr failure{};
        bool isApplied = false;
        bool isDone = false;
    };

    void lead(const std::vector<Pending*>& all) noexcept;
    void appendTogetherOrAlone(const std::vector<Pending*>& all);
    void append(const std::vector<Pending*>& all);
    void settle(const LogInDoubt& doubt);
    std::vector<LogEntry> decide(const std::vector<Pending*>& all, CommitNumber head);
    LogEntry entryOf(const Pending& pending) const;
    void applyGoing();
    void applyForeign(const LogEntry& entry);
    void reportForeign() noexcept;
    std::string nextId();
    void requireNoFault() const;
    void setFault(const std::string& text);
    /// Runs \p work while no other thread does such a thing.
    template <class Turn>
    void inTurn(std::unique_lock<std::mutex>& lock, const Turn& work);
    /// The same as soon as there is no such thread. Throws what \p work throws.
    template <class Turn>
    void inNextTurn(const Turn& work);

    const Model& mModel;
    VersionedTree& mTree;
    CommitFeed& mFeed;
    CommitLog& mLog;
    const std::string mHost;
    const std::string mIdStart; ///< of the ids of this object, different in each process

    // Used by the thread whose turn it is.
    LogMark mMark; ///< the last entry that is applied
    std::uint64_t mIds = 0;
    std::vector<Pending*> mGoing;    ///< those whose entries are being appended
    std::vector<ChangeSet> mReports; ///< of entries that watchers have not heard of

    std::atomic<CommitNumber> mLastForeign{0}; ///< the last entry of another store

    mutable std::mutex mMutex; ///< guards all below
    std::condition_variable mChanged;
    bool mHasLeader = false;
    std::vector<Pending*> mWaiting;
    std::string mFault;
};

}

#endif
