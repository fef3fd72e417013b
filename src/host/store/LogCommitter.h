// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_LOGCOMMITTER_H
#define ORV_HOST_STORE_LOGCOMMITTER_H

#include "ChangeSet.h"
#include "CommitFeed.h"
#include "CommitLog.h"
#include "CommittedState.h"
#include "MoTree.h"
#include "WriteGuard.h"

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace OrvHost {

struct LogChange;

/// Why a transaction cannot be committed whose objects are not those of the store any more.
constexpr const char* kLoadedAnew =
    "the objects were loaded anew since this transaction began: the store has another history now";

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
        const CommittedState& state; ///< what the transaction works on
        TreeChange& change;
        WriteGuard& guard;
        std::string entry;                   ///< see LogChange::encoded
        std::function<ChangeSet()> describe; ///< what it changes, for watchers
    };

    /// \p host: how messages on other hosts name this one; empty if there are no others. \p mark:
    /// what \p state holds. All references must outlive the object.
    LogCommitter(const Model& model, std::shared_ptr<CommittedState> state, CommitFeed& feed,
                 CommitLog& log, std::string host, LogMark mark);

    /// Appends one commit and applies it. Throws HostError: with OrvHostOutcomeUnknown if it may be
    /// in the log or is there, and then it is applied by a later call; otherwise, with
    /// OrvHostWriteConflict, OrvHostStoreUnavailable or OrvInvalidArgument, nothing of it is left.
    void commit(Work work);
    /// Applies what other stores have appended; one look serves all threads that wait for one.
    /// Throws HostError with OrvHostStoreUnavailable. Does nothing on a thread that has the turn,
    /// as that of a watcher: there all has been applied that is known.
    void catchUp();
    /// What the log holds now.
    struct Loaded {
        std::shared_ptr<CommittedState> state;
        LogMark mark;
    };
    /// Calls \p load and goes on with what it returns, without the fault. Transactions on another
    /// state are refused from then on, with OrvHostWriteConflict; then \p publish gets the state,
    /// for those that begin. Throws what \p load throws.
    void restart(const std::function<Loaded(CommitLog& log)>& load,
                 const std::function<void(std::shared_ptr<CommittedState> state)>& publish);
    /// Whether it commits to \p state.
    bool isFor(const CommittedState& state) const { return mCurrent.load() == &state; }

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

    /// Threads that wait for one look at the log.
    struct Question {
        std::exception_ptr failure{};
        bool isDone = false;
    };

    VersionedTree& tree() const { return mState->tree; }
    void lead(const std::vector<Pending*>& all) noexcept;
    void follow();
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

    const Model& mModel;
    CommitFeed& mFeed;
    CommitLog& mLog;
    const std::string mHost;
    const std::string mIdStart; ///< of the ids of this object, different in each process

    // Used by the thread whose turn it is.
    std::shared_ptr<CommittedState> mState;
    LogMark mMark; ///< the last entry that is applied
    std::uint64_t mIds = 0;
    std::vector<Pending*> mGoing;    ///< those whose entries are being appended
    std::vector<ChangeSet> mReports; ///< of entries that watchers have not heard of

    std::atomic<CommitNumber> mLastForeign{0}; ///< the last entry of another store

    std::atomic<const CommittedState*> mCurrent; ///< mState, for all threads

    mutable std::mutex mMutex; ///< guards all below
    std::condition_variable mChanged;
    bool mHasLeader = false;
    std::thread::id mLeader;             ///< whose turn it is, if it is anybody's
    std::shared_ptr<Question> mQuestion; ///< the next one, if anybody waits
    std::vector<Pending*> mWaiting;
    std::string mFault;
};

}

#endif
