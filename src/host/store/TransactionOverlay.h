// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_TRANSACTIONOVERLAY_H
#define ORV_HOST_STORE_TRANSACTIONOVERLAY_H

#include "StoreTypes.h"
#include "model/Model.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace OrvHost {

/// An object that a transaction has created and not yet committed.
struct CreatedMo {
    std::string dn;
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

    CreatedMo* findCreated(std::string_view dn);
    const CreatedMo* findCreated(std::string_view dn) const;
    /// The group with that prefix (see DnView::childPrefix), or null.
    const Group* findGroup(const std::string& prefix) const;
    /// Adds \p mo, whose DN must be free. The object keeps its address.
    void addCreated(CreatedMo mo);
    /// Removes a created object; \p mo is invalid afterwards.
    void dropCreated(CreatedMo* mo);
    /// All created objects, parents before their children; null in place of one that was deleted
    /// again.
    const std::vector<CreatedMo*>& created() const { return mAll; }

    /// The attributes that the transaction has written for a committed object, or null.
    const std::string* findModified(NodeId node) const;
    void setModified(NodeId node, std::string attributes);
    const std::unordered_map<NodeId, std::string>& modified() const { return mModified; }

    bool isDeleted(NodeId node) const { return !mDeleted.empty() && mDeleted.count(node) > 0; }
    void markDeleted(NodeId node);
    /// The deleted objects in the order in which they were marked.
    const std::vector<NodeId>& deleted() const { return mDeletionOrder; }

    /// Records that objects of a class were created or deleted under a parent, for the check of
    /// bounds.
    void noteMembers(const std::string& parentDn, ClassIndex moc);
    const std::set<std::pair<std::string, ClassIndex>>& changedMembers() const { return mMembers; }

    void clear();

private:
    struct TextHash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const {
            return std::hash<std::string_view>()(text);
        }
    };

    std::unordered_map<std::string, CreatedMo, TextHash, std::equal_to<>> mCreated;
    std::unordered_map<std::string, Group> mGroups;
    std::vector<CreatedMo*> mAll;
    std::unordered_map<NodeId, std::string> mModified;
    std::unordered_set<NodeId> mDeleted;
    std::vector<NodeId> mDeletionOrder;
    std::set<std::pair<std::string, ClassIndex>> mMembers;
};

}

#endif
