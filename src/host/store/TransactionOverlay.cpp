// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "TransactionOverlay.h"

#include "base/DnView.h"

namespace OrvHost {

namespace {

std::string prefixOf(const std::string& dn) {
    return std::string(DnView(dn).siblingPrefix());
}

}

const CreatedMo* TransactionOverlay::findCreated(std::string_view dn) const {
    if (mCreated.empty()) {
        return nullptr;
    }
    const auto found = mCreated.find(dn);
    return found == mCreated.end() ? nullptr : &found->second;
}

CreatedMo* TransactionOverlay::findCreated(std::string_view dn) {
    return const_cast<CreatedMo*>(std::as_const(*this).findCreated(dn));
}

const TransactionOverlay::Group* TransactionOverlay::findGroup(const std::string& prefix) const {
    const auto found = mGroups.find(prefix);
    return found == mGroups.end() ? nullptr : &found->second;
}

void TransactionOverlay::addCreated(CreatedMo mo) {
    Group& group = mGroups[prefixOf(mo.dn)];
    mo.positionInAll = mAll.size();
    mo.positionInGroup = group.members.size();
    std::string key = mo.dn;
    CreatedMo* const entered = &mCreated.emplace(std::move(key), std::move(mo)).first->second;
    mAll.push_back(entered);
    group.members.push_back(entered);
    ++group.count;
}

void TransactionOverlay::dropCreated(CreatedMo* mo) {
    Group& group = mGroups[prefixOf(mo->dn)];
    group.members[mo->positionInGroup] = nullptr;
    --group.count;
    mAll[mo->positionInAll] = nullptr;
    const std::string dn = mo->dn;
    mCreated.erase(dn);
}

const std::string* TransactionOverlay::findModified(NodeId node) const {
    if (mModified.empty()) {
        return nullptr;
    }
    const auto found = mModified.find(node);
    return found == mModified.end() ? nullptr : &found->second;
}

void TransactionOverlay::setModified(NodeId node, std::string attributes) {
    mModified[node] = std::move(attributes);
}

void TransactionOverlay::markDeleted(NodeId node) {
    mDeletionOrder.push_back(node);
    mDeleted.insert(node);
    mModified.erase(node);
}

void TransactionOverlay::noteMembers(const std::string& parentDn, ClassIndex moc) {
    mMembers.emplace(parentDn, moc);
}

void TransactionOverlay::clear() {
    *this = TransactionOverlay();
}

}
