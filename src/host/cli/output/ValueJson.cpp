// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ValueJson.h"

#include <type_traits>
#include <variant>

namespace OrvHost {

namespace {

JsonValue slotJson(const ReadSlot& slot) {
    return std::visit(
        [](const auto& held) -> JsonValue {
            using Held = std::decay_t<decltype(held)>;
            if constexpr (std::is_same_v<Held, std::monostate>) {
                return nullptr;
            } else if constexpr (std::is_same_v<Held, UnknownValue>) {
                return {{"type", held.type}, {"raw", held.bytes}};
            } else if constexpr (std::is_same_v<Held, ReadStruct>) {
                return toJson(held.members);
            } else {
                return held;
            }
        },
        slot);
}

JsonValue valueJson(const Value& value, const AttributeDef& def) {
    return std::visit(
        [&](const auto& held) -> JsonValue {
            if constexpr (std::is_same_v<std::decay_t<decltype(held)>, StructValue>) {
                JsonValue object = JsonValue::object();
                for (const NamedValue& member : held.members) {
                    const AttributeDef* known = def.type.findMember(member.first);
                    object[member.first] =
                        toJson(member.second, known != nullptr ? *known : AttributeDef{});
                }
                return object;
            } else {
                return held;
            }
        },
        value);
}

}

JsonValue toJson(const ReadValue& value) {
    if (!value.isList) {
        return value.slots.empty() ? JsonValue() : slotJson(value.slots.front());
    }
    JsonValue values = JsonValue::array();
    for (const ReadSlot& slot : value.slots) {
        values.add(slotJson(slot));
    }
    return values;
}

JsonValue toJson(const std::vector<NamedReadValue>& values) {
    JsonValue object = JsonValue::object();
    for (const NamedReadValue& value : values) {
        object[value.first] = toJson(value.second);
    }
    return object;
}

JsonValue toJson(const AttributeValue& value, const AttributeDef& def) {
    JsonValue values = JsonValue::array();
    for (const Value& one : value.values) {
        values.add(valueJson(one, def));
    }
    if (def.multiplicity.upper > 1) {
        return values;
    }
    return values.elements().empty() ? JsonValue() : values.elements().front();
}

}
