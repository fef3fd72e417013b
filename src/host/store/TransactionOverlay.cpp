// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "TransactionOverlay.h"

#include "base/DnView.h"

namespace OrvHost {

const CreatedMo* TransactionOverlay::findCreated(const HashedText& dn) const {
    if (mCreated.empty()) {
        return nullptr;
    }
    const auto found = mCreated.find(dn);
    return found == mCreated.end() ? nullptr : &found->second;
}

const TransactionOverlay::Group* TransactionOverlay::findGroup(std::string_view prefix) const {
    const auto found = mGroups.find(prefix);
    return found == mGroups.end() ? nullptr : &found->second;
}

// The group of an object and its siblings.
TransactionOverlay::Group& TransactionOverlay::groupOf(std::string_view dn) {
    const std::string_view prefix = DnView(dn).siblingPrefix();
    if (mRecentGroup == nullptr || mRecentGroup->first != prefix) {
        auto found = mGroups.find(prefix);
        if (found == mGroups.end()) {
            found = mGroups.try_emplace(std::string(prefix)).first;
        }
        mRecentGroup = &*found;
    }
    return mRecentGroup->second;
}

void TransactionOverlay::addCreated(std::string dn, CreatedMo mo) {
    Group& group = groupOf(dn);
    mo.positionInAll = mAll.size();
    mo.positionInGroup = group.members.size();
    const auto entered = mCreated.emplace(std::move(dn), std::move(mo)).first;
    entered->second.dn = entered->first;
    mAll.push_back(&entered->second);
    group.members.push_back(&entered->second);
    ++group.count;
}

void TransactionOverlay::dropCreated(const CreatedMo& mo) {
    Group& group = groupOf(mo.dn);
    group.members[mo.positionInGroup] = nullptr;
    --group.count;
    mAll[mo.positionInAll] = nullptr;
    mCreated.erase(mCreated.find(mo.dn));
}

void TransactionOverlay::markDeleted(NodeId node, NodeId parent, ClassIndex moc) {
    mDeletionOrder.push_back(node);
    mDeleted[node] = node;
    ++mDeletedCounts[groupKey(parent, moc)];
    mModified.erase(node);
}

std::uint64_t TransactionOverlay::deletedCount(NodeId parent, ClassIndex moc) const {
    const std::uint64_t* const count = mDeletedCounts.find(groupKey(parent, moc));
    return count == nullptr ? 0 : *count;
}

void TransactionOverlay::noteMembers(const std::string& parentDn, ClassIndex moc) {
    mMembers.emplace(parentDn, moc);
}

void TransactionOverlay::clear() {
    *this = TransactionOverlay();
}

}
