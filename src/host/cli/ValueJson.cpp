// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ValueJson.h"

#include <algorithm>

namespace OrvHost {

namespace {

// The records of version 1 have the same fields and codes as those of version 3, but types of their
// own.

template <class Member>
JsonValue structJson(const Member* member, const AttributeDef* def) {
    JsonValue object = JsonValue::object();
    for (; member != nullptr; member = member->next) {
        const AttributeDef* memberDef = nullptr;
        if (def != nullptr) {
            const auto& members = def->type.members;
            const auto found =
                std::find_if(members.begin(), members.end(),
                             [&](const AttributeDef& other) { return other.name == member->name; });
            memberDef = found != members.end() ? &*found : nullptr;
        }
        object[member->name] = toJson(member->value, memberDef);
    }
    return object;
}

JsonValue textJson(const char* text) {
    return text != nullptr ? JsonValue(text) : JsonValue();
}

template <class Slot>
JsonValue slotJson(std::int32_t type, const Slot& slot, const AttributeDef* def) {
    switch (type) {
    case OrvMoAttributeTypeBool_3:
        return slot.boolean;
    case OrvMoAttributeTypeInt64_3:
        return slot.int64;
    case OrvMoAttributeTypeUint64_3:
        return slot.uint64;
    case OrvMoAttributeTypeDouble_3:
        return slot.real;
    case OrvMoAttributeTypeEnumeration_3:
    case OrvMoAttributeTypeString_3:
        return textJson(slot.string);
    case OrvMoAttributeTypeMoRef_3:
        return textJson(slot.moRef);
    case OrvMoAttributeTypeStruct_3:
        return structJson(slot.structValue, def);
    default:
        return {{"type", type}, {"raw", slot.uint64}};
    }
}

template <class Container>
JsonValue containerJson(const Container* container, const AttributeDef* def) {
    if (container == nullptr) {
        return nullptr;
    }
    const bool isMultiValued =
        container->count > 1 || (def != nullptr && def->multiplicity.upper > 1);
    if (!isMultiValued) {
        return container->count == 0 ? JsonValue()
                                     : slotJson(container->type, container->values[0], def);
    }
    JsonValue values = JsonValue::array();
    for (std::uint32_t position = 0; position < container->count; ++position) {
        values.push_back(slotJson(container->type, container->values[position], def));
    }
    return values;
}

}

JsonValue toJson(const OrvMoAttributeValueContainer_3* container, const AttributeDef* def) {
    return containerJson(container, def);
}

JsonValue toJson(const OrvMoAttributeValueContainer* container, const AttributeDef* def) {
    return containerJson(container, def);
}

std::string toLine(const JsonValue& document) {
    return document.dump(-1, ' ', false, JsonValue::error_handler_t::replace);
}

}
