// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_CORE_EDITREADER_H
#define ORV_HOST_NETCONF_CORE_EDITREADER_H

#include "client/edits/StateBefore.h"
#include "client/edits/Wish.h"
#include "netconf/core/ChoiceCases.h"
#include "netconf/core/EditOperation.h"
#include "netconf/wire/RpcError.h"
#include "netconf/wire/WireModel.h"

#include <set>
#include <string>
#include <utility>
#include <vector>

struct lyd_node;
struct lysc_node;

namespace OrvHost {

/// Turns the data of an edit-config into a wish for the edit planner: what becomes of each object
/// and of each of its attributes, whole, in comparison with the state before.
///
/// An attribute with its default counts as one that is not set, as reads cannot tell them apart.
/// One thread.
class EditReader {
public:
    /// All arguments are borrowed.
    EditReader(const WireModel& model, const Model& classes, StateBefore& before)
        : mModel(model), mClasses(classes), mBefore(before) {}

    /// \p first, which may be null, is the first node in the config element. Throws RpcErrors with
    /// all that does not fit the modules, and what cannot be done to attributes. What is wrong with
    /// objects the planner finds.
    Wish read(const lyd_node* first, EditOperation defaultOperation);

private:
    struct Object;
    void readSiblings(const lyd_node* first, const std::string& parentDn, EditOperation inherited,
                      bool isReplaced);
    void readObject(const lyd_node* node, const ObjectShape& shape, const std::string& parentDn,
                    EditOperation inherited, bool isReplaced);
    void readContents(const lyd_node* first, Object& object, EditOperation operation);
    void addObject(Object& object, EditOperation operation);
    void takeAwayOtherCases(Object& object);
    void refuseTwoCases(const TakenCases& taken);
    bool isUsable(const lyd_node* node);
    std::string nameOf(const lyd_node* node, const ObjectShape& shape);

    const std::vector<AttributeValue>& valuesBefore(Object& object);
    AttributeValue& attributeOf(Object& object, const ValueShape& shape);
    void apply(AttributeValue& values, const lyd_node* node, const ValueShape& shape,
               EditOperation inherited);
    void applyToLeaf(AttributeValue& values, const lyd_node* node, const ValueShape& shape,
                     EditOperation operation);
    void applyToEntry(AttributeValue& values, const lyd_node* node, const ValueShape& shape,
                      EditOperation operation);
    void applyToStruct(AttributeValue& values, const lyd_node* node, const ValueShape& shape,
                       EditOperation operation);
    const ValueShape* valueTakenAwayBy(const lyd_node* node) const;
    void readMembers(StructValue& value, const lyd_node* node, const ValueShape& shape,
                     EditOperation operation);
    void insert(AttributeValue& values, const lyd_node* node, Value value);

    /// Refuses a second element of what there can be only one of.
    void refuseSecond(const lyd_node* node, const ValueShape& shape);
    void refuse(const lyd_node* node, const std::string& tag, const std::string& message);

    const WireModel& mModel;
    const Model& mClasses;
    StateBefore& mBefore;
    Wish mWish;
    std::vector<RpcError> mErrors;
    /// Elements that can stand once in their parent.
    std::set<std::pair<const void*, const lysc_node*>> mSeen;
};

}

#endif
