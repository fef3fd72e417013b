// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "MoTree.h"

#include "base/DnView.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace OrvHost {

MoTree::MoTree(const Model& model) : mModel(model) {
    mNodes.emplace_back();
}

std::uint32_t MoTree::hashOf(std::string_view dn) {
    const std::uint64_t hash = std::hash<std::string_view>()(dn);
    return static_cast<std::uint32_t>(hash ^ (hash >> 32U));
}

bool MoTree::isVisible(NodeId id, CommitNumber at) const {
    const MoNode& one = mNodes[id];
    return one.createdAt <= at && at < one.deletedAt;
}

// Compares from the last step to the first, since nodes link to their parents.
bool MoTree::hasDn(NodeId id, std::string_view dn) const {
    for (DnView rest(dn);; rest = rest.parent()) {
        const MoNode& one = mNodes[id];
        const DnStep step = rest.last();
        if (step.value() != one.record.name() || step.type() != mModel.classes[one.moc].name) {
            return false;
        }
        if (one.parent == kRootNode || !rest.hasParent()) {
            return one.parent == kRootNode && !rest.hasParent();
        }
        id = one.parent;
    }
}

NodeId MoTree::find(std::string_view dn, CommitNumber at) const {
    return mIndex.find(hashOf(dn), [&](NodeId id) { return isVisible(id, at) && hasDn(id, dn); });
}

const MoRecord& MoTree::recordAt(NodeId id, CommitNumber at) const {
    const MoNode& one = mNodes[id];
    if (one.changedAt <= at) {
        return one.record;
    }
    // Oldest first: the first record that was replaced after the snapshot is the one that it shows.
    const std::vector<OldRecord>& older = mHistory.at(id);
    return std::find_if(older.begin(), older.end(),
                        [at](const OldRecord& old) { return old.replacedAt > at; })
        ->record;
}

const ChildGroup* MoTree::findGroup(NodeId parent, ClassIndex moc) const {
    const auto& groups = mNodes[parent].groups;
    if (!groups) {
        return nullptr;
    }
    const auto found = std::find_if(groups->begin(), groups->end(),
                                    [moc](const ChildGroup& group) { return group.moc == moc; });
    return found == groups->end() ? nullptr : &*found;
}

ChildGroup* MoTree::group(NodeId parent, ClassIndex moc) {
    return const_cast<ChildGroup*>(std::as_const(*this).findGroup(parent, moc));
}

NodeId MoTree::skipInvisible(NodeId id, CommitNumber at) const {
    while (id != kNoNode && !isVisible(id, at)) {
        id = mNodes[id].next;
    }
    return id;
}

NodeId MoTree::firstChild(NodeId parent, ClassIndex moc, CommitNumber at) const {
    const ChildGroup* children = findGroup(parent, moc);
    return children == nullptr ? kNoNode : skipInvisible(children->first, at);
}

NodeId MoTree::nextSibling(NodeId id, CommitNumber at) const {
    return skipInvisible(mNodes[id].next, at);
}

std::uint64_t MoTree::countChildren(NodeId parent, ClassIndex moc, CommitNumber at) const {
    const ChildGroup* children = findGroup(parent, moc);
    // No child was added or deleted since the snapshot, so the latest number is right for it, too.
    if (children == nullptr || children->changedAt <= at) {
        return children == nullptr ? 0 : children->liveCount;
    }
    std::uint64_t count = 0;
    for (NodeId id = firstChild(parent, moc, at); id != kNoNode; id = nextSibling(id, at)) {
        ++count;
    }
    return count;
}

std::string MoTree::dnOf(NodeId id) const {
    std::vector<NodeId> path;
    for (; id != kRootNode; id = mNodes[id].parent) {
        path.push_back(id);
    }
    std::string dn;
    for (auto step = path.rbegin(); step != path.rend(); ++step) {
        const MoNode& one = mNodes[*step];
        appendStep(dn, mModel.classes[one.moc].name, one.record.name());
    }
    return dn;
}

void MoTree::ensureGroup(NodeId parent, ClassIndex moc) {
    auto& groups = mNodes[parent].groups;
    if (!groups) {
        groups = std::make_unique<std::vector<ChildGroup>>();
    }
    if (findGroup(parent, moc) == nullptr) {
        groups->reserve(groups->size() + 1); // most parents have few classes of children
        groups->emplace_back().moc = moc;
    }
}

NodeId MoTree::allocate() {
    if (mFirstFree == kNoNode) {
        mNodes.emplace_back();
        return static_cast<NodeId>(mNodes.size() - 1);
    }
    const NodeId id = mFirstFree;
    mFirstFree = std::exchange(mNodes[id].next, kNoNode);
    --mFreeCount;
    return id;
}

void MoTree::release(NodeId id) noexcept {
    mNodes[id] = MoNode();
    mNodes[id].next = std::exchange(mFirstFree, id);
    ++mFreeCount;
}

void MoTree::link(NodeId id, CommitNumber number) noexcept {
    MoNode& one = mNodes[id];
    one.createdAt = number;
    one.changedAt = number;
    ChildGroup& siblings = *group(one.parent, one.moc);
    one.previous = siblings.last;
    (siblings.last == kNoNode ? siblings.first : mNodes[siblings.last].next) = id;
    siblings.last = id;
    ++siblings.liveCount;
    siblings.changedAt = number;
    mIndex.insert(one.dnHash, id);
    ++mLiveCount;
}

