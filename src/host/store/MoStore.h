// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_MOSTORE_H
#define ORV_HOST_STORE_MOSTORE_H

#include "CommitLog.h"
#include "CommittedState.h"
#include "LogCommitter.h"
#include "StoreTransaction.h"
#include "model/Model.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace OrvHost {

/// The host's managed objects: a tree of committed objects and the transactions over it.
///
/// Transactions are isolated by snapshots: a transaction reads the state that was committed when it
/// began, and its own writes. The first transaction that writes an object owns it until it ends.
/// Any other transaction that tries to write it is refused at once with OrvHostWriteConflict; so is
/// a transaction that writes an object that another one has changed and committed after it began.
/// No dirty reads, no lost updates.
///
/// Children of one class under one parent are kept in the order in which they were added: by load,
/// then by commit, and within a transaction by creation.
///
/// Threads: any, but load and attach may be called only while there is no transaction.
class MoStore {
public:
    /// \p model must outlive the store.
    explicit MoStore(const Model& model);

    const Model& model() const { return mModel; }

    /// Adds an object directly to the committed state: for data at start. Its parent must exist.
    /// DNs, in values too, have the form `Class=value` (DataSet brings others into it).
    /// The object is checked against the model as a client's write is, with two differences:
    /// attributes that only the system sets may be given, and mandatory attributes must be given
    /// (except references, which the checks of associations cover). Throws HostError with a text
    /// that names \p dn (internal) and what was expected; the store is then unchanged. Constant
    /// time. OrvHostWrongState after attach: the log would not know the object.
    void load(const std::string& dn, const std::vector<NamedValue>& attributes);

    /// Begins a transaction. \p id and \p author name it in messages to other transactions; \p id
    /// must be unique among the open ones, \p author says who began it, for people, and may be
    /// empty. The store must outlive the transaction.
    std::unique_ptr<StoreTransaction> begin(TransactionId id, std::string author = {});

    /// \p watcher is called for each commit that changes something; see CommitFeed.
    [[nodiscard]] CommitFeed::Subscription watch(CommitWatcher watcher) {
        return mFeed.watch(std::move(watcher));
    }

    /// Lets all commits go through \p log, which must outlive the store. A store with objects fills
    /// a log that has never had any; an empty store takes what the log holds. \p host: how messages
    /// on other hosts name this one; may be empty. Call it once, before the first transaction.
    ///
    /// Throws HostError with OrvHostWrongState if both hold objects, a transaction is open or one
    /// has committed, and what the log throws; with OrvHostStoreUnavailable if the log holds
    /// something else than objects of the model. The store is then as before.
    void attach(CommitLog& log, std::string host = {});
    /// Applies what other stores have appended to the log. Throws HostError: OrvHostWrongState
    /// without a log, OrvHostStoreUnavailable if the log cannot be asked or has diverged.
    void catchUp();
    /// Waits until the commit with that number, of any host, can be read. Throws HostError with
    /// OrvHostStoreUnavailable if it has not come within \p patience, and as catchUp. \p onPause is
    /// called again and again meanwhile; what it throws ends the waiting.
    void catchUpTo(
        CommitNumber number, std::chrono::milliseconds patience,
        const std::function<void()>& onPause = [] {});
    /// The number of the last commit that can be read.
    CommitNumber lastCommit() const { return state()->tree.last(); }
    /// From now on each transaction sees all that any host has committed before it begins: begin
    /// asks the log, and throws as catchUp. Call it before the first transaction.
    void setFresh() { mIsFresh = true; }
    /// Takes the objects that the log holds now in the place of all others: the way out of a fault.
    /// Transactions that are open go on reading what they have read, and cannot be committed any
    /// more if they have written (OrvHostWriteConflict); commits, and begin if setFresh was called,
    /// wait meanwhile. Watchers do not hear of what differs. Throws as attach; OrvHostWrongState
    /// without a log.
    void reload();
    /// How many commits wait for their turn to go into the log.
    std::size_t commitsWaiting() const { return mLog ? mLog->waiting() : 0; }
    /// Why nothing can be committed any more, for people; empty if it can.
    std::string logFault() const { return mLog ? mLog->fault() : std::string(); }

    /// Number of committed objects.
    std::uint64_t size() const;
    StoreMemory memory() const;

private:
    LogCommitter& requireLog() const;
    LogCommitter::Loaded takeFrom(CommitLog& log);
    void use(std::shared_ptr<CommittedState> state);
    std::shared_ptr<CommittedState> state() const;

    const Model& mModel;
    CommitFeed mFeed;
    bool mIsFresh = false;
    std::unique_ptr<LogCommitter> mLog; ///< null: commits are in memory only

    mutable std::mutex mMutex; ///< guards mState if there is a log
    std::shared_ptr<CommittedState> mState;
};

}

#endif
