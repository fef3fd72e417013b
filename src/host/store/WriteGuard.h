// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_WRITEGUARD_H
#define ORV_HOST_STORE_WRITEGUARD_H

#include "ClaimTable.h"
#include "StoreTypes.h"
#include "VersionedTree.h"

#include <string>

namespace OrvHost {

/// Separates one transaction's writes from those of all others. Before a write, its target is
/// claimed and then compared with the latest commit: the claim prevents later commits by others,
/// and the comparison finds commits by others since the snapshot was taken.
///
/// Each claim throws HostError with OrvHostWriteConflict and a text that names the object and the
/// other transaction. After that the transaction must not be committed; requireNoConflict checks
/// this.
///
/// Threads: one at a time, as its transaction.
class WriteGuard {
public:
    /// \p author: who began the transaction \p owner, for people; may be empty.
    WriteGuard(VersionedTree& tree, ClaimTable& claims, TransactionId owner, std::string author,
               CommitNumber snapshot);
    ~WriteGuard();
    WriteGuard(const WriteGuard&) = delete;
    WriteGuard& operator=(const WriteGuard&) = delete;

    TransactionId owner() const { return mClaimed.owner; }
    const std::string& author() const { return mClaimed.author; }
    CommitNumber snapshot() const { return mSnapshot; }

    /// Before a change of attributes of the committed object \p node.
    void claimWrite(NodeId node);
    /// Before a deletion. The descendants are claimed one by one.
    void claimDelete(NodeId node);
    /// After claimDelete of \p node and its children: no child has come or gone since the snapshot,
    /// such as one that was created and deleted again, for which there is nothing to claim.
    void requireSameChildren(NodeId node);
    /// Before children are created under it.
    void claimCreateUnder(NodeId node);
    /// Before an object with that DN is created. \p deletedByOwner: the snapshot shows such an
    /// object and this transaction has deleted it.
    void claimName(const std::string& dn, bool deletedByOwner);
    /// Before the number of objects of a class under \p parent changes (kRootNode: at the top
    /// level).
    void claimMembership(NodeId parent, ClassIndex moc);

    /// What of all that is claimed is not any more as at the snapshot, for people; empty if
    /// nothing. Claims keep others in this store away, so it can only be what came through a commit
    /// log.
    std::string whatChanged() const;
    /// Throws a conflict if there is something of that kind, or has been one.
    void recheck();

    /// The first conflict, for people; empty if there was none.
    const std::string& conflict() const { return mConflict; }
    /// Throws a conflict with that text, or the first one.
    [[noreturn]] void refuse(const std::string& text);
    /// Throws the first conflict again, if there was one.
    void requireNoConflict() const;

    void release() noexcept;

private:
    void claimNode(NodeId node, ClaimTable::Kind kind);
    void requireUnchanged(NodeId node, ClaimTable::Kind kind);
    std::string whatChanged(const MoTree& tree, NodeId node, ClaimTable::Kind kind) const;
    std::string textOf(const std::string& what, CommitNumber number) const;
    std::string dnOf(NodeId node) const;
    std::string groupText(NodeId parent, ClassIndex moc) const;
    [[noreturn]] void fail(const std::string& what, const std::string& other);
    [[noreturn]] void failForCommit(const std::string& what, CommitNumber number);

    VersionedTree& mTree;
    ClaimTable& mClaims;
    ClaimSet mClaimed;
    CommitNumber mSnapshot;
    NodeId mCreatesUnder = kNoNode; ///< what was claimed last to create children under
    std::string mConflict;
};

}

#endif
