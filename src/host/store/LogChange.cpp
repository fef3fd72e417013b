// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "LogChange.h"

#include "AttributeBytes.h"
#include "BytesWriter.h"
#include "CheckedBytes.h"
#include "base/DnView.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace OrvHost {

namespace {

// The first byte of an entry, should the form ever change.
constexpr std::uint64_t kForm = 1;

void putObjects(BytesWriter& out, const std::vector<LogChange::Object>& objects) {
    out.number(objects.size());
    for (const LogChange::Object& object : objects) {
        out.text(object.dn);
        out.text(object.attributes);
    }
}

std::vector<LogChange::Object> getObjects(CheckedReader& reader) {
    std::vector<LogChange::Object> objects;
    for (std::uint64_t count = reader.number(); count > 0; --count) {
        LogChange::Object& object = objects.emplace_back();
        object.dn = reader.text();
        object.attributes = reader.text();
    }
    return objects;
}

/// Finds what a change names in a tree.
class Places {
public:
    Places(const Model& model, const MoTree& tree) : mModel(model), mTree(tree) {}

    NodeId require(std::string_view dn) const {
        const NodeId node = mTree.find(dn, kLatest);
        if (node == kNoNode) {
            throw BytesError("there is no object '" + std::string(dn) + "'");
        }
        return node;
    }
    const ClassDef& classOf(NodeId node) const { return mModel.classes[mTree.node(node).moc]; }

    ClassIndex requireClass(std::string_view name) const {
        const auto moc = mModel.findClass(name);
        if (!moc) {
            throw BytesError("there is no class '" + std::string(name) + "'");
        }
        return *moc;
    }

private:
    const Model& mModel;
    const MoTree& mTree;
};

/// Makes a change of a tree step by step: all deleted objects, then all created, then all changed.
class TreeChangeMaker {
public:
    TreeChangeMaker(const Model& model, const MoTree& tree)
        : mModel(model), mTree(tree), mPlaces(model, tree) {}

    void addDeleted(const std::string& dn) {
        const NodeId node = mPlaces.require(dn);
        if (!mDeleted.insert(node).second) {
            throw BytesError("'" + dn + "' is deleted twice");
        }
        if (liveChildren(node) != mDeletedChildren[node]) {
            throw BytesError("'" + dn + "' is deleted, and its children are not, or after it");
        }
        ++mDeletedChildren[mTree.node(node).parent];
        mChange.deleted.push_back(node);
    }

    void addCreated(const LogChange::Object& object) {
        const DnView dn(object.dn);
        if (!dn.isValid()) {
            throw BytesError("'" + object.dn + "' is no DN");
        }
        const NodeId latest = mTree.find(object.dn, kLatest);
        if ((latest != kNoNode && mDeleted.count(latest) == 0) ||
            !mCreated.emplace(object.dn, mChange.created.size()).second) {
            throw BytesError("there is an object '" + object.dn + "' already");
        }
        const DnStep step = dn.last();
        NewMo created;
        created.moc = mPlaces.requireClass(step.type());
        const ClassDef* const parent = selectParent(dn.parent().text(), created);
        requirePlace(mModel, parent, created.moc, std::string(step.value()));
        requireAttributes(mModel.classes[created.moc], object.attributes);
        created.dnHash = MoTree::hashOf(object.dn);
        created.record = MoRecord(step.value(), object.attributes);
        mChange.created.push_back(std::move(created));
    }

    void addChanged(const LogChange::Object& object) {
        const NodeId node = mPlaces.require(object.dn);
        if (!mChanged.insert(node).second || mDeleted.count(node) != 0) {
            throw BytesError("'" + object.dn + "' is changed twice, or changed and deleted");
        }
        requireAttributes(mPlaces.classOf(node), object.attributes);
        const MoRecord& record = mTree.node(node).record;
        AttributeBytes::merge(record.attributes(), object.attributes, mMerged);
        mChange.modified.emplace_back(node, MoRecord(record.name(), mMerged));
    }