void MoTree::add(NodeId parent, ClassIndex moc, std::uint32_t dnHash, MoRecord record,
                 CommitNumber number) {
    TreeChange change;
    NewMo& created = change.created.emplace_back();
    created.parent = parent;
    created.moc = moc;
    created.dnHash = dnHash;
    created.record = std::move(record);
    apply(change, number);
}

// Everything that can fail when memory runs out happens here, before any change is visible.
void MoTree::stage(TreeChange& change) {
    stageCreated(change);
    for (const auto& modified : change.modified) {
        auto& older = mHistory[modified.first];
        older.reserve(older.size() + 1);
    }
    if (change.modified.empty() && change.deleted.empty()) {
        return;
    }
    // With this memory reserved, replace and bury cannot fail.
    Garbage garbage;
    garbage.replaced.reserve(change.modified.size());
    garbage.deleted.reserve(change.deleted.size());
    mGarbage.push_back(std::move(garbage));
}

void MoTree::stageCreated(TreeChange& change) {
    mIndex.reserve(change.created.size());
    for (NewMo& created : change.created) {
        created.node = allocate();
        MoNode& one = mNodes[created.node];
        one.parent =
            created.parent != kNoNode ? created.parent : change.created[created.parentIndex].node;
        one.moc = created.moc;
        one.dnHash = created.dnHash;
        one.record = std::move(created.record);
        ensureGroup(one.parent, one.moc);
    }
}

void MoTree::unstage(TreeChange& change) noexcept {
    for (NewMo& created : change.created) {
        if (created.node != kNoNode) {
            release(created.node);
            created.node = kNoNode;
        }
    }
}

void MoTree::replace(NodeId id, MoRecord& record, CommitNumber number) noexcept {
    MoNode& one = mNodes[id];
    mHistory.find(id)->second.push_back({number, std::move(one.record)});
    one.record = std::move(record);
    one.changedAt = number;
    mGarbage.back().replaced.push_back(id);
}

void MoTree::bury(NodeId id, CommitNumber number) noexcept {
    MoNode& one = mNodes[id];
    // The node keeps its links and its entry in the index, because older snapshots still show it.
    one.deletedAt = number;
    ChildGroup& siblings = *group(one.parent, one.moc);
    --siblings.liveCount;
    siblings.changedAt = number;
    --mLiveCount;
    mGarbage.back().deleted.push_back(id);
}

void MoTree::apply(TreeChange& change, CommitNumber number) {
    try {
        stage(change);
    } catch (...) {
        unstage(change);
        throw;
    }
    for (const NewMo& created : change.created) {
        link(created.node, number);
    }
    for (auto& modified : change.modified) {
        replace(modified.first, modified.second, number);
    }
    for (const NodeId deleted : change.deleted) {
        bury(deleted, number);
    }
    if (!change.modified.empty() || !change.deleted.empty()) {
        mGarbage.back().number = number;
    }
}

CommitNumber MoTree::oldestGarbage() const {
    return mGarbage.empty() ? kNever : mGarbage.front().number;
}

void MoTree::dropOldRecord(NodeId id, CommitNumber number) noexcept {
    const auto found = mHistory.find(id);
    if (found == mHistory.end()) {
        return;
    }
    std::vector<OldRecord>& older = found->second;
    older.erase(std::remove_if(older.begin(), older.end(),
                               [=](const OldRecord& old) { return old.replacedAt <= number; }),
                older.end());
    if (older.empty()) {
        mHistory.erase(found);
    }
}

void MoTree::unlink(NodeId id) noexcept {
    const MoNode& one = mNodes[id];
    ChildGroup& siblings = *group(one.parent, one.moc);
    (one.previous == kNoNode ? siblings.first : mNodes[one.previous].next) = one.next;
    (one.next == kNoNode ? siblings.last : mNodes[one.next].previous) = one.previous;
    mIndex.erase(one.dnHash, id);
    mHistory.erase(id);
    release(id);
}

void MoTree::reclaim(CommitNumber oldest, std::size_t limit) noexcept {
    while (limit > 0 && oldestGarbage() <= oldest) {
        Garbage& garbage = mGarbage.front();
        for (const NodeId id : garbage.replaced) {
            dropOldRecord(id, garbage.number);
        }
        // The next call comes back to this commit if the limit leaves some of its deleted objects.
        garbage.replaced.clear();
        for (; limit > 0 && garbage.done < garbage.deleted.size(); --limit) {
            unlink(garbage.deleted[garbage.done++]);
        }
        if (garbage.done == garbage.deleted.size()) {
            mGarbage.pop_front();
        }
    }
}

StoreMemory MoTree::memory() const {
    StoreMemory sum;
    sum.objects = mNodes.size() - 1 - mFreeCount;
    sum.nodes = mNodes.size() * sizeof(MoNode);
    sum.index = mIndex.bytes();
    for (const MoNode& one : mNodes) {
        sum.records += one.record.size();
        if (one.groups) {
            // NOLINTNEXTLINE(bugprone-sizeof-container): the vector object itself takes memory, too
            sum.childLists += sizeof(*one.groups) + one.groups->capacity() * sizeof(ChildGroup);
        }
    }
    for (const auto& older : mHistory) {
        for (const OldRecord& old : older.second) {
            sum.history += sizeof(OldRecord) + old.record.size();
        }
    }
    return sum;
}

}
