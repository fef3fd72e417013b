// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "StoreTransaction.h"

#include "AttributeBytes.h"
#include "WriteCheck.h"
#include "base/DnView.h"
#include "model/ConditionalReferences.h"

#include <algorithm>
#include <utility>

namespace OrvHost {

namespace {

std::string placeOf(const std::string& parentDn) {
    return parentDn.empty() ? " at the top level" : " under " + parentDn;
}

}

StoreTransaction::StoreTransaction(const Model& model, VersionedTree& tree, ClaimTable& claims,
                                   CommitFeed& feed, TransactionId id, std::string author)
    : mModel(model),
      mTree(tree),
      mSnapshot(tree.openSnapshot()),
      mFeed(feed),
      mGuard(tree, claims, id, std::move(author), mSnapshot) {}

StoreTransaction::~StoreTransaction() {
    rollback();
}

void StoreTransaction::end() noexcept {
    mOpen = false;
    mGuard.release();
    mTree.closeSnapshot(mSnapshot);
    mOverlay.clear();
}

void StoreTransaction::rollback() noexcept {
    if (mOpen) {
        end();
    }
}

void StoreTransaction::requireOpen() const {
    if (!mOpen) {
        throw HostError(OrvNotActive, "transaction " + std::to_string(id()) + " has ended already");
    }
}

StoreTransaction::Mo StoreTransaction::find(std::string_view dn) const {
    if (const CreatedMo* created = mOverlay.findCreated(dn)) {
        return {kNoNode, created};
    }
    const NodeId node = mTree.read([&](const MoTree& tree) { return tree.find(dn, mSnapshot); });
    return {node == kNoNode || mOverlay.isDeleted(node) ? kNoNode : node, nullptr};
}

StoreTransaction::Mo StoreTransaction::require(const std::string& dn) const {
    requireOpen();
    const Mo mo = find(dn);
    if (!mo) {
        throw HostError(OrvNotExist, "there is no object '" + dn + "'");
    }
    return mo;
}

StoreTransaction::Mo StoreTransaction::requireParent(const std::string& dn) const {
    if (dn.empty()) {
        requireOpen();
        return {kRootNode, nullptr};
    }
    return require(dn);
}

ClassIndex StoreTransaction::requireChildClass(const std::string& parentDn, const Mo& parent,
                                               const std::string& className) const {
    const ClassIndex moc = WriteCheck::requireClass(mModel, className);
    withDn(parentDn.empty() ? "top level" : parentDn,
           [&] { WriteCheck::containment(mModel, classOf(parent), moc); });
    return moc;
}

ClassIndex StoreTransaction::classIndexOf(const Mo& mo) const {
    return mo.created != nullptr
               ? mo.created->moc
               : mTree.read([&](const MoTree& tree) { return tree.node(mo.node).moc; });
}

// Null for the top level.
const ClassDef* StoreTransaction::classOf(const Mo& mo) const {
    return mo.node == kRootNode ? nullptr : &mModel.classes[classIndexOf(mo)];
}

std::string StoreTransaction::dnOf(const Mo& mo) const {
    return mo.created != nullptr
               ? mo.created->dn
               : mTree.read([&](const MoTree& tree) { return tree.dnOf(mo.node); });
}

std::string StoreTransaction::nameOf(const Mo& mo) const {
    if (mo.created != nullptr) {
        return mo.created->name;
    }
    return mTree.read(
        [&](const MoTree& tree) { return std::string(tree.node(mo.node).record.name()); });
}

std::string StoreTransaction::attributesOf(const Mo& mo) const {
    if (mo.created != nullptr) {
        return mo.created->attributes;
    }
    if (const std::string* modified = mOverlay.findModified(mo.node)) {
        return *modified;
    }
    return committedAttributes(mo.node);
}

std::string StoreTransaction::committedAttributes(NodeId node) const {
    return mTree.read([&](const MoTree& tree) {
        return std::string(tree.recordAt(node, mSnapshot).attributes());
    });
}

bool StoreTransaction::exists(const std::string& dn) const {
    requireOpen();
    return static_cast<bool>(find(dn));
}

const ClassDef& StoreTransaction::classOf(const std::string& dn) const {
    return *classOf(require(dn));
}

AttributeValue StoreTransaction::valueOf(const Mo& mo, const std::string& attributes,
                                         const std::string& name) const {
    const ClassDef& moc = *classOf(mo);
    const AttributeIndex index = WriteCheck::requireAttribute(moc, name);
    const AttributeDef& def = moc.attributes[index];
    if (def.isGivenByName()) {
        return WriteCheck::nameValue(moc, def, nameOf(mo));
    }
    if (auto value = AttributeBytes::read(moc, attributes, index)) {
        return std::move(*value);
    }
    const bool isDefault =
        def.defaultValue &&
        (!def.isConditional || WriteCheck::isDefaultInUse(moc, def.name, attributes));
    return isDefault ? *def.defaultValue : AttributeValue{def.type.kind, {}};
}

AttributeValue StoreTransaction::get(const std::string& dn, const std::string& attribute) const {
    const Mo mo = require(dn);
    return withDn(dn, [&] { return valueOf(mo, attributesOf(mo), attribute); });
}

std::vector<AttributeValue>
StoreTransaction::get(const std::string& dn, const std::vector<std::string>& attributes) const {
    const Mo mo = require(dn);
    const std::string bytes = attributesOf(mo);
    std::vector<AttributeValue> values;
    values.reserve(attributes.size());
    for (const std::string& attribute : attributes) {
        values.push_back(withDn(dn, [&] { return valueOf(mo, bytes, attribute); }));
    }
    return values;
}

std::vector<NamedValue> StoreTransaction::stored(const std::string& dn) const {
    const Mo mo = require(dn);
    const ClassDef& moc = *classOf(mo);
    const std::string bytes = attributesOf(mo);
    std::vector<NamedValue> values;
    for (AttributeIndex index = 0; index < moc.attributes.size(); ++index) {
        if (auto value = AttributeBytes::read(moc, bytes, index)) {
            values.emplace_back(moc.attributes[index].name, std::move(*value));
        }
    }
    return values;
}

std::uint64_t StoreTransaction::count(const std::string& parentDn,
                                      const std::string& className) const {
    const Mo parent = requireParent(parentDn);
    return countOf(parentDn, parent, requireChildClass(parentDn, parent, className));
}

std::uint64_t StoreTransaction::countOf(const std::string& parentDn, const Mo& parent,
                                        ClassIndex moc) const {
    const auto* created =
        mOverlay.findGroup(DnView(parentDn).childPrefix(mModel.classes[moc].name));
    std::uint64_t count = created == nullptr ? 0 : created->count;
    if (parent.node == kNoNode) {
        return count;
    }
    mTree.read([&](const MoTree& tree) {
        if (mOverlay.deleted().empty()) {
            count += tree.countChildren(parent.node, moc, mSnapshot);
            return;
        }
        for (NodeId id = tree.firstChild(parent.node, moc, mSnapshot); id != kNoNode;
             id = tree.nextSibling(id, mSnapshot)) {
            count += mOverlay.isDeleted(id) ? 0 : 1;
        }
    });
    return count;
}

ChildCursor StoreTransaction::children(const std::string& parentDn,
                                       const std::string& className) const {
    const Mo parent = requireParent(parentDn);
    ChildCursor cursor;
    cursor.mMoc = requireChildClass(parentDn, parent, className);
    cursor.mParent = parent.node;
    cursor.mCommittedDone = parent.node == kNoNode;
    cursor.mPrefix = DnView(parentDn).childPrefix(className);
    return cursor;
}

bool StoreTransaction::next(ChildCursor& cursor, std::string& name) const {
    requireOpen();
    return nextCommitted(cursor, name) || nextCreated(cursor, name);
}

// The open snapshot protects the child at the cursor's position, and its links, from reclaiming.
bool StoreTransaction::nextCommitted(ChildCursor& cursor, std::string& name) const {
    if (cursor.mCommittedDone) {
        return false;
    }
    return mTree.read([&](const MoTree& tree) {
        NodeId id = cursor.mPosition == kNoNode
                        ? tree.firstChild(cursor.mParent, cursor.mMoc, mSnapshot)
                        : tree.nextSibling(cursor.mPosition, mSnapshot);
        while (id != kNoNode && mOverlay.isDeleted(id)) {
            id = tree.nextSibling(id, mSnapshot);
        }
        cursor.mCommittedDone = id == kNoNode;
        cursor.mPosition = id;
        if (id != kNoNode) {
            name = tree.node(id).record.name();
        }
        return id != kNoNode;
    });
}

bool StoreTransaction::nextCreated(ChildCursor& cursor, std::string& name) const {
    const auto* created = mOverlay.findGroup(cursor.mPrefix);
    while (created != nullptr && cursor.mCreatedIndex < created->members.size()) {
        if (const CreatedMo* mo = created->members[cursor.mCreatedIndex++]) {
            name = mo->name;
            return true;
        }
    }
    return false;
}

void StoreTransaction::set(const std::string& dn, const std::vector<NamedValue>& values) {
    const Mo mo = require(dn);
    std::string bytes = attributesOf(mo);
    withDn(dn, [&] { WriteCheck::apply(*classOf(mo), values, WriteCheck::Writer::Client, bytes); });
    if (mo.created != nullptr) {
        mOverlay.findCreated(dn)->attributes = std::move(bytes);
        return;
    }
    mGuard.claimWrite(mo.node);
    mOverlay.setModified(mo.node, std::move(bytes));
}

void StoreTransaction::create(const std::string& parentDn, const std::string& className,
                              const std::string& namingAttribute, const std::string& name,
                              const std::vector<NamedValue>& values) {
    const Mo parent = requireParent(parentDn);
    const ClassIndex index = requireChildClass(parentDn, parent, className);
    const ClassDef& moc = mModel.classes[index];
    const AttributeDef* naming = moc.findAttribute(namingAttribute);
    if (naming == nullptr || !naming->isNaming) {
        throw HostError(OrvInvalidArgument,
                        "objects of class '" + className + "' are named by the attribute '" +
                            moc.namingAttribute + "', not '" + namingAttribute + "'");
    }
    WriteCheck::name(moc, name);
    const std::string dn = DnView(parentDn).child(className, name);
    if (find(dn)) {
        throw HostError(OrvAlreadyExist, "there is an object '" + dn + "' already");
    }
    std::string bytes = withDn(
        dn, [&] { return WriteCheck::initial(moc, name, values, WriteCheck::Writer::Client); });
    claimPlace(parentDn, parent, index, dn);

    CreatedMo created;
    created.dn = dn;
    created.moc = index;
    created.name = name;
    created.attributes = std::move(bytes);
    created.parentNode = parent.node;
    created.parentCreated = parent.created;
    mOverlay.addCreated(std::move(created));
}

// No other transaction can create objects under a parent that this transaction created, so nothing
// needs to be claimed there.
void StoreTransaction::claimPlace(const std::string& parentDn, const Mo& parent, ClassIndex moc,
                                  const std::string& dn) {
    claimMembership(parentDn, parent, moc);
    if (parent.created != nullptr) {
        return;
    }
    if (parent.node != kRootNode) {
        mGuard.claimCreateUnder(parent.node);
    }
    mGuard.claimName(dn, isDeletedHere(dn));
}

// A bound on the number of children applies to the result of all transactions together, so two
// transactions must not change the number at the same time.
void StoreTransaction::claimMembership(const std::string& parentDn, const Mo& parent,
                                       ClassIndex moc) {
    if (mModel.classes[moc].instances.containAll()) {
        return;
    }
    if (parent.created == nullptr) {
        mGuard.claimMembership(parent.node, moc,
                               "'" + mModel.classes[moc].name + "' objects" + placeOf(parentDn));
    }
    mOverlay.noteMembers(parentDn, moc);
}

bool StoreTransaction::isDeletedHere(const std::string& dn) const {
    const NodeId node = mTree.read([&](const MoTree& tree) { return tree.find(dn, mSnapshot); });
    return node != kNoNode && mOverlay.isDeleted(node);
}

void StoreTransaction::remove(const std::string& dn) {
    const Mo mo = require(dn);
    const std::string parentDn(DnView(dn).parent().text());
    claimMembership(parentDn, requireParent(parentDn), classIndexOf(mo));

    std::vector<Mo> all{mo};
    for (std::size_t at = 0; at < all.size(); ++at) {
        const Mo next = all[at];
        if (next.created == nullptr) {
            mGuard.claimDelete(next.node);
        }
        appendChildren(next, all);
    }
    // Children before their parents.
    for (auto next = all.rbegin(); next != all.rend(); ++next) {
        if (next->created == nullptr) {
            mOverlay.markDeleted(next->node);
        } else {
            mOverlay.dropCreated(mOverlay.findCreated(next->created->dn));
        }
    }
}

void StoreTransaction::appendChildren(const Mo& mo, std::vector<Mo>& all) const {
    const std::string dn = mOverlay.created().empty() ? std::string() : dnOf(mo);
    for (const ClassIndex moc : classOf(mo)->children) {
        if (mo.created == nullptr) {
            appendCommittedChildren(mo, moc, all);
        }
        const auto* created = mOverlay.findGroup(DnView(dn).childPrefix(mModel.classes[moc].name));
        if (created == nullptr) {
            continue;
        }
        for (const CreatedMo* child : created->members) {
            if (child != nullptr) {
                all.push_back({kNoNode, child});
            }
        }
    }
}

// All children that exist in the snapshot or in the latest commit. A child that was committed later
// is not visible here, but would lose its parent; a child that was deleted later is still visible
// here. Claiming either of them reports the conflict.
void StoreTransaction::appendCommittedChildren(const Mo& mo, ClassIndex moc,
                                               std::vector<Mo>& all) const {
    mTree.read([&](const MoTree& tree) {
        const ChildGroup* group = tree.findGroup(mo.node, moc);
        for (NodeId id = group == nullptr ? kNoNode : group->first; id != kNoNode;
             id = tree.node(id).next) {
            const bool counts = tree.isVisible(id, mSnapshot) || tree.isVisible(id, kLatest);
            if (counts && !mOverlay.isDeleted(id)) {
                all.push_back({id, nullptr});
            }
        }
    });
}

void StoreTransaction::checkCreated(const CreatedMo& mo,
                                    std::vector<std::string>& violations) const {
    const ClassDef& moc = mModel.classes[mo.moc];
    for (const std::string& name : WriteCheck::missing(moc, mo.attributes, true)) {
        violations.push_back(mo.dn + ": the mandatory attribute '" + name + "' of class '" +
                             moc.name + "' has no value");
    }
    checkConditions({kNoNode, &mo}, mo.attributes, violations);
    for (const ClassIndex child : moc.children) {
        if (mModel.classes[child].instances.lower > 0) {
            checkMembers(mo.dn, child, violations);
        }
    }
}

// Only here and never at a single set: the way from one case to another leads through none, or
// through both.
void StoreTransaction::checkConditions(const Mo& mo, const std::string& attributes,
                                       std::vector<std::string>& violations) const {
    const ClassIndex index = classIndexOf(mo);
    const ClassDef& moc = mModel.classes[index];
    for (const std::string& wrong : WriteCheck::wrongChoices(moc, attributes)) {
        violations.push_back(dnOf(mo) + ": " + wrong);
    }
    const auto valuesOf = [&](const std::string& name) {
        const auto found = AttributeBytes::read(moc, attributes, *moc.findAttributeIndex(name));
        return found.value_or(AttributeValue{ValueKind::MoRef, {}});
    };
    for (const std::string& wrong : tooFewReferences(mModel, index, valuesOf)) {
        violations.push_back(dnOf(mo) + ": " + wrong);
    }
}

void StoreTransaction::checkMembers(const std::string& parentDn, ClassIndex moc,
                                    std::vector<std::string>& violations) const {
    const Mo parent = parentDn.empty() ? Mo{kRootNode, nullptr} : find(parentDn);
    if (!parent) {
        return; // deleted by this transaction, together with its children
    }
    const ClassDef& child = mModel.classes[moc];
    const std::uint64_t count = countOf(parentDn, parent, moc);
    if (!child.instances.contain(count)) {
        violations.push_back("there are " + std::to_string(count) + " objects of class '" +
                             child.name + "'" + placeOf(parentDn) + ", expected " +
                             toText(child.instances));
    }
}

std::vector<std::string> StoreTransaction::check() const {
    requireOpen();
    std::vector<std::string> violations;
    if (!conflict().empty()) {
        violations.push_back("the transaction met a conflict: " + conflict());
    }
    for (const CreatedMo* mo : mOverlay.created()) {
        if (mo != nullptr) {
            checkCreated(*mo, violations);
        }
    }
    for (const auto& [node, attributes] : mOverlay.modified()) {
        checkConditions({node, nullptr}, attributes, violations);
    }
    for (const auto& [parentDn, moc] : mOverlay.changedMembers()) {
        checkMembers(parentDn, moc, violations);
    }
    return violations;
}

void StoreTransaction::commit() {
    requireOpen();
    mGuard.requireNoConflict();
    if (!mOverlay.isEmpty()) {
        TreeChange change = makeChange();
        mFeed.publish([&] { return changes(); },
                      [&] {
                          return mTree.commit(change, {id(), author()});
                      });
    }
    end();
}

ChangeSet StoreTransaction::changes() const {
    requireOpen();
    using Kind = ObjectChange::Kind;
    ChangeSet all;
    all.transaction = id();
    all.author = author();
    for (const NodeId node : mOverlay.deleted()) {
        all.objects.push_back(
            describe(Kind::Deleted, {node, nullptr}, committedAttributes(node), {}));
    }
    for (const CreatedMo* mo : mOverlay.created()) {
        if (mo != nullptr) {
            all.objects.push_back(describe(Kind::Created, {kNoNode, mo}, {}, mo->attributes));
        }
    }
    const std::size_t firstChanged = all.objects.size();
    for (const auto& [node, attributes] : mOverlay.modified()) {
        ObjectChange changed =
            describe(Kind::Changed, {node, nullptr}, committedAttributes(node), attributes);
        if (!changed.attributes.empty()) {
            all.objects.push_back(std::move(changed));
        }
    }
    std::sort(all.objects.begin() + static_cast<std::ptrdiff_t>(firstChanged), all.objects.end(),
              [](const ObjectChange& one, const ObjectChange& two) { return one.dn < two.dn; });
    return all;
}

// `before` and `after` as AttributeBytes.
ObjectChange StoreTransaction::describe(ObjectChange::Kind kind, const Mo& mo,
                                        const std::string& before, const std::string& after) const {
    const ClassDef& moc = *classOf(mo);
    ObjectChange change{kind, dnOf(mo), moc.name, {}};
    for (AttributeIndex index = 0; index < moc.attributes.size(); ++index) {
        const AttributeDef& def = moc.attributes[index];
        const AttributeValue none{def.type.kind, {}};
        AttributeValue old = AttributeBytes::read(moc, before, index).value_or(none);
        AttributeValue now = AttributeBytes::read(moc, after, index).value_or(none);
        if (!(old == now)) {
            change.attributes.push_back({def.name, std::move(old), std::move(now)});
        }
    }
    return change;
}

TreeChange StoreTransaction::makeChange() const {
    TreeChange change;
    std::vector<std::size_t> places(mOverlay.created().size());
    for (const CreatedMo* mo : mOverlay.created()) {
        if (mo == nullptr) {
            continue;
        }
        places[mo->positionInAll] = change.created.size();
        NewMo& created = change.created.emplace_back();
        created.parent = mo->parentNode;
        created.parentIndex =
            mo->parentCreated == nullptr ? 0 : places[mo->parentCreated->positionInAll];
        created.moc = mo->moc;
        created.dnHash = MoTree::hashOf(mo->dn);
        created.record = MoRecord(mo->name, mo->attributes);
    }
    for (const auto& modified : mOverlay.modified()) {
        change.modified.emplace_back(modified.first,
                                     MoRecord(nameOf({modified.first, nullptr}), modified.second));
    }
    change.deleted = mOverlay.deleted();
    return change;
}

}
