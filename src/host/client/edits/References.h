// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_EDITS_REFERENCES_H
#define ORV_HOST_CLIENT_EDITS_REFERENCES_H

#include "model/Value.h"

#include <string>
#include <variant>

namespace OrvHost {

/// Calls \p visit with each DN in \p value, an AttributeValue, in order, those in the members of
/// structs included. It may change them if the value is not const.
template <class Attribute, class Visit>
void forEachReference(Attribute& value, const Visit& visit) {
    for (auto& one : value.values) {
        if (auto* whole = std::get_if<StructValue>(&one)) {
            for (auto& member : whole->members) {
                forEachReference(member.second, visit);
            }
        } else if (auto* dn = std::get_if<std::string>(&one);
                   dn != nullptr && value.kind == ValueKind::MoRef) {
            visit(*dn);
        }
    }
}

/// Replaces each DN in \p value by what \p change makes of it.
template <class Change>
void changeReferences(AttributeValue& value, const Change& change) {
    forEachReference(value, [&change](std::string& dn) { dn = change(dn); });
}

}

#endif
