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

}

JsonValue toJson(const ReadValue& value) {
    if (!value.isList) {
        return value.slots.empty() ? JsonValue() : slotJson(value.slots.front());
    }
    JsonValue values = JsonValue::array();
    for (const ReadSlot& slot : value.slots) {
        values.push_back(slotJson(slot));
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

std::string toLine(const JsonValue& document) {
    return document.dump(-1, ' ', false, JsonValue::error_handler_t::replace);
}

}
