// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_TRANSACTIONOVERLAY_H
#define ORV_HOST_STORE_TRANSACTIONOVERLAY_H

#include "StoreTypes.h"
#include "base/NumberMap.h"
#include "base/TextHash.h"
#include "model/Model.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace OrvHost {

/// An object that a transaction has created and not yet committed.
struct CreatedMo {
    std::string_view dn; ///< the overlay keeps the text
    ClassIndex moc = 0;
    std::string name;                         ///< its naming value
    std::string attributes;                   ///< as AttributeBytes writes them
    NodeId parentNode = kNoNode;              ///< its committed parent, or else:
    const CreatedMo* parentCreated = nullptr; ///< the parent that the same transaction created
    std::size_t positionInAll = 0;
    std::size_t positionInGroup = 0;
};

/// The writes of one transaction, which no other transaction sees: plain bookkeeping, no lock, no
/// checks.
class TransactionOverlay {
public:
    /// The children of one class under one parent that were created, in the order of creation. A
    /// child that was deleted again is replaced by null, so that positions stay the same.
    struct Group {
        std::vector<CreatedMo*> members;
        std::uint64_t count = 0;
    };

    bool isEmpty() const { return mAll.empty() && mModified.empty() && mDeleted.empty(); }

    const CreatedMo* findCreated(const HashedText& dn) const;
    /// The attributes of a created object, to be written.
    std::string& attributesOf(const CreatedMo& mo) { return mAll[mo.positionInAll]->attributes; }
    /// The group with that prefix (see DnView::childPrefix), or null.
    const Group* findGroup(std::string_view prefix) const;
    /// Adds \p mo under the DN \p dn, which must be free. The object keeps its address.
    void addCreated(std::string dn, CreatedMo mo);
    /// Removes a created object; \p mo is invalid afterwards.
    void dropCreated(const CreatedMo& mo);
    /// All created objects, parents before their children; null in place of one that was deleted
    /// again.
    const std::vector<CreatedMo*>& created() const { return mAll; }

    /// What the transaction has written to a committed object, as the changes of AttributeBytes;
    /// null if nothing.
    const std::string* findModified(NodeId node) const { return mModified.find(node); }
    /// The same, to be written.
    std::string& modify(NodeId node) { return mModified[node]; }
    /// All of these, by node; in the order in which they were written first, as long as no object
    /// was deleted.
    const NumberMap<NodeId, std::string>& modified() const { return mModified; }

    bool isDeleted(NodeId node) const { return mDeleted.find(node) != nullptr; }
    /// \p parent and \p moc: the parent and the class of the committed object \p node.
    void markDeleted(NodeId node, NodeId parent, ClassIndex moc);
    /// How many children of one class under one parent are deleted.
    std::uint64_t deletedCount(NodeId parent, ClassIndex moc) const;
    /// \p node, or the first of its later siblings that is not deleted; \p nextOf returns the next
    /// sibling of a node. On average over many calls no walk goes the same way twice.
    template <class NextOf>
    NodeId skipDeleted(NodeId node, const NextOf& nextOf) const {
        NodeId end = node;
        while (end != kNoNode && isDeleted(end)) {
            const NodeId after = *mDeleted.find(end);
            end = after == end ? nextOf(end) : after;
        }
        while (node != end) {
            NodeId& after = *mDeleted.find(node);
            node = after == node ? nextOf(node) : after;
            after = end;
        }
        return end;
    }
    /// The deleted objects in the order in which they were marked.
    const std::vector<NodeId>& deleted() const { return mDeletionOrder; }

    /// Records that objects of a class were created or deleted under a parent, for the check of
    /// bounds.
    void noteMembers(const std::string& parentDn, ClassIndex moc);
    const std::set<std::pair<std::string, ClassIndex>>& changedMembers() const { return mMembers; }

    void clear();

private:
    Group& groupOf(std::string_view dn);

    std::unordered_map<std::string, CreatedMo, TextHash, std::equal_to<>> mCreated;
    using Groups = std::unordered_map<std::string, Group, TextHash, std::equal_to<>>;
    Groups mGroups;
    Groups::value_type* mRecentGroup = nullptr; ///< the one that changed last: siblings follow
    std::vector<CreatedMo*> mAll;
    NumberMap<NodeId, std::string> mModified;
    /// The deleted objects. Each has a later sibling, or none, with only deleted objects between;
    /// itself if that is not known. A walk over siblings makes it known, so it changes in reads.
    mutable NumberMap<NodeId, NodeId> mDeleted;
    NumberMap<std::uint64_t, std::uint64_t> mDeletedCounts; ///< by parent and class
    std::vector<NodeId> mDeletionOrder;
    std::set<std::pair<std::string, ClassIndex>> mMembers;
};

}

#endif
