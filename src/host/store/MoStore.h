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
#include <vector>

namespace OrvHost {

/// The host's managed objects: a tree of committed objects and the transactions over it.
///
/// Isolation is by snapshot: a transaction reads the state that was committed when it began, and
/// its own writes. The first transaction to write an object owns it until it ends; any other one
/// that tries is refused at once with OrvHostWriteConflict, and so is one that writes an object
/// which has been committed by somebody else since it began. No dirty read, no lost update.
///
/// Children of one class under one parent stand in the order in which they came to be there: that
/// of load, then that of commit, and within a transaction that of creation.
///
/// Threads: any, except that load is for the time before the first transaction.
class MoStore {
public:
    /// \p model must outlive the store.
    explicit MoStore(const Model& model);

    const Model& model() const { return mModel; }

    /// Puts an object into the committed state, directly: for data at start. Its parent must be
    /// there. The object is checked against the model as a client's write is, except that
    /// attributes of the system may be given, and mandatory attributes must be (references are left
    /// to the checks of associations). Throws HostError with a text that names \p dn (internal) and
    /// what was expected; the store is then as before. Constant time.
    void load(const std::string& dn, const std::vector<NamedValue>& attributes);

    /// Begins a transaction; \p id names it in messages to others and must be its own among those
    /// that are open. The store must outlive the transaction.
    std::unique_ptr<StoreTransaction> begin(TransactionId id);

    /// Number of committed objects.
    std::uint64_t size() const;
    StoreMemory memory() const;

private:
    const Model& mModel;
    VersionedTree mTree;
    ClaimTable mClaims;
};

}

#endif
