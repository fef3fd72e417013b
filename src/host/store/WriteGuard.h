// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_WRITEGUARD_H
#define ORV_HOST_STORE_WRITEGUARD_H

#include "ClaimTable.h"
#include "StoreTypes.h"
#include "VersionedTree.h"

#include <string>

namespace OrvHost {

/// Keeps one transaction's writes apart from those of all others. What is about to be written is
/// claimed, and then compared with the latest commit: a claim keeps others from committing a change
/// later, the comparison finds those that did so since the snapshot was taken.
///
/// Each claim throws HostError with OrvHostWriteConflict and a text that names the object and the
/// other transaction. After that the transaction must not be committed; requireNoConflict says so.
///
/// Threads: one at a time, as its transaction.
class WriteGuard {
public:
    WriteGuard(VersionedTree& tree, ClaimTable& claims, TransactionId owner, CommitNumber snapshot);
    ~WriteGuard();
    WriteGuard(const WriteGuard&) = delete;
    WriteGuard& operator=(const WriteGuard&) = delete;

    TransactionId owner() const { return mClaimed.owner; }

    /// To change the attributes of the committed object \p node.
    void claimWrite(NodeId node);
    /// To delete it. Its descendants are claimed one by one.
    void claimDelete(NodeId node);
    /// To create children under it.
    void claimCreateUnder(NodeId node);
    /// To create an object of that DN. \p deletedByOwner says that the snapshot shows such an
    /// object and this transaction has deleted it.
    void claimName(const std::string& dn, bool deletedByOwner);
    /// To change how many objects of a class stand under \p parent (kRootNode: at the top level).
    void claimMembership(NodeId parent, ClassIndex moc, const std::string& what);

    /// The first conflict, for people; empty if there was none.
    const std::string& conflict() const { return mConflict; }
    /// Throws the first conflict again, if there was one.
    void requireNoConflict() const;

    void release() noexcept;

private:
    void claimNode(NodeId node, ClaimTable::Kind kind);
    void requireUnchanged(NodeId node, ClaimTable::Kind kind);
    std::string dnOf(NodeId node) const;
    [[noreturn]] void fail(const std::string& what, TransactionId other);
    [[noreturn]] void failForCommit(const std::string& what, CommitNumber number);

    VersionedTree& mTree;
    ClaimTable& mClaims;
    ClaimSet mClaimed;
    CommitNumber mSnapshot;
    std::string mConflict;
};

}

#endif
