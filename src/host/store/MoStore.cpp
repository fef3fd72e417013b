// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "MoStore.h"

#include "WriteCheck.h"
#include "base/DnView.h"

#include <utility>

namespace OrvHost {

namespace {

// The steps above the last one are those of an object that exists, or the parent is not found.
void requireLastStep(DnView dn) {
    const bool hasEmptyParent = dn.hasParent() && dn.parent().isEmpty();
    if (!dn.last().isValid() || hasEmptyParent) {
        throw HostError(OrvInvalidArgument,
                        "this is no DN, expected steps Class=value with commas between");
    }
}

NodeId requireParent(const MoTree& tree, DnView dn) {
    const NodeId parent = dn.isEmpty() ? kRootNode : tree.find(dn.text(), kLatest);
    if (parent == kNoNode) {
        throw HostError(OrvNotExist, "the parent '" + std::string(dn.text()) +
                                         "' does not exist, expected parents before children");
    }
    return parent;
}

std::string initialAttributes(const ClassDef& moc, const std::string& name,
                              const std::vector<NamedValue>& attributes) {
    WriteCheck::name(moc, name);
    std::string bytes = WriteCheck::initial(moc, name, attributes, WriteCheck::Writer::System);
    const auto missing = WriteCheck::missing(moc, bytes, false);
    if (!missing.empty()) {
        throw HostError(OrvInvalidArgument, "the mandatory attribute '" + missing.front() +
                                                "' of class '" + moc.name + "' is missing");
    }
    return bytes;
}

void add(const Model& model, MoTree& tree, const std::string& dn,
         const std::vector<NamedValue>& attributes) {
    const DnView parts(dn);
    requireLastStep(parts);
    const DnStep step = parts.last();
    const ClassIndex moc = WriteCheck::requireClass(model, std::string(step.type()));
    const NodeId parent = requireParent(tree, parts.parent());
    WriteCheck::containment(
        model, parent == kRootNode ? nullptr : &model.classes[tree.node(parent).moc], moc);
    const std::string name(step.value());
    const std::string bytes = initialAttributes(model.classes[moc], name, attributes);
    if (tree.find(dn, kLatest) != kNoNode) {
        throw HostError(OrvAlreadyExist, "there is an object with this DN already");
    }
    tree.add(parent, moc, MoTree::hashOf(dn), MoRecord(name, bytes), 0);
}

}

MoStore::MoStore(const Model& model) : mModel(model), mTree(model) {}

void MoStore::load(const std::string& dn, const std::vector<NamedValue>& attributes) {
    withDn(dn, [&] { mTree.load([&](MoTree& tree) { add(mModel, tree, dn, attributes); }); });
}

std::unique_ptr<StoreTransaction> MoStore::begin(TransactionId id, std::string author) {
    return std::make_unique<StoreTransaction>(mModel, mTree, mClaims, mFeed, id, std::move(author));
}

std::uint64_t MoStore::size() const {
    return mTree.read([](const MoTree& tree) { return tree.liveCount(); });
}

StoreMemory MoStore::memory() const {
    return mTree.read([](const MoTree& tree) { return tree.memory(); });
}

}
