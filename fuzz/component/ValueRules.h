// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_FUZZ_COMPONENT_VALUERULES_H
#define ORV_FUZZ_COMPONENT_VALUERULES_H

#include "OrvMoAttributeValue.h"

#include <cstdint>
#include <cstring>
#include <vector>

/// \file
/// What a value must have for an operation to take it from a client, written independently of the
/// component.

namespace Fuzz {

/// True if a struct, by its first value, holds references, so that all of it is read. A member
/// without a value that stands before the first reference makes \p isBroken true.
template <class Container>
bool showsReferences(const Container& value, bool& isBroken) {
    for (const auto* member = value.values[0].structValue; member != nullptr;
         member = member->next) {
        if (member->value == nullptr) {
            isBroken = true;
            return false;
        }
        if (member->value->type == OrvMoAttributeTypeMoRef_3) {
            return true;
        }
    }
    return false;
}

/// Adds the values of the members of all of \p value's structs to \p left. False if a member is
/// not one that can be read.
template <class Container>
bool spread(const Container& value, bool mayBeBare, std::vector<const Container*>& left) {
    for (std::uint32_t at = 0; at < value.count; ++at) {
        for (const auto* member = value.values[at].structValue; member != nullptr;
             member = member->next) {
            if (member->name == nullptr || (member->value == nullptr && !mayBeBare)) {
                return false;
            }
            if (member->value != nullptr) {
                left.push_back(member->value);
            }
        }
    }
    return true;
}

template <class Container>
bool hasAllTexts(const Container& value) {
    for (std::uint32_t at = 0; at < value.count; ++at) {
        if (value.values == nullptr || value.values[at].moRef == nullptr) {
            return false;
        }
    }
    return true;
}

/// True if the component can read all that it must read of \p value. \p mayBeBare: members after
/// the first value's need no value.
template <class Container>
bool isReadable(const Container& value, bool mayBeBare) {
    std::vector<const Container*> left = {&value};
    while (!left.empty()) {
        const Container& each = *left.back();
        left.pop_back();
        if (each.type == OrvMoAttributeTypeMoRef_3 && !hasAllTexts(each)) {
            return false;
        }
        if (each.type != OrvMoAttributeTypeStruct_3 || each.count == 0) {
            continue;
        }
        bool isBroken = each.values == nullptr;
        const bool isRead = !isBroken && showsReferences(each, isBroken);
        if (isBroken || (isRead && !spread(each, mayBeBare, left))) {
            return false;
        }
    }
    return true;
}

/// True for an id whose type code does not say text and whose first slot is not zero: refused for
/// that alone.
template <class Container>
bool isNoIdText(const Container& value) {
    static const std::uint64_t kZero = 0;
    return value.type != OrvMoAttributeTypeString_3 && value.type != OrvMoAttributeTypeMoRef_3 &&
           value.values != nullptr && std::memcmp(value.values, &kZero, sizeof(kZero)) != 0;
}

inline bool isCheckedId(const char* attribute) {
    return attribute != nullptr && std::strcmp(attribute, "networkManagedElementId") == 0;
}

}

#endif