    TreeChange take() { return std::move(mChange); }

private:
    std::uint64_t liveChildren(NodeId node) const {
        std::uint64_t count = 0;
        if (const auto& groups = mTree.node(node).groups) {
            for (const ChildGroup& group : *groups) {
                count += group.liveCount;
            }
        }
        return count;
    }

    // Null: the top level.
    const ClassDef* selectParent(std::string_view dn, NewMo& created) const {
        const auto own = mCreated.find(dn);
        if (own != mCreated.end()) {
            created.parentIndex = own->second;
            return &mModel.classes[mChange.created[own->second].moc];
        }
        created.parent = dn.empty() ? kRootNode : mPlaces.require(dn);
        if (mDeleted.count(created.parent) != 0) {
            throw BytesError("'" + std::string(dn) + "' is deleted and given children");
        }
        return dn.empty() ? nullptr : &mPlaces.classOf(created.parent);
    }

    const Model& mModel;
    const MoTree& mTree;
    const Places mPlaces;
    TreeChange mChange;
    std::unordered_set<NodeId> mDeleted;
    std::unordered_map<NodeId, std::uint64_t> mDeletedChildren; ///< their number, by parent
    std::unordered_map<std::string_view, std::size_t>
        mCreated; ///< the texts are those of the change
    std::unordered_set<NodeId> mChanged;
    std::string mMerged; ///< here so that its memory is used again
};

}

std::string LogChange::encoded() const {
    std::string bytes;
    BytesWriter out(bytes);
    out.number(kForm);
    out.number(deleted.size());
    for (const std::string& dn : deleted) {
        out.text(dn);
    }
    putObjects(out, created);
    putObjects(out, changed);
    return bytes;
}

LogChange LogChange::decoded(std::string_view bytes) {
    CheckedReader reader(bytes);
    if (reader.number() != kForm) {
        throw BytesError("the change is in a form that this version does not know");
    }
    LogChange change;
    for (std::uint64_t count = reader.number(); count > 0; --count) {
        change.deleted.emplace_back(reader.text());
    }
    change.created = getObjects(reader);
    change.changed = getObjects(reader);
    if (!reader.atEnd()) {
        throw BytesError("there are more bytes than those of the change");
    }
    return change;
}

TreeChange toTreeChange(const LogChange& change, const Model& model, const MoTree& tree) {
    TreeChangeMaker maker(model, tree);
    for (const std::string& dn : change.deleted) {
        maker.addDeleted(dn);
    }
    for (const LogChange::Object& object : change.created) {
        maker.addCreated(object);
    }
    for (const LogChange::Object& object : change.changed) {
        maker.addChanged(object);
    }
    return maker.take();
}

std::vector<ObjectChange> describe(const LogChange& change, const Model& model,
                                   const MoTree& tree) {
    using Kind = ObjectChange::Kind;
    const Places places(model, tree);
    std::vector<ObjectChange> all;
    for (const std::string& dn : change.deleted) {
        const NodeId node = places.require(dn);
        all.push_back(describeChange(Kind::Deleted, dn, places.classOf(node),
                                     tree.node(node).record.attributes(), {}));
    }
    for (const LogChange::Object& object : change.created) {
        const ClassIndex moc = places.requireClass(DnView(object.dn).last().type());
        all.push_back(
            describeChange(Kind::Created, object.dn, model.classes[moc], {}, object.attributes));
    }
    std::string merged;
    for (const LogChange::Object& object : change.changed) {
        const NodeId node = places.require(object.dn);
        const std::string_view before = tree.node(node).record.attributes();
        AttributeBytes::merge(before, object.attributes, merged);
        ObjectChange changed =
            describeChange(Kind::Changed, object.dn, places.classOf(node), before, merged);
        if (!changed.attributes.empty()) {
            all.push_back(std::move(changed));
        }
    }
    const auto firstChanged = std::find_if(
        all.begin(), all.end(), [](const ObjectChange& one) { return one.kind == Kind::Changed; });
    std::sort(firstChanged, all.end(),
              [](const ObjectChange& one, const ObjectChange& two) { return one.dn < two.dn; });
    return all;
}

}
