// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "StoreTransaction.h"

#include "AttributeBytes.h"
#include "WriteCheck.h"
#include "base/Counted.h"
#include "base/DnView.h"
#include "model/ConditionalReferences.h"

#include <algorithm>
#include <utility>

namespace OrvHost {

namespace {

// The position of an attribute that a client may set to these values.
AttributeIndex requireSettable(const ClassDef& moc, std::string_view attribute,
                               const AttributeValue& value) {
    const AttributeIndex index = WriteCheck::requireAttribute(moc, attribute);
    WriteCheck::value(moc, index, value, WriteCheck::Writer::Client);
    return index;
}

// Whether objects of the class can break a rule that only the whole transaction shows: see
// StoreTransaction::checkConditions.
bool hasConditions(const ClassDef& moc) {
    return !moc.choices.empty() ||
           std::any_of(moc.attributes.begin(), moc.attributes.end(),
                       [](const AttributeDef& attribute) { return attribute.isConditional; });
}

bool anyClass(const ClassDef& /*moc*/) {
    return true;
}

std::string placeOf(std::string_view parentDn) {
    return parentDn.empty() ? " at the top level" : " under " + std::string(parentDn);
}

}

AttributeValue AttributeView::value() const {
    if (def->isGivenByName()) {
        return WriteCheck::nameValue(*moc, *def, name);
    }
    if (stored) {
        return AttributeBytes::valuesOf(def->type, *stored);
    }
    return fallback != nullptr ? *fallback : AttributeValue{def->type.kind, {}};
}

StoreTransaction::StoreTransaction(const Model& model, std::shared_ptr<CommittedState> state,
                                   CommitFeed& feed, LogCommitter* log, TransactionId id,
                                   std::string author)
    : mModel(model),
      mState(std::move(state)),
      mTree(mState->tree),
      mSnapshot(mTree.openSnapshot()),
      mFeed(feed),
      mLog(log),
      mGuard(mTree, mState->claims, id, std::move(author), mSnapshot) {}

StoreTransaction::~StoreTransaction() {
    rollback();
}

void StoreTransaction::end() noexcept {
    mOpen = false;
    mGuard.release();
    mTree.closeSnapshot(mSnapshot);
    mOverlay.clear();
    mFoundLast.clear();
}

void StoreTransaction::rollback() noexcept {
    if (mOpen) {
        end();
    }
}

inline void StoreTransaction::requireOpen() const {
    if (!mOpen) {
        throw HostError(OrvNotActive, "transaction " + std::to_string(id()) + " has ended already");
    }
}

inline StoreTransaction::Mo StoreTransaction::moOf(const CreatedMo& created) {
    return {kNoNode, &created, created.moc, created.name, created.attributes};
}

// The open snapshot keeps the record, and so the texts, when the lock on the tree is released.
inline StoreTransaction::Mo StoreTransaction::moOf(const MoTree& tree, NodeId node) const {
    const MoRecord& record = tree.recordAt(node, mSnapshot);
    return {node, nullptr, tree.node(node).moc, record.name(), record.attributes()};
}

StoreTransaction::Mo StoreTransaction::moOf(NodeId node) const {
    return mTree.read([&](const MoTree& tree) { return moOf(tree, node); });
}

const StoreTransaction::Mo& StoreTransaction::find(std::string_view dn) const {
    static constexpr Mo nothing;
    if (dn.empty()) {
        return nothing;
    }
    FoundLast::Entry& last = mFoundLast.at(dn);
    if (last.dn != dn) {
        last.dn.clear();
        if (!search(HashedText(dn), last.mo)) {
            return nothing;
        }
        last.dn.keep(dn);
    } else if (last.mo.created != nullptr) {
        last.mo = moOf(*last.mo.created); // its attributes may have been written since
    }
    return last.mo;
}

// Writes to `mo` if it is found.
inline bool StoreTransaction::search(const HashedText& dn, Mo& mo) const {
    if (const CreatedMo* created = mOverlay.findCreated(dn)) {
        mo = moOf(*created);
        return true;
    }
    const NodeId found = mTree.read([&](const MoTree& tree) {
        const NodeId node = tree.find(dn, mSnapshot, mParentsFoundLast);
        if (node != kNoNode) {
            mo = moOf(tree, node);
        }
        return node;
    });
    return found != kNoNode && !mOverlay.isDeleted(found);
}

// Some objects at one look: a look for each takes longer than most visits, and one for all would
// keep the commits of others waiting.
template <class IsWanted, class Visit>
void StoreTransaction::eachModified(const IsWanted& isWanted, const Visit& visit) const {
    struct Modified {
        Mo mo;
        const std::string* changes;
    };
    std::array<Modified, 4> seen;
    const auto end = mOverlay.modified().end();
    for (auto next = mOverlay.modified().begin(); next != end;) {
        std::size_t count = 0;
        mTree.read([&](const MoTree& tree) {
            for (std::size_t looked = 0; next != end && looked < seen.size(); ++next, ++looked) {
                if (isWanted(mModel.classes[tree.node(next->first).moc])) {
                    seen[count++] = {moOf(tree, next->first), &next->second};
                }
            }
        });
        for (std::size_t at = 0; at < count; ++at) {
            visit(seen[at].mo, *seen[at].changes);
        }
    }
}

const StoreTransaction::Mo& StoreTransaction::require(std::string_view dn) const {
    requireOpen();
    const Mo& mo = find(dn);
    if (!mo) {
        throw HostError(OrvNotExist, "there is no object '" + std::string(dn) + "'");
    }
    return mo;
}

StoreTransaction::Mo StoreTransaction::requireParent(std::string_view dn) const {
    if (dn.empty()) {
        requireOpen();
        return {kRootNode};
    }
    return require(dn);
}

ClassIndex StoreTransaction::requireChildClass(std::string_view parentDn, const Mo& parent,
                                               std::string_view className) const {
    const ClassIndex above = parent.node == kRootNode ? ChildClassTable::topLevel : parent.moc;
    if (const auto* child = mModel.childClasses.find(above, className)) {
        return child->moc;
    }
    const ClassIndex moc = WriteCheck::requireClass(mModel, className);
    withDn(parentDn.empty() ? "top level" : parentDn,
           [&] { WriteCheck::containment(mModel, classOf(parent), moc); });
    return moc;
}

// Null for the top level.
inline const ClassDef* StoreTransaction::classOf(const Mo& mo) const {
    return mo.node == kRootNode ? nullptr : &mModel.classes[mo.moc];
}

std::string StoreTransaction::dnOf(const Mo& mo) const {
    return mo.created != nullptr
               ? std::string(mo.created->dn)
               : mTree.read([&](const MoTree& tree) { return tree.dnOf(mo.node); });
}

inline std::string_view StoreTransaction::changesOf(const Mo& mo) const {
    const std::string* const changes = mOverlay.findModified(mo.node);
    return changes == nullptr ? std::string_view() : std::string_view(*changes);
}

bool StoreTransaction::exists(std::string_view dn) const {
    requireOpen();
    return static_cast<bool>(find(dn));
}

const ClassDef& StoreTransaction::classOf(std::string_view dn) const {
    return *classOf(require(dn));
}

bool StoreTransaction::isDefaultInUse(const Mo& mo, const AttributeDef& def) const {
    return !def.isConditional ||
           WriteCheck::isDefaultInUse(*classOf(mo), def.name, mo.attributes, changesOf(mo));
}

AttributeView StoreTransaction::look(const Mo& mo, std::string_view attribute) const {
    const ClassDef& moc = *classOf(mo);
    const AttributeIndex index = WriteCheck::requireAttribute(moc, attribute);
    const AttributeDef& def = moc.attributes[index];
    const auto stored = AttributeBytes::find(mo.attributes, changesOf(mo), index);
    const bool hasFallback = !stored && def.defaultValue && isDefaultInUse(mo, def);
    return {&moc, &def, stored, mo.name, hasFallback ? &*def.defaultValue : nullptr};
}

AttributeView StoreTransaction::look(std::string_view dn, std::string_view attribute) const {
    const Mo& mo = require(dn);
    return withDn(dn, [&] { return look(mo, attribute); });
}

std::vector<AttributeView>
StoreTransaction::look(std::string_view dn, const std::vector<std::string_view>& attributes) const {
    const Mo mo = require(dn);
    std::vector<AttributeView> views;
    views.reserve(attributes.size());
    for (const std::string_view attribute : attributes) {
        views.push_back(withDn(dn, [&] { return look(mo, attribute); }));
    }
    return views;
}

std::vector<AttributeValue>
StoreTransaction::get(std::string_view dn, const std::vector<std::string>& attributes) const {
    std::vector<AttributeValue> values;
    for (const AttributeView& view : look(dn, {attributes.begin(), attributes.end()})) {
        values.push_back(view.value());
    }
    return values;
}

std::vector<NamedValue> StoreTransaction::stored(std::string_view dn) const {
    const Mo mo = require(dn);
    const ClassDef& moc = *classOf(mo);
    std::vector<NamedValue> values;
    for (AttributeIndex index = 0; index < moc.attributes.size(); ++index) {
        if (const auto value = AttributeBytes::find(mo.attributes, changesOf(mo), index)) {
            const AttributeDef& def = moc.attributes[index];
            values.emplace_back(def.name, AttributeBytes::valuesOf(def.type, *value));
        }
    }
    return values;
}

std::uint64_t StoreTransaction::count(std::string_view parentDn, std::string_view className) const {
    const Mo parent = requireParent(parentDn);
    return countOf(parentDn, parent, requireChildClass(parentDn, parent, className));
}

// The children of one class that the transaction created, or null.
const TransactionOverlay::Group* StoreTransaction::createdChildren(std::string_view parentDn,
                                                                   ClassIndex moc) const {
    return mOverlay.created().empty()
               ? nullptr
               : mOverlay.findGroup(DnView(parentDn).childPrefix(mModel.classes[moc].name));
}

std::uint64_t StoreTransaction::countOf(std::string_view parentDn, const Mo& parent,
                                        ClassIndex moc) const {
    const auto* created = createdChildren(parentDn, moc);
    const std::uint64_t count = created == nullptr ? 0 : created->count;
    if (parent.node == kNoNode) {
        return count;
    }
    const std::uint64_t committed = mTree.read(
        [&](const MoTree& tree) { return tree.countChildren(parent.node, moc, mSnapshot); });
    return count + committed - mOverlay.deletedCount(parent.node, moc);
}

ChildCursor StoreTransaction::children(std::string_view parentDn,
                                       std::string_view className) const {
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
        const auto nextOf = [&](NodeId node) { return tree.nextSibling(node, mSnapshot); };
        const NodeId id = mOverlay.skipDeleted(
            cursor.mPosition == kNoNode ? tree.firstChild(cursor.mParent, cursor.mMoc, mSnapshot)
                                        : nextOf(cursor.mPosition),
            nextOf);
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

void StoreTransaction::write(const Mo& mo, AttributeIndex index, const AttributeValue& value) {
    const ClassDef& moc = *classOf(mo);
    if (mo.created != nullptr) {
        AttributeBytes::write(moc, mOverlay.attributesOf(*mo.created), index, value);
    } else {
        AttributeBytes::writeChange(moc, mOverlay.modify(mo.node), index, value);
    }
}

// A committed object that this transaction has changed is claimed already.
void StoreTransaction::claimWrite(const Mo& mo) {
    if (mo.created == nullptr && mOverlay.findModified(mo.node) == nullptr) {
        mGuard.claimWrite(mo.node);
    }
}

void StoreTransaction::set(std::string_view dn, std::string_view attribute,
                           const AttributeValue& value) {
    const Mo& mo = require(dn);
    const AttributeIndex index =
        withDn(dn, [&] { return requireSettable(*classOf(mo), attribute, value); });
    claimWrite(mo);
    write(mo, index, value);
}

void StoreTransaction::set(std::string_view dn, const std::vector<NamedValue>& values) {
    const Mo mo = require(dn);
    std::vector<AttributeIndex> indexes;
    withDn(dn, [&] {
        WriteCheck::noDoubles(values);
        for (const NamedValue& named : values) {
            indexes.push_back(requireSettable(*classOf(mo), named.first, named.second));
        }
    });
    claimWrite(mo);
    // On a copy, so that all are set or none.
    std::string bytes(mo.created != nullptr ? mo.attributes : changesOf(mo));
    const auto put = mo.created != nullptr ? &AttributeBytes::write : &AttributeBytes::writeChange;
    for (std::size_t at = 0; at < values.size(); ++at) {
        put(*classOf(mo), bytes, indexes[at], values[at].second);
    }
    std::string& place =
        mo.created != nullptr ? mOverlay.attributesOf(*mo.created) : mOverlay.modify(mo.node);
    place = std::move(bytes);
}

void StoreTransaction::create(std::string_view parentDn, std::string_view className,
                              std::string_view namingAttribute, std::string_view name,
                              const std::vector<NamedValue>& values) {
    const Mo parent = requireParent(parentDn);
    const ClassIndex index = requireChildClass(parentDn, parent, className);
    const ClassDef& moc = mModel.classes[index];
    const AttributeDef* naming = moc.findAttribute(namingAttribute);
    if (naming == nullptr || !naming->isNaming) {
        throw HostError(OrvInvalidArgument,
                        "objects of class '" + moc.name + "' are named by the attribute '" +
                            moc.namingAttribute + "', not '" + std::string(namingAttribute) + "'");
    }
    CreatedMo created;
    created.name = name;
    WriteCheck::name(moc, created.name);
    std::string dn = DnView(parentDn).child(className, name);
    if (find(dn)) {
        throw HostError(OrvAlreadyExist, "there is an object '" + dn + "' already");
    }
    created.attributes = withDn(dn, [&] {
        return WriteCheck::initial(moc, created.name, values, WriteCheck::Writer::Client);
    });
    claimPlace(parentDn, parent, index, dn);
    created.moc = index;
    created.parentNode = parent.node;
    created.parentCreated = parent.created;
    mOverlay.addCreated(std::move(dn), std::move(created));
}

// No other transaction can create objects under a parent that this transaction created, so nothing
// needs to be claimed there.
void StoreTransaction::claimPlace(std::string_view parentDn, const Mo& parent, ClassIndex moc,
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
void StoreTransaction::claimMembership(std::string_view parentDn, const Mo& parent,
                                       ClassIndex moc) {
    if (mModel.classes[moc].instances.containAll()) {
        return;
    }
    if (parent.created == nullptr) {
        mGuard.claimMembership(parent.node, moc);
    }
    mOverlay.noteMembers(std::string(parentDn), moc);
}

bool StoreTransaction::isDeletedHere(const std::string& dn) const {
    if (mOverlay.deleted().empty()) {
        return false;
    }
    const NodeId node = mTree.read([&](const MoTree& tree) { return tree.find(dn, mSnapshot); });
    return node != kNoNode && mOverlay.isDeleted(node);
}

void StoreTransaction::remove(std::string_view dn) {
    const Mo mo = require(dn);
    const std::string_view parentDn = DnView(dn).parent().text();
    const Mo parent = requireParent(parentDn);
    claimMembership(parentDn, parent, mo.moc);

    std::vector<Doomed> all{{mo.node, mo.created, parent.node, mo.moc}};
    for (std::size_t at = 0; at < all.size(); ++at) {
        const Doomed next = all[at];
        if (next.created == nullptr) {
            mGuard.claimDelete(next.node);
        }
        appendChildren(next, all);
    }
    for (const Doomed& next : all) {
        if (next.created == nullptr) {
            mGuard.requireSameChildren(next.node);
        }
    }
    mFoundLast.clear();
    // Children before their parents.
    for (auto next = all.rbegin(); next != all.rend(); ++next) {
        if (next->created == nullptr) {
            mOverlay.markDeleted(next->node, next->parent, next->moc);
        } else {
            mOverlay.dropCreated(*next->created);
        }
    }
}

void StoreTransaction::appendChildren(const Doomed& mo, std::vector<Doomed>& all) const {
    const bool hasCreated = !mOverlay.created().empty();
    const std::string dn = hasCreated ? dnOf({mo.node, mo.created}) : std::string();
    for (const ClassIndex moc : mModel.classes[mo.moc].children) {
        if (mo.created == nullptr) {
            appendCommittedChildren(mo.node, moc, all);
        }
        const auto* created = createdChildren(dn, moc);
        if (created == nullptr) {
            continue;
        }
        for (const CreatedMo* child : created->members) {
            if (child != nullptr) {
                all.push_back({kNoNode, child, kNoNode, moc});
            }
        }
    }
}

// All children that exist in the snapshot or in the latest commit. A child that was committed later
// is not visible here, but would lose its parent; a child that was deleted later is still visible
// here. Claiming either of them reports the conflict.
void StoreTransaction::appendCommittedChildren(NodeId parent, ClassIndex moc,
                                               std::vector<Doomed>& all) const {
    mTree.read([&](const MoTree& tree) {
        const ChildGroup* group = tree.findGroup(parent, moc);
        for (NodeId id = group == nullptr ? kNoNode : group->first; id != kNoNode;
             id = tree.node(id).next) {
            const bool counts = tree.isVisible(id, mSnapshot) || tree.isVisible(id, kLatest);
            if (counts && !mOverlay.isDeleted(id)) {
                all.push_back({id, nullptr, parent, moc});
            }
        }
    });
}

void StoreTransaction::checkCreated(const CreatedMo& mo,
                                    std::vector<std::string>& violations) const {
    const ClassDef& moc = mModel.classes[mo.moc];
    for (const std::string& name : WriteCheck::missing(moc, mo.attributes, true)) {
        violations.push_back(std::string(mo.dn) + ": the mandatory attribute '" + name +
                             "' of class '" + moc.name + "' has no value");
    }
    checkConditions(moOf(mo), violations);
    for (const ClassIndex child : moc.children) {
        if (mModel.classes[child].instances.lower > 0) {
            checkMembers(mo.dn, child, violations);
        }
    }
}

// Only here and never at a single set: the way from one case to another leads through none, or
// through both.
void StoreTransaction::checkConditions(const Mo& mo, std::vector<std::string>& violations) const {
    const ClassDef& moc = *classOf(mo);
    if (!hasConditions(moc)) {
        return;
    }
    const std::string_view changes = changesOf(mo);
    for (const std::string& wrong : WriteCheck::wrongChoices(moc, mo.attributes, changes)) {
        violations.push_back(dnOf(mo) + ": " + wrong);
    }
    const auto valuesOf = [&](const std::string& name) {
        const AttributeIndex index = *moc.findAttributeIndex(name);
        const auto found = AttributeBytes::find(mo.attributes, changes, index);
        return found ? AttributeBytes::valuesOf(moc.attributes[index].type, *found)
                     : AttributeValue{ValueKind::MoRef, {}};
    };
    for (const std::string& wrong : tooFewReferences(mModel, mo.moc, valuesOf)) {
        violations.push_back(dnOf(mo) + ": " + wrong);
    }
}

void StoreTransaction::checkMembers(std::string_view parentDn, ClassIndex moc,
                                    std::vector<std::string>& violations) const {
    const Mo parent = parentDn.empty() ? Mo{kRootNode} : find(parentDn);
    if (!parent) {
        return; // deleted by this transaction, together with its children
    }
    const ClassDef& child = mModel.classes[moc];
    const std::uint64_t count = countOf(parentDn, parent, moc);
    if (!child.instances.contain(count)) {
        violations.push_back((count == 1 ? "there is " : "there are ") + counted(count, "object") +
                             " of class '" + child.name + "'" + placeOf(parentDn) + ", expected " +
                             toText(child.instances));
    }
}

std::vector<std::string> StoreTransaction::check() const {
    requireOpen();
    std::vector<std::string> violations;
    if (!conflict().empty()) {
        violations.push_back("the transaction met a conflict: " + conflict());
    } else if (mLog != nullptr && !mOverlay.isEmpty() && !mLog->isFor(*mState)) {
        violations.push_back(std::string("the transaction met a conflict: ") + kLoadedAnew);
    } else if (mLog != nullptr && mLog->hasForeignAfter(mSnapshot)) {
        const std::string changed = mGuard.whatChanged();
        if (!changed.empty()) {
            violations.push_back("the transaction met a conflict: " + changed);
        }
    }
    for (const CreatedMo* mo : mOverlay.created()) {
        if (mo != nullptr) {
            checkCreated(*mo, violations);
        }
    }
    eachModified(&hasConditions,
                 [&](const Mo& mo, const std::string&) { checkConditions(mo, violations); });
    for (const auto& [parentDn, moc] : mOverlay.changedMembers()) {
        checkMembers(parentDn, moc, violations);
    }
    return violations;
}

void StoreTransaction::commit() {
    requireOpen();
    mGuard.requireNoConflict();
    if (mLog != nullptr) {
        commitThroughLog();
    } else if (!mOverlay.isEmpty()) {
        TreeChange change = makeChange();
        mFeed.publish([&] { return changes(); },
                      [&] {
                          return mTree.commit(change, {id(), author()});
                      });
    }
    end();
}

// What is created and deleted again leaves nothing, and no entry in the log.
void StoreTransaction::commitThroughLog() {
    TreeChange change = makeChange();
    if (!change.created.empty() || !change.modified.empty() || !change.deleted.empty()) {
        mLog->commit(
            {*mState, change, mGuard, makeLogChange().encoded(), [&] { return changes(); }});
    }
}

LogChange StoreTransaction::makeLogChange() const {
    LogChange change;
    mTree.read([&](const MoTree& tree) {
        for (const NodeId node : mOverlay.deleted()) {
            change.deleted.push_back(tree.dnOf(node));
        }
        for (const auto& [node, changes] : mOverlay.modified()) {
            change.changed.push_back({tree.dnOf(node), changes});
        }
    });
    std::sort(change.changed.begin(), change.changed.end(),
              [](const auto& one, const auto& two) { return one.dn < two.dn; });
    for (const CreatedMo* mo : mOverlay.created()) {
        if (mo != nullptr) {
            change.created.push_back({std::string(mo->dn), mo->attributes});
        }
    }
    return change;
}

ChangeSet StoreTransaction::changes() const {
    requireOpen();
    using Kind = ObjectChange::Kind;
    ChangeSet all;
    all.transaction = id();
    all.author = author();
    for (const NodeId node : mOverlay.deleted()) {
        const Mo mo = moOf(node);
        all.objects.push_back(describe(Kind::Deleted, mo, mo.attributes, {}));
    }
    for (const CreatedMo* mo : mOverlay.created()) {
        if (mo != nullptr) {
            all.objects.push_back(describe(Kind::Created, moOf(*mo), {}, mo->attributes));
        }
    }
    const std::size_t firstChanged = all.objects.size();
    std::string merged;
    eachModified(anyClass, [&](const Mo& mo, const std::string& changes) {
        AttributeBytes::merge(mo.attributes, changes, merged);
        ObjectChange changed = describe(Kind::Changed, mo, mo.attributes, merged);
        if (!changed.attributes.empty()) {
            all.objects.push_back(std::move(changed));
        }
    });
    std::sort(all.objects.begin() + static_cast<std::ptrdiff_t>(firstChanged), all.objects.end(),
              [](const ObjectChange& one, const ObjectChange& two) { return one.dn < two.dn; });
    return all;
}

// `before` and `after` as AttributeBytes.
ObjectChange StoreTransaction::describe(ObjectChange::Kind kind, const Mo& mo,
                                        std::string_view before, std::string_view after) const {
    return describeChange(kind, dnOf(mo), *classOf(mo), before, after);
}

TreeChange StoreTransaction::makeChange() const {
    TreeChange change;
    change.created.reserve(mOverlay.created().size());
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
    change.modified.reserve(mOverlay.modified().size());
    std::string merged;
    eachModified(anyClass, [&](const Mo& mo, const std::string& changes) {
        AttributeBytes::merge(mo.attributes, changes, merged);
        change.modified.emplace_back(mo.node, MoRecord(mo.name, merged));
    });
    change.deleted = mOverlay.deleted();
    return change;
}

}
