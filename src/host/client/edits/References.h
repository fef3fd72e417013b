// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_EDITS_REFERENCES_H
#define ORV_HOST_CLIENT_EDITS_REFERENCES_H

#include "model/Value.h"

#include <string>
#include <variant>

namespace OrvHost {

/// Calls \p visit with each DN in \p value, in order, those in the members of structs included.
template <class Visit>
void forEachReference(const AttributeValue& value, const Visit& visit) {
    for (const Value& one : value.values) {
        if (const auto* members = std::get_if<StructValue>(&one)) {
            for (const NamedValue& member : members->members) {
                forEachReference(member.second, visit);
            }
        } else if (const auto* dn = std::get_if<std::string>(&one);
                   dn != nullptr && value.kind == ValueKind::MoRef) {
            visit(*dn);
        }
    }
}

}

#endif
