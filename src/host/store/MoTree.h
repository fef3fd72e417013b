// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_MOTREE_H
#define ORV_HOST_STORE_MOTREE_H

#include "DnIndex.h"
#include "MoRecord.h"
#include "NodeTable.h"
#include "RecordHistory.h"
#include "StoreTypes.h"
#include "base/ShortText.h"
#include "base/TextHash.h"
#include "model/Model.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace OrvHost {

/// The children of one class under one parent: a linked list of nodes, in the order in which they
/// were added.
struct ChildGroup {
    ClassIndex moc = 0;
    NodeId first = kNoNode;
    NodeId last = kNoNode;
    std::uint32_t liveCount = 0; ///< as of the latest commit
    CommitNumber changedAt = 0;  ///< commit in which a child was last added or deleted
};

/// The fixed part of a committed object: 64 bytes on a machine with 8-byte pointers.
struct MoNode {
    CommitNumber createdAt = 0;
    CommitNumber changedAt = 0; ///< commit in which the record was last replaced
    CommitNumber deletedAt = kNever;
    MoRecord record;                                 ///< the latest
    std::unique_ptr<std::vector<ChildGroup>> groups; ///< null while there are no children
    NodeId parent = kNoNode;
    NodeId next = kNoNode;     ///< sibling of the same class
    NodeId previous = kNoNode; ///< also of the same class
    ClassIndex moc = 0;
    std::uint32_t dnHash = 0;
    std::uint32_t place = 0; ///< among the objects that the same commit created
};

/// Some parents of the objects that MoTree::find found last for one of its users. A parent in a
/// snapshot keeps its DN for as long as the snapshot is open. No lock of its own.
class ParentsFoundLast {
public:
    bool isDnOf(NodeId parent, std::string_view dn) const {
        const Entry& entry = mEntries[parent % kPlaces];
        return entry.node == parent && entry.dn == dn;
    }
    /// A DN that is too long is not kept.
    void note(NodeId parent, std::string_view dn) {
        Entry& entry = mEntries[parent % kPlaces];
        entry.node = parent;
        entry.dn.keep(dn);
    }

private:
    static constexpr std::size_t kPlaces = 4;

    struct Entry {
        NodeId node = kNoNode;
        ShortText<168> dn;
    };
    std::array<Entry, kPlaces> mEntries;
};

/// An object that a commit creates. Its parent is a committed object, or one that comes before it
/// in the same change.
struct NewMo {
    NodeId parent = kNoNode;     ///< or else:
    std::size_t parentIndex = 0; ///< in TreeChange::created
    ClassIndex moc = 0;
    std::uint32_t dnHash = 0;
    MoRecord record;
    NodeId node = kNoNode; ///< set by MoTree::apply
};

/// All changes of one commit.
struct TreeChange {
    std::vector<NewMo> created;
    std::vector<std::pair<NodeId, MoRecord>> modified;
    std::vector<NodeId> deleted; ///< children before their parents
};

/// The committed objects in all versions that a transaction may still read: the latest record is in
/// the node, older records are in a separate history, and deleted objects keep their nodes until
/// they are reclaimed.
///
/// No lock of its own: many threads may read, or one may write (see VersionedTree). Objects that it
/// returns are valid until the next write.
class MoTree {
public:
    explicit MoTree(const Model& model);

    /// Exchanges all objects with \p other, which must have the same model.
    void swap(MoTree& other) noexcept;

    static std::uint32_t hashOf(const HashedText& dn) {
        return static_cast<std::uint32_t>(dn.hash);
    }
    static std::uint32_t hashOf(std::string_view dn) { return hashOf(HashedText(dn)); }

