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

/// An object that a transaction has created and not committed.
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

/// What a transaction has written and nobody else sees: plain bookkeeping, no lock, no rules.
class TransactionOverlay {
public:
    /// Children of one class under one parent that were created, in order of creation; null stands
    /// for one that is deleted again, so that positions stay.
    struct Group {
        std::vector<CreatedMo*> members;
        std::uint64_t count = 0;
    };

    bool isEmpty() const { return mAll.empty() && mModified.empty() && mDeleted.empty(); }

    CreatedMo* findCreated(std::string_view dn);
    const CreatedMo* findCreated(std::string_view dn) const;
    /// The group of that prefix (see childPrefix), or null.
    const Group* findGroup(const std::string& prefix) const;
    /// Enters \p mo, whose DN is not taken. The object keeps its place in memory.
    void addCreated(CreatedMo mo);
    /// Takes a created object out; \p mo is dead then.
    void dropCreated(CreatedMo* mo);
    /// All created objects, parents before their children; null where one was deleted again.
    const std::vector<CreatedMo*>& created() const { return mAll; }

    /// The attributes of a committed object as the transaction has left them, or null.
    const std::string* findModified(NodeId node) const;
    void setModified(NodeId node, std::string attributes);
    const std::unordered_map<NodeId, std::string>& modified() const { return mModified; }

    bool isDeleted(NodeId node) const { return !mDeleted.empty() && mDeleted.count(node) > 0; }
    void markDeleted(NodeId node);
    /// The deleted objects in the order in which they were marked.
    const std::vector<NodeId>& deleted() const { return mDeletionOrder; }

    /// Remembers that objects of a class have come or gone under a parent, for the check of bounds.
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
