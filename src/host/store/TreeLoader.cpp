// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "TreeLoader.h"

#include "CheckedBytes.h"

#include <algorithm>

namespace OrvHost {

namespace {

[[noreturn]] void refuse(const ObjectRow& row, const std::string& why) {
    throw LogUnavailable("object " + std::to_string(row.id) + " of the store ('" +
                         std::string(row.name) + "') cannot be read: " + why);
}

}

TreeLoader::TreeLoader(const Model& model, MoTree& tree)
    : mModel(model), mTree(tree), mLoaded(std::make_shared<Loaded>()) {}

void TreeLoader::operator()(const ObjectRow& row) {
    requireOrder(row);
    selectParent(row);
    requireFit(row);
    Loaded& loaded = *mLoaded;
    loaded.dn.resize(loaded.parentLength);
    loaded.dn += mModel.classes[row.moc].name;
    loaded.dn += '=';
    loaded.dn += row.name;
    if (mTree.find(loaded.dn, kLatest) != kNoNode) {
        refuse(row, "there are two objects " + loaded.dn);
    }
    const NodeId node = mTree.restore(
        loaded.parentNode, row.moc, MoTree::hashOf(loaded.dn), MoRecord(row.name, row.attributes),
        row.id >> kPlaceBits, static_cast<std::uint32_t>(row.id % kMaxPlaces), row.changedAt);
    loaded.nodes.emplace_back(row.id, node);
    loaded.lastChange = std::max(loaded.lastChange, row.changedAt);
}

void TreeLoader::requireCommitsUntil(CommitNumber last) const {
    if (mLoaded->lastChange > last) {
        throw LogUnavailable("the store is at commit " + std::to_string(last) +
                             ", and an object in it is of commit " +
                             std::to_string(mLoaded->lastChange));
    }
}

void TreeLoader::selectParent(const ObjectRow& row) {
    Loaded& loaded = *mLoaded;
    if (row.parent == loaded.parent) {
        return;
    }
    const auto found = std::lower_bound(loaded.nodes.begin(), loaded.nodes.end(),
                                        std::pair<ObjectId, NodeId>(row.parent, 0));
    const bool exists = found != loaded.nodes.end() && found->first == row.parent;
    if (row.parent != 0 && !exists) {
        refuse(row, "its parent " + std::to_string(row.parent) + " is not there");
    }
    loaded.parent = row.parent;
    loaded.parentNode = exists ? found->second : kRootNode;
    loaded.dn = exists ? mTree.dnOf(loaded.parentNode) + "," : std::string();
    loaded.parentLength = loaded.dn.size();
}

void TreeLoader::requireOrder(const ObjectRow& row) const {
    if (row.id <= (mLoaded->nodes.empty() ? 0 : mLoaded->nodes.back().first)) {
        refuse(row, "it is not in its order");
    }
    if (row.changedAt < row.id >> kPlaceBits) {
        refuse(row, "it was changed before it was created");
    }
    if (row.moc >= mModel.classes.size()) {
        refuse(row, "there is no class " + std::to_string(row.moc));
    }
}

// Its parent is selected.
void TreeLoader::requireFit(const ObjectRow& row) const {
    const NodeId parent = mLoaded->parentNode;
    try {
        requirePlace(mModel,
                     parent == kRootNode ? nullptr : &mModel.classes[mTree.node(parent).moc],
                     row.moc, std::string(row.name));
        requireAttributes(mModel.classes[row.moc], row.attributes);
    } catch (const BytesError& error) {
        refuse(row, error.what());
    }
}

}
