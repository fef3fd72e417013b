// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "StateComparison.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace OrvHost {
namespace {

/// The value with the members of structs in the order of the model.
AttributeValue inModelOrder(AttributeValue value, const TypeDef& type) {
    const auto position = [&](const NamedValue& member) {
        const auto found =
            std::find_if(type.members.begin(), type.members.end(),
                         [&](const AttributeDef& def) { return def.name == member.first; });
        return found - type.members.begin();
    };
    for (Value& one : value.values) {
        if (auto* members = std::get_if<StructValue>(&one)) {
            for (NamedValue& member : members->members) {
                if (const AttributeDef* def = type.findMember(member.first)) {
                    member.second = inModelOrder(std::move(member.second), def->type);
                }
            }
            std::stable_sort(members->members.begin(), members->members.end(),
                             [&](const NamedValue& left, const NamedValue& right) {
                                 return position(left) < position(right);
                             });
        }
    }
    return value;
}

std::vector<AttributeDifference> differences(const ClassDef& moc,
                                             const std::vector<AttributeValue>& before,
                                             const std::vector<AttributeValue>& after) {
    std::vector<AttributeDifference> result;
    for (std::size_t at = 0; at < moc.attributes.size(); ++at) {
        const AttributeDef& def = moc.attributes[at];
        const bool isSame =
            before[at].values == after[at].values ||
            inModelOrder(before[at], def.type).values == inModelOrder(after[at], def.type).values;
        if (!def.isGivenByName() && !isSame) {
            result.push_back({&def, before[at], after[at]});
        }
    }
    return result;
}

}

void StateComparison::addBefore(ObjectState object) {
    mByDn.emplace(object.dn, mBefore.size());
    mBefore.push_back({std::move(object), false, {}});
}

void StateComparison::addAfter(const ObjectState& object) {
    const auto known = mByDn.find(object.dn);
    if (known == mByDn.end()) {
        const std::vector<AttributeValue> none(object.values.size());
        mCreated.push_back({ObjectDifference::Kind::Created, object.dn,
                            differences(*object.moc, none, object.values)});
        return;
    }
    Entry& entry = mBefore[known->second];
    entry.isAfter = true;
    entry.changes = differences(*object.moc, entry.object.values, object.values);
    entry.object.values = {}; // compared; large states are not kept
}

std::vector<ObjectDifference> StateComparison::take() {
    std::vector<ObjectDifference> result;
    for (Entry& entry : mBefore) {
        const ObjectState& object = entry.object;
        if (!entry.isAfter) {
            const std::vector<AttributeValue> none(object.values.size());
            result.push_back({ObjectDifference::Kind::Deleted, object.dn,
                              differences(*object.moc, object.values, none)});
        } else if (!entry.changes.empty()) {
            result.push_back(
                {ObjectDifference::Kind::Changed, object.dn, std::move(entry.changes)});
        }
    }
    std::move(mCreated.begin(), mCreated.end(), std::back_inserter(result));
    return result;
}

}