    /// The object with that DN in the snapshot \p at, or kNoNode. Constant time.
    NodeId find(const HashedText& dn, CommitNumber at) const;
    NodeId find(std::string_view dn, CommitNumber at) const { return find(HashedText(dn), at); }
    /// The same for one who keeps \p parents between the calls, while the snapshot is open: what
    /// stands above siblings is then gone through once.
    NodeId find(const HashedText& dn, CommitNumber at, ParentsFoundLast& parents) const;
    const MoNode& node(NodeId id) const { return mNodes[id]; }
    bool isVisible(NodeId id, CommitNumber at) const {
        const MoNode& one = mNodes[id];
        return one.createdAt <= at && at < one.deletedAt;
    }
    /// The record that a visible object has in the snapshot. Its texts stay valid as long as a
    /// snapshot is open that is not newer than \p at.
    const MoRecord& recordAt(NodeId id, CommitNumber at) const {
        const MoNode& one = mNodes[id];
        return one.changedAt <= at ? one.record : oldRecordAt(id, at);
    }
    /// The first visible child, or kNoNode.
    NodeId firstChild(NodeId parent, ClassIndex moc, CommitNumber at) const;
    /// The next visible sibling of the same class, or kNoNode.
    NodeId nextSibling(NodeId id, CommitNumber at) const;
    std::uint64_t countChildren(NodeId parent, ClassIndex moc, CommitNumber at) const;
    /// The list of children of one class, or null if there have never been any.
    const ChildGroup* findGroup(NodeId parent, ClassIndex moc) const;
    /// The commit in which a child of any class was last added or deleted; 0 if never.
    CommitNumber childrenChangedAt(NodeId parent) const;
    std::string dnOf(NodeId id) const;
    /// The children of one class, for people: "'Fan' objects under Network=1".
    std::string groupText(NodeId parent, ClassIndex moc) const;

    /// Adds an object under \p parent and returns it. All or nothing if memory runs out.
    NodeId add(NodeId parent, ClassIndex moc, std::uint32_t dnHash, MoRecord record,
               CommitNumber number);
    /// Adds an object with the stamps and the place that it had in another process; its parent and
    /// its older siblings must be there. No snapshot may be open.
    NodeId restore(NodeId parent, ClassIndex moc, std::uint32_t dnHash, MoRecord record,
                   CommitNumber createdAt, std::uint32_t place, CommitNumber changedAt);
    /// Calls \p visit with the number and the node of each object, in the order in which they were
    /// added, if none was ever deleted.
    template <class Visit>
    void eachAdded(const Visit& visit) const {
        for (std::size_t id = kRootNode + 1; id < mNodes.size(); ++id) {
            visit(static_cast<NodeId>(id), mNodes[static_cast<NodeId>(id)]);
        }
    }
    /// Whether older snapshots will be read after a commit.
    enum class OldRecords { Keep, Drop };
    /// Applies a commit. All or nothing if memory runs out. Records that are to be dropped are in
    /// \p change afterwards.
    void apply(TreeChange& change, CommitNumber number, OldRecords old);

    /// The oldest commit that left something to reclaim; kNever if there is none.
    CommitNumber oldestGarbage() const;
    /// Frees what no snapshot from \p oldest on can read, at most about \p limit records and
    /// objects.
    void reclaim(CommitNumber oldest, std::size_t limit) noexcept;

    std::uint64_t liveCount() const { return mLiveCount; }
    StoreMemory memory() const;

private:
    /// What is no longer needed after one commit.
    struct Garbage {
        CommitNumber number = 0;
        std::vector<NodeId> replaced;
        std::vector<NodeId> deleted; ///< children before their parents
        std::size_t done = 0;        ///< how many of `deleted` are reclaimed
    };

    bool takeStep(NodeId id, std::string_view& dn) const;
    bool hasDn(NodeId id, std::string_view dn) const;
    bool hasDn(NodeId id, std::string_view dn, ParentsFoundLast& parents) const;
    const MoRecord& oldRecordAt(NodeId id, CommitNumber at) const;
    NodeId skipInvisible(NodeId id, CommitNumber at) const;
    ChildGroup* group(NodeId parent, ClassIndex moc);
    void ensureGroup(NodeId parent, ClassIndex moc);
    NodeId allocate();
    void release(NodeId id) noexcept;

    void stage(TreeChange& change, OldRecords old);
    void stageCreated(TreeChange& change);
    void unstage(TreeChange& change) noexcept;
    void link(NodeId id, CommitNumber number) noexcept;
    void replace(NodeId id, MoRecord& record, CommitNumber number, OldRecords old) noexcept;
    void bury(NodeId id, CommitNumber number) noexcept;

    void dropOldRecord(NodeId id, CommitNumber number) noexcept;
    void unlink(NodeId id) noexcept;

    const Model& mModel;
    NodeTable<MoNode> mNodes;
    NodeId mFirstFree = kNoNode; ///< free nodes are linked through `next`
    std::uint64_t mFreeCount = 0;
    DnIndex mIndex;
    std::unordered_map<NodeId, RecordHistory> mHistory;
    std::deque<Garbage> mGarbage; ///< oldest first
    std::uint64_t mLiveCount = 0;
};

}

#endif
