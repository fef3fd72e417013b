// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "EditReader.h"

#include "DnUtil.h"
#include "base/DnView.h"
#include "base/Join.h"
#include "client/ObjectState.h"
#include "model/DnForm.h"
#include "netconf/core/UnknownData.h"
#include "netconf/wire/XmlText.h"
#include "yang/instances/ObjectWriter.h"
#include "yang/instances/TreeReader.h"
#include "yang/types/ValueCodec.h"

#include <libyang/libyang.h>

#include <algorithm>
#include <map>
#include <optional>

namespace OrvHost {

/// An object of the edit, while its attributes are read.
struct EditReader::Object {
    std::string dn;
    const ObjectShape* shape = nullptr;
    const ClassDef* moc = nullptr;
    bool startsEmpty = false; ///< attributes do not go on from what the object has
    std::optional<std::vector<AttributeValue>> before;
    std::vector<NamedValue> attributes;
    std::map<std::string, std::size_t> places; ///< in attributes
    std::vector<const lyd_node*> children;
    TakenCases cases;
};

namespace {

/// The members that identify an entry of a list of structs.
std::vector<std::string> keyNames(const ValueShape& shape) {
    std::vector<std::string> names;
    for (const ValueShape& member : shape.members) {
        if (lysc_is_key(member.node)) {
            names.push_back(member.name);
        }
    }
    return names;
}

bool hasSameKeys(const Value& left, const Value& right, const std::vector<std::string>& keys) {
    return std::all_of(keys.begin(), keys.end(), [&](const std::string& key) {
        const AttributeValue* one = std::get<StructValue>(left).find(key);
        const AttributeValue* other = std::get<StructValue>(right).find(key);
        return one != nullptr && other != nullptr && *one == *other;
    });
}

std::string nodeName(const lyd_node* node) {
    return LYD_NAME(node);
}

/// True if the client says that the value is the default, as replies do (RFC 6243, section 4.5.2).
bool saysDefault(const lyd_node* node) {
    static const std::string name = std::string(kDefaultsModule) + ":default";
    const lyd_meta* meta =
        node->schema != nullptr ? lyd_find_meta(node->meta, nullptr, name.c_str()) : nullptr;
    const std::string value = meta != nullptr ? lyd_get_meta_value(meta) : "";
    return value == "true" || value == "1";
}

/// What an element does to the choice that it belongs to.
EditOperation operationInChoice(const lyd_node* node, EditOperation inherited) {
    return saysDefault(node) ? EditOperation::Remove : ownOperation(node).value_or(inherited);
}

}

Wish EditReader::read(const lyd_node* first, EditOperation defaultOperation) {
    const bool isReplaced = defaultOperation == EditOperation::Replace;
    if (isReplaced) {
        mWish.edits.push_back({EditKind::Replace, "", {}});
    }
    readSiblings(first, "", defaultOperation, isReplaced);
    if (!mErrors.empty()) {
        throw RpcErrors(std::move(mErrors));
    }
    return std::move(mWish);
}

/// \p isReplaced: the nodes are in the subtree of the last edit, which replaces it.
void EditReader::readSiblings(const lyd_node* first, const std::string& parentDn,
                              EditOperation inherited, bool isReplaced) {
    for (const lyd_node* node = first; node != nullptr; node = node->next) {
        if (!isUsable(node)) {
            continue;
        }
        if (const ObjectShape* shape = mModel.objectAt(node->schema)) {
            readObject(node, *shape, parentDn, inherited, isReplaced);
        } else if (!mModel.isTransparent(node->schema)) {
            refuse(node, "operation-not-supported",
                   "<" + nodeName(node) + "> has no place among the objects of this server");
        } else if (ownOperation(node).value_or(EditOperation::Merge) != EditOperation::Merge) {
            refuse(node, "operation-not-supported",
                   "<" + nodeName(node) +
                       "> only contains objects; give the operation to each of them");
        } else {
            readSiblings(lyd_child(node), parentDn, inherited, isReplaced);
        }
    }
}

bool EditReader::isUsable(const lyd_node* node) {
    if (node->schema == nullptr) {
        std::vector<RpcError> errors = whyUnknown(mModel, node);
        mErrors.insert(mErrors.end(), errors.begin(), errors.end());
        return false;
    }
    if ((node->schema->flags & LYS_CONFIG_W) == 0) {
        refuse(node, "invalid-value",
               "<" + nodeName(node) + "> is not configuration: only the system sets it");
        return false;
    }
    return true;
}

void EditReader::readObject(const lyd_node* node, const ObjectShape& shape,
                            const std::string& parentDn, EditOperation inherited, bool isReplaced) {
    const std::optional<EditOperation> own = ownOperation(node);
    const EditOperation operation = own.value_or(inherited);
    Object object;
    object.dn = DnView(parentDn).child(shape.className, nameOf(node, shape));
    object.shape = &shape;
    object.moc = &mClasses.classes[shape.moc];
    if (takesAway(operation)) {
        mWish.edits.push_back(
            {operation == EditOperation::Delete ? EditKind::Delete : EditKind::Remove,
             object.dn,
             {}});
        return;
    }
    object.startsEmpty = operation == EditOperation::Replace || operation == EditOperation::Create;
    // Inside a replaced subtree an operation of its own makes an edit of its own.
    const bool isPart = isReplaced && operation == EditOperation::Replace;
    const std::size_t place = mWish.edits.size();
    if (operation == EditOperation::Replace && !isPart) {
        mWish.edits.push_back({EditKind::Replace, object.dn, {}});
    }
    readContents(lyd_child(node), object, operation);
    takeAwayOtherCases(object);
    const std::string dn = object.dn;
    const std::vector<const lyd_node*> children = std::move(object.children);
    if (operation == EditOperation::Replace) {
        // The edit of the subtree stands where it began; others may have come after it.
        auto edit = isPart ? std::find_if(mWish.edits.rbegin(), mWish.edits.rend(),
                                          [&](const Edit& one) {
                                              return one.kind == EditKind::Replace &&
                                                     DnView(dn).isAtOrBelow(DnView(one.dn));
                                          })
                           : std::make_reverse_iterator(mWish.edits.begin() +
                                                        static_cast<std::ptrdiff_t>(place) + 1);
        edit->objects.push_back({dn, std::move(object.attributes)});
    } else {
        addObject(object, operation);
    }
    for (const lyd_node* child : children) {
        readObject(child, *mModel.objectAt(child->schema), dn, operation,
                   operation == EditOperation::Replace);
    }
}

void EditReader::addObject(Object& object, EditOperation operation) {
    const EditKind kind = operation == EditOperation::Create ? EditKind::Create
                          : operation == EditOperation::None ? EditKind::Set
                                                             : EditKind::Merge;
    mWish.edits.push_back({kind, object.dn, {{object.dn, std::move(object.attributes)}}});
}

void EditReader::readContents(const lyd_node* first, Object& object, EditOperation operation) {
    for (const lyd_node* node = first; node != nullptr; node = node->next) {
        if (node->schema != nullptr && lysc_is_key(node->schema)) {
            continue;
        }
        if (const ValueShape* shape = valueTakenAwayBy(node)) {
            applyToLeaf(attributeOf(object, *shape), node, *shape, *ownOperation(node));
            continue;
        }
        if (!isUsable(node)) {
            continue;
        }
        const EditOperation own = operationInChoice(node, operation);
        if (const ObjectShape* child = mModel.objectAt(node->schema)) {
            object.children.push_back(node);
            object.cases.add(node, own, child->list);
        } else if (const ValueShape* shape = mModel.valueAt(node->schema)) {
            refuseSecond(node, *shape);
            object.cases.add(node, own, shape->node);
            apply(attributeOf(object, *shape), node, *shape, operation);
        } else if (!mModel.isTransparent(node->schema)) {
            refuse(node, "operation-not-supported",
                   "<" + nodeName(node) + "> has no place in the objects of this server");
        } else if (ownOperation(node).value_or(EditOperation::Merge) != EditOperation::Merge) {
            refuse(node, "operation-not-supported",
                   "<" + nodeName(node) +
                       "> only contains attributes; give the operation to each of them");
        } else {
            readContents(lyd_child(node), object, operation);
        }
    }
}

/// Who sets a node of one case of a choice takes away the nodes of its other cases.
void EditReader::takeAwayOtherCases(Object& object) {
    refuseTwoCases(object.cases);
    if (object.cases.isEmpty() || !mBefore.exists(object.dn)) {
        return;
    }
    for (const ValueShape& shape : object.shape->attributes) {
        const auto at = object.moc->findAttributeIndex(shape.name);
        if (at && object.moc->attributes[*at].isWritable && object.cases.exclude(shape.node) &&
            !valuesBefore(object)[*at].values.empty()) {
            attributeOf(object, shape).values.clear();
        }
    }
    for (const ObjectShape* child : object.shape->children) {
        if ((child->list->flags & LYS_CONFIG_W) == 0 || !object.cases.exclude(child->list)) {
            continue;
        }
        for (const std::string& name : mBefore.children(object.dn, child->className)) {
            mWish.edits.push_back(
                {EditKind::Remove, DnView(object.dn).child(child->className, name), {}});
        }
    }
}

void EditReader::refuseTwoCases(const TakenCases& taken) {
    if (const lyd_node* second = taken.secondCase()) {
        refuse(second, "bad-element",
               "<" + nodeName(second) + "> and others here are of two cases of one choice");
        mErrors.back().info = errorInfo("bad-element", nodeName(second));
    }
}

std::string EditReader::nameOf(const lyd_node* node, const ObjectShape& shape) {
    std::string name = nameOfEntry(node, shape);
    if (!Orv::DnUtil::validateMoNamingAttr(name.c_str())) {
        refuse(node, "invalid-value",
               "\"" + name +
                   "\" cannot name an object: a text was expected without control characters and "
                   "without , = + \" \\ < > ; that neither begins nor ends with a space");
    }
    return name;
}

/// The values of the object's attributes before the edit; none of them has one if it is new.
const std::vector<AttributeValue>& EditReader::valuesBefore(Object& object) {
    if (!object.before) {
        object.before = mBefore.exists(object.dn)
                            ? mBefore.attributes(object.dn, *object.moc)
                            : std::vector<AttributeValue>(object.moc->attributes.size());
    }
    return *object.before;
}

/// The wished value of an attribute, which begins with what the object has.
AttributeValue& EditReader::attributeOf(Object& object, const ValueShape& shape) {
    const auto [place, isNew] = object.places.try_emplace(shape.name, object.attributes.size());
    if (isNew) {
        object.attributes.emplace_back(shape.name, AttributeValue{shape.kind, {}});
        const auto at = object.moc->findAttributeIndex(shape.name);
        if (!object.startsEmpty && at &&
            !isUnsetOrDefault(object.moc->attributes[*at], valuesBefore(object)[*at])) {
            object.attributes.back().second = valuesBefore(object)[*at];
        }
    }
    return object.attributes[place->second].second;
}

/// The leaf that an element without a usable value is to take away: its value is not needed for
/// that. Null for every other element.
const ValueShape* EditReader::valueTakenAwayBy(const lyd_node* node) const {
    if (node->schema != nullptr || !takesAway(ownOperation(node).value_or(EditOperation::Merge))) {
        return nullptr;
    }
    const lysc_node* meant = meantNode(mModel, node);
    return meant != nullptr && meant->nodetype == LYS_LEAF ? mModel.valueAt(meant) : nullptr;
}

void EditReader::apply(AttributeValue& values, const lyd_node* node, const ValueShape& shape,
                       EditOperation inherited) {
    const EditOperation operation = ownOperation(node).value_or(inherited);
    if (shape.kind == ValueKind::Struct) {
        applyToStruct(values, node, shape, operation);
    } else if (shape.isMultiple) {
        applyToEntry(values, node, shape, operation);
    } else {
        applyToLeaf(values, node, shape, operation);
    }
}

void EditReader::applyToLeaf(AttributeValue& values, const lyd_node* node, const ValueShape& shape,
                             EditOperation operation) {
    const bool isSet = !values.values.empty();
    if (operation == EditOperation::None) {
        return;
    }
    if (operation == EditOperation::Create && isSet) {
        refuse(node, "data-exists", "<" + nodeName(node) + "> has a value already");
    } else if (operation == EditOperation::Delete && !isSet) {
        refuse(node, "data-missing", "<" + nodeName(node) + "> has no value, or its default");
    }
    const bool isDefault = saysDefault(node);
    if (isDefault && !lyd_is_default(node)) {
        refuse(node, "invalid-value",
               "<" + nodeName(node) + "> is said to be the default, which is another value");
    }
    values.values.clear();
    if (!takesAway(operation) && !isDefault) {
        const auto* leaf = reinterpret_cast<const lyd_node_term*>(node);
        values.values.push_back(decodeValue(LYD_CTX(node), leaf->value, shape.kind));
        shortenReferences(mClasses, values);
    }
}

void EditReader::applyToEntry(AttributeValue& values, const lyd_node* node, const ValueShape& shape,
                              EditOperation operation) {
    const auto* leaf = reinterpret_cast<const lyd_node_term*>(node);
    AttributeValue one{shape.kind, {decodeValue(LYD_CTX(node), leaf->value, shape.kind)}};
    shortenReferences(mClasses, one);
    auto& list = values.values;
    const auto found = std::find(list.begin(), list.end(), one.values.front());
    const bool isThere = found != list.end();
    if (operation == EditOperation::None) {
        return;
    }
    if (operation == EditOperation::Create && isThere) {
        refuse(node, "data-exists", "<" + nodeName(node) + "> has this entry already");
    } else if (operation == EditOperation::Delete && !isThere) {
        refuse(node, "data-missing", "<" + nodeName(node) + "> has no such entry");
    } else if (takesAway(operation)) {
        if (isThere) {
            list.erase(found);
        }
    } else {
        const bool isMoved = lyd_find_meta(node->meta, nullptr, "yang:insert") != nullptr;
        if (isThere && isMoved) {
            list.erase(found);
        }
        if (!isThere || isMoved) {
            insert(values, node, std::move(one.values.front()));
        }
    }
}

/// At the end, or where yang:insert says.
void EditReader::insert(AttributeValue& values, const lyd_node* node, Value value) {
    const lyd_meta* meta = lyd_find_meta(node->meta, nullptr, "yang:insert");
    const std::string place = meta != nullptr ? lyd_get_meta_value(meta) : "last";
    auto& list = values.values;
    if (place == "first") {
        list.insert(list.begin(), std::move(value));
        return;
    }
    if (place == "last") {
        list.push_back(std::move(value));
        return;
    }
    const lyd_meta* neighbour = lyd_find_meta(node->meta, nullptr, "yang:value");
    const std::string text = neighbour != nullptr ? lyd_get_meta_value(neighbour) : "";
    const auto found = std::find_if(list.begin(), list.end(),
                                    [&](const Value& one) { return toText(one) == text; });
    if (found == list.end()) {
        refuse(node, "bad-attribute",
               "<" + nodeName(node) + "> has no entry \"" + text + "\" to be placed " + place);
        mErrors.back().appTag = "missing-instance";
        mErrors.back().info =
            errorInfo("bad-attribute", "value") + errorInfo("bad-element", nodeName(node));
        return;
    }
    list.insert(place == "after" ? found + 1 : found, std::move(value));
}

void EditReader::applyToStruct(AttributeValue& values, const lyd_node* node,
                               const ValueShape& shape, EditOperation operation) {
    auto& list = values.values;
    Value given{StructValue{}};
    const std::vector<std::string> keys =
        shape.isMultiple ? keyNames(shape) : std::vector<std::string>();
    for (const lyd_node* key = lyd_child(node); shape.isMultiple && key != nullptr;
         key = key->next) {
        const ValueShape* member = key->schema != nullptr && lysc_is_key(key->schema)
                                       ? mModel.valueAt(key->schema)
                                       : nullptr;
        if (member != nullptr) {
            AttributeValue text{member->kind, {}};
            applyToLeaf(text, key, *member, EditOperation::Merge);
            std::get<StructValue>(given).members.emplace_back(member->name, std::move(text));
        }
    }
    const auto found =
        shape.isMultiple
            ? std::find_if(list.begin(), list.end(),
                           [&](const Value& one) { return hasSameKeys(one, given, keys); })
            : list.begin();
    const bool isThere = found != list.end();
    if (operation == EditOperation::Create && isThere) {
        refuse(node, "data-exists", "<" + nodeName(node) + "> exists already");
        return;
    }
    if (operation == EditOperation::Delete && !isThere) {
        refuse(node, "data-missing", "<" + nodeName(node) + "> does not exist");
        return;
    }
    if (operation == EditOperation::None && shape.isMultiple && !isThere) {
        refuse(node, "data-missing", "<" + nodeName(node) + "> does not exist");
        return;
    }
    if (takesAway(operation)) {
        if (isThere) {
            list.erase(found);
        }
        return;
    }
    const bool goesOn = isThere && operation != EditOperation::Replace;
    StructValue value = std::get<StructValue>(goesOn ? *found : given);
    readMembers(value, node, shape, operation);
    if (isThere) {
        *found = std::move(value);
    } else if (operation != EditOperation::None || !value.members.empty()) {
        list.emplace_back(std::move(value));
    }
}

void EditReader::readMembers(StructValue& value, const lyd_node* node, const ValueShape& shape,
                             EditOperation operation) {
    TakenCases cases;
    for (const lyd_node* child = lyd_child(node); child != nullptr; child = child->next) {
        const bool isKey =
            shape.isMultiple && child->schema != nullptr && lysc_is_key(child->schema);
        const ValueShape* member = isKey ? nullptr : valueTakenAwayBy(child);
        const bool isWithoutValue = member != nullptr;
        if (isKey || (!isWithoutValue && !isUsable(child))) {
            continue;
        }
        member = isWithoutValue ? member : mModel.valueAt(child->schema);
        if (member == nullptr) {
            refuse(child, "operation-not-supported",
                   "<" + nodeName(child) + "> has no place in the objects of this server");
            continue;
        }
        auto& members = value.members;
        auto place = std::find_if(members.begin(), members.end(),
                                  [&](const NamedValue& one) { return one.first == member->name; });
        if (place == members.end()) {
            members.emplace_back(member->name, AttributeValue{member->kind, {}});
            place = members.end() - 1;
        }
        if (isWithoutValue) {
            applyToLeaf(place->second, child, *member, *ownOperation(child));
        } else {
            refuseSecond(child, *member);
            cases.add(child, operationInChoice(child, operation), member->node);
            apply(place->second, child, *member, operation);
        }
    }
    refuseTwoCases(cases);
    value.members.erase(std::remove_if(value.members.begin(), value.members.end(),
                                       [&](const NamedValue& one) {
                                           return one.second.values.empty() ||
                                                  cases.exclude(shapeOf(one, shape.members).node);
                                       }),
                        value.members.end());
}

void EditReader::refuseSecond(const lyd_node* node, const ValueShape& shape) {
    if (!shape.isMultiple && !mSeen.insert({node->parent, node->schema}).second) {
        refuse(node, "bad-element", "<" + nodeName(node) + "> stands here twice");
        mErrors.back().info = errorInfo("bad-element", nodeName(node));
    }
}

void EditReader::refuse(const lyd_node* node, const std::string& tag, const std::string& message) {
    RpcError error;
    error.tag = tag;
    error.path = instancePathOf(node);
    error.message = message;
    mErrors.push_back(std::move(error));
}

}
