// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ReadValue.h"

#include "model/TypeCode.h"

namespace OrvHost {

namespace {

// The records of version 1 have the same fields and codes as those of version 3, but types of their
// own.

template <class Member>
ReadStruct readStruct(const Member* member, const AttributeDef* def) {
    ReadStruct::Members members;
    for (; member != nullptr; member = member->next) {
        const AttributeDef* const known =
            def != nullptr ? def->type.findMember(member->name) : nullptr;
        members.emplace_back(member->name, toReadValue(member->value, known));
    }
    return ReadStruct(std::move(members));
}

ReadSlot readText(const char* text) {
    return text != nullptr ? ReadSlot(std::string(text)) : ReadSlot();
}

template <class Slot>
ReadSlot readSlot(std::int32_t type, const Slot& slot, const AttributeDef* def) {
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
        return readText(slot.string);
    case OrvMoAttributeTypeMoRef_3:
        return readText(slot.moRef);
    case OrvMoAttributeTypeStruct_3:
        return readStruct(slot.structValue, def);
    default:
        return UnknownValue{type, slot.uint64};
    }
}

template <class Container>
ReadValue readContainer(const Container* container, const AttributeDef* def) {
    ReadValue value;
    if (container == nullptr) {
        return value;
    }
    value.type = container->type;
    value.isList = container->count > 1 || (def != nullptr && def->multiplicity.upper > 1);
    value.slots.reserve(container->count);
    for (std::uint32_t position = 0; position < container->count; ++position) {
        value.slots.push_back(readSlot(container->type, container->values[position], def));
    }
    return value;
}

std::optional<StructValue> toStruct(const ReadStruct& read) {
    StructValue result;
    for (const NamedReadValue& member : read.members) {
        if (member.second.slots.empty()) {
            continue;
        }
        std::optional<AttributeValue> value = toAttributeValue(member.second, ValueKind::String);
        if (!value) {
            return std::nullopt;
        }
        result.members.emplace_back(member.first, std::move(*value));
    }
    return result;
}

std::optional<Value> toValue(const ReadSlot& slot) {
    return std::visit(
        [](const auto& held) -> std::optional<Value> {
            using Held = std::decay_t<decltype(held)>;
            if constexpr (std::is_same_v<Held, std::monostate> ||
                          std::is_same_v<Held, UnknownValue>) {
                return std::nullopt;
            } else if constexpr (std::is_same_v<Held, ReadStruct>) {
                std::optional<StructValue> members = toStruct(held);
                return members ? std::optional<Value>(std::move(*members)) : std::nullopt;
            } else {
                return Value(held);
            }
        },
        slot);
}

}

ReadStruct::ReadStruct() = default;
ReadStruct::ReadStruct(Members values) : members(std::move(values)) {}
ReadStruct::ReadStruct(const ReadStruct& other) = default;
ReadStruct::ReadStruct(ReadStruct&& other) noexcept = default;
ReadStruct& ReadStruct::operator=(const ReadStruct& other) = default;
ReadStruct& ReadStruct::operator=(ReadStruct&& other) noexcept = default;
ReadStruct::~ReadStruct() = default;

ReadValue toReadValue(const OrvMoAttributeValueContainer_3* container, const AttributeDef* def) {
    return readContainer(container, def);
}

ReadValue toReadValue(const OrvMoAttributeValueContainer* container, const AttributeDef* def) {
    return readContainer(container, def);
}

std::optional<AttributeValue> toAttributeValue(const ReadValue& value, ValueKind kind) {
    AttributeValue result{kindOfTypeCode(value.type).value_or(kind), {}};
    if (value.slots.empty()) {
        result.kind = kind;
    }
    for (const ReadSlot& slot : value.slots) {
        std::optional<Value> one = toValue(slot);
        if (!one) {
            return std::nullopt;
        }
        result.values.push_back(std::move(*one));
    }
    return result;
}

}
