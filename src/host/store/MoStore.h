// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_MOSTORE_H
#define ORV_HOST_STORE_MOSTORE_H

#include "ClaimTable.h"
#include "StoreTransaction.h"
#include "VersionedTree.h"
#include "model/Model.h"

#include <cstdint>
#include <memory>
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
/// Threads: any, but load may be called only before the first transaction.
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
    /// time.
    void load(const std::string& dn, const std::vector<NamedValue>& attributes);

    /// Begins a transaction. \p id and \p author name it in messages to other transactions; \p id
    /// must be unique among the open ones, \p author says who began it, for people, and may be
    /// empty. The store must outlive the transaction.
    std::unique_ptr<StoreTransaction> begin(TransactionId id, std::string author = {});

    /// \p watcher is called for each commit that changes something; see CommitFeed.
    [[nodiscard]] CommitFeed::Subscription watch(CommitWatcher watcher) {
        return mFeed.watch(std::move(watcher));
    }

    /// Number of committed objects.
    std::uint64_t size() const;
    StoreMemory memory() const;

private:
    const Model& mModel;
    VersionedTree mTree;
    ClaimTable mClaims;
    CommitFeed mFeed;
};

}

#endif
