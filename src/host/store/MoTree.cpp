// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "MoTree.h"

#include "base/DnView.h"
#include "base/ShortText.h"

#include <algorithm>
#include <utility>

namespace OrvHost {

MoTree::MoTree(const Model& model) : mModel(model) {
    mNodes.add();
}

void MoTree::swap(MoTree& other) noexcept {
    std::swap(mNodes, other.mNodes);
    std::swap(mFirstFree, other.mFirstFree);
    std::swap(mFreeCount, other.mFreeCount);
    std::swap(mIndex, other.mIndex);
    std::swap(mHistory, other.mHistory);
    std::swap(mGarbage, other.mGarbage);
    std::swap(mLiveCount, other.mLiveCount);
}

// Takes the last step and the comma before it away from `dn`. False if the step is another one than
// that of the object, or if the object and `dn` are not equally near to the top.
inline bool MoTree::takeStep(NodeId id, std::string_view& dn) const {
    const MoNode& one = mNodes[id];
    const std::string_view name = one.record.name();
    const std::string& type = mModel.classes[one.moc].name;
    const std::size_t size = type.size() + 1 + name.size();
    if (dn.size() < size) {
        return false;
    }
    const std::size_t left = dn.size() - size;
    const char* const step = dn.data() + left;
    if (step[type.size()] != '=' || !isSameText(step + type.size() + 1, name.data(), name.size()) ||
        !isSameText(step, type.data(), type.size())) {
        return false;
    }
    const bool isAtTop = one.parent == kRootNode;
    if (left == 0 || isAtTop) {
        dn = {};
        return left == 0 && isAtTop;
    }
    dn = dn.substr(0, left - 1);
    return step[-1] == ',';
}

// Step by step from the end, since nodes link to their parents.
bool MoTree::hasDn(NodeId id, std::string_view dn) const {
    while (takeStep(id, dn)) {
        id = mNodes[id].parent;
        if (id == kRootNode) {
            return true;
        }
    }
    return false;
}

bool MoTree::hasDn(NodeId id, std::string_view dn, ParentsFoundLast& parents) const {
    if (!takeStep(id, dn)) {
        return false;
    }
    const NodeId above = mNodes[id].parent;
    if (above == kRootNode) {
        return true;
    }
    if (parents.isDnOf(above, dn)) {
        return true;
    }
    const bool isFound = hasDn(above, dn);
    if (isFound) {
        parents.note(above, dn);
    }
    return isFound;
}

NodeId MoTree::find(const HashedText& dn, CommitNumber at) const {
    return mIndex.find(hashOf(dn),
                       [&](NodeId id) { return isVisible(id, at) && hasDn(id, dn.text); });
}

NodeId MoTree::find(const HashedText& dn, CommitNumber at, ParentsFoundLast& parents) const {
    return mIndex.find(hashOf(dn),
                       [&](NodeId id) { return isVisible(id, at) && hasDn(id, dn.text, parents); });
}

const MoRecord& MoTree::oldRecordAt(NodeId id, CommitNumber at) const {
    const auto history = mHistory.find(id);
    const MoRecord* const old = history == mHistory.end() ? nullptr : history->second.find(at);
    return old == nullptr ? mNodes[id].record : *old;
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

CommitNumber MoTree::childrenChangedAt(NodeId parent) const {
    CommitNumber latest = 0;
    if (const auto& groups = mNodes[parent].groups) {
        for (const ChildGroup& group : *groups) {
            latest = std::max(latest, group.changedAt);
        }
    }
    return latest;
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

std::string MoTree::groupText(NodeId parent, ClassIndex moc) const {
    return "'" + mModel.classes[moc].name + "' objects" +
           (parent == kRootNode ? " at the top level" : " under " + dnOf(parent));
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
        mNodes.add();
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

NodeId MoTree::add(NodeId parent, ClassIndex moc, std::uint32_t dnHash, MoRecord record,
                   CommitNumber number) {
    TreeChange change;
    NewMo& created = change.created.emplace_back();
    created.parent = parent;
    created.moc = moc;
    created.dnHash = dnHash;
    created.record = std::move(record);
    apply(change, number, OldRecords::Drop);
    mNodes[created.node].place = created.node; // each has a place of its own
    return created.node;
}

NodeId MoTree::restore(NodeId parent, ClassIndex moc, std::uint32_t dnHash, MoRecord record,
                       CommitNumber createdAt, std::uint32_t place, CommitNumber changedAt) {
    const NodeId id = add(parent, moc, dnHash, std::move(record), createdAt);
    mNodes[id].place = place;
    mNodes[id].changedAt = changedAt;
    return id;
}

// Everything that can fail when memory runs out happens here, before any change is visible.
void MoTree::stage(TreeChange& change, OldRecords old) {
    stageCreated(change);
    const std::size_t kept = old == OldRecords::Keep ? change.modified.size() : 0;
    for (std::size_t at = 0; at < kept; ++at) {
        mHistory[change.modified[at].first].reserveOne();
    }
    if (kept == 0 && change.deleted.empty()) {
        return;
    }
    // With this memory reserved, replace and bury cannot fail.
    Garbage garbage;
    garbage.replaced.reserve(kept);
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
        one.place = static_cast<std::uint32_t>(&created - change.created.data());
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

void MoTree::replace(NodeId id, MoRecord& record, CommitNumber number, OldRecords old) noexcept {
    MoNode& one = mNodes[id];
    std::swap(one.record, record);
    one.changedAt = number;
    if (old == OldRecords::Keep) {
        mHistory.find(id)->second.add(number, std::move(record));
        mGarbage.back().replaced.push_back(id);
    }
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

void MoTree::apply(TreeChange& change, CommitNumber number, OldRecords old) {
    const std::size_t garbage = mGarbage.size();
    try {
        stage(change, old);
    } catch (...) {
        unstage(change);
        throw;
    }
    for (const NewMo& created : change.created) {
        link(created.node, number);
    }
    for (auto& modified : change.modified) {
        replace(modified.first, modified.second, number, old);
    }
    for (const NodeId deleted : change.deleted) {
        bury(deleted, number);
    }
    if (mGarbage.size() > garbage) {
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
    found->second.dropUntil(number);
    if (found->second.isEmpty()) {
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
        // The next call comes back to this commit if the limit leaves something of it.
        for (; limit > 0 && !garbage.replaced.empty(); --limit) {
            dropOldRecord(garbage.replaced.back(), garbage.number);
            garbage.replaced.pop_back();
        }
        for (; limit > 0 && garbage.done < garbage.deleted.size(); --limit) {
            unlink(garbage.deleted[garbage.done++]);
        }
        if (garbage.replaced.empty() && garbage.done == garbage.deleted.size()) {
            mGarbage.pop_front();
        }
    }
}

StoreMemory MoTree::memory() const {
    StoreMemory sum;
    sum.objects = mNodes.size() - 1 - mFreeCount;
    sum.nodes = mNodes.size() * sizeof(MoNode);
    sum.index = mIndex.bytes();
    for (std::size_t id = 0; id < mNodes.size(); ++id) {
        const MoNode& one = mNodes[static_cast<NodeId>(id)];
        sum.records += one.record.size();
        if (one.groups) {
            // NOLINTNEXTLINE(bugprone-sizeof-container): the vector object itself takes memory, too
            sum.childLists += sizeof(*one.groups) + one.groups->capacity() * sizeof(ChildGroup);
        }
    }
    for (const auto& older : mHistory) {
        sum.history += older.second.bytes();
    }
    return sum;
}

}
