// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ContainerConversion.h"

#include "model/TypeCode.h"

#include <cstring>
#include <new>
#include <utility>

namespace OrvHost {

namespace {

// Deeper than any model; stops at a record that is nested without end before the stack runs out.
constexpr int kDeepest = 64;

// A list with more members is taken for one that leads back into itself.
constexpr std::size_t kMostMembers = 100000;

ValueKind requireKind(std::int32_t code) {
    const auto kind = kindOfTypeCode(code);
    if (!kind) {
        throw HostError(OrvInvalidArgument,
                        "the type code " + std::to_string(code) + " is unknown");
    }
    return *kind;
}

template <class T>
T* allocate(Orv::AutoMemory& memory, std::size_t count) {
    T* const block = memory.malloc<T>(static_cast<unsigned int>(count));
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

// Any byte except zero is true. A client may have written a byte that is not valid in a `bool`, so
// the byte itself is read.
template <class Slot>
bool isTrue(const Slot& slot) {
    unsigned char byte = 0;
    std::memcpy(&byte, &slot.boolean, sizeof(byte));
    return byte != 0;
}

const char* copyText(Orv::AutoMemory& memory, const std::string& text) {
    const char* const copy = memory.strdup(text.c_str());
    if (copy == nullptr) {
        throw std::bad_alloc();
    }
    return copy;
}

// Into the memory that a text of the same place had before.
void assignText(Value& value, std::string_view text) {
    if (auto* const former = std::get_if<std::string>(&value)) {
        former->assign(text);
    } else {
        value.emplace<std::string>(text);
    }
}

}

template <class Records>
void ContainerConversion<Records>::read(const Container& container, AttributeValue& value) {
    read(container, value, 0);
}

template <class Records>
void ContainerConversion<Records>::read(const Container& container, AttributeValue& value,
                                        int depth) {
    value.kind = requireKind(container.type);
    if (container.count > 0) {
        requireGiven(container.values, "an array of values");
    }
    value.values.resize(container.count);
    for (std::uint32_t at = 0; at < container.count; ++at) {
        read(container.values[at], value.kind, value.values[at], depth);
    }
}

template <class Records>
void ContainerConversion<Records>::read(const Slot& slot, ValueKind kind, Value& value, int depth) {
    switch (kind) {
    case ValueKind::Bool:
        value = isTrue(slot);
        return;
    case ValueKind::Int:
        value = slot.int64;
        return;
    case ValueKind::Uint:
        value = slot.uint64;
        return;
    case ValueKind::Double:
        value = slot.real;
        return;
    case ValueKind::MoRef:
        assignText(value, requireText(slot.moRef, "a reference"));
        return;
    case ValueKind::Struct:
        value = toStruct(slot.structValue, depth + 1);
        return;
    case ValueKind::Enumeration:
    case ValueKind::String:
        assignText(value, requireText(slot.string, "the text of a value"));
        return;
    }
}

template <class Records>
StructValue ContainerConversion<Records>::toStruct(const Member* first, int depth) {
    if (depth > kDeepest) {
        throw HostError(OrvInvalidArgument,
                        "structs are nested deeper than " + std::to_string(kDeepest) + " levels");
    }
    StructValue result;
    std::size_t left = kMostMembers;
    for (const Member* member = first; member != nullptr; member = member->next) {
        if (left-- == 0) {
            throw HostError(OrvInvalidArgument,
                            "a struct has more than " + std::to_string(kMostMembers) + " members");
        }
        std::string name(requireText(member->name, "the name of a struct member"));
        const bool isGiven =
            member->value != nullptr && (member->value->type != 0 || member->value->count > 0);
        if (isGiven) {
            read(*member->value,
                 result.members.emplace_back(std::move(name), AttributeValue()).second, depth);
        }
    }
    return result;
}

template <class Records>
void ContainerConversion<Records>::fill(Container& container, const AttributeValue& value,
                                        Orv::AutoMemory& memory) {
    container.type = static_cast<decltype(container.type)>(typeCodeOf(value.kind));
    container.count = static_cast<std::uint32_t>(value.values.size());
    container.values = nullptr;
    if (value.values.empty()) {
        return;
    }
    container.values = allocate<Slot>(memory, value.values.size());
    for (std::size_t at = 0; at < value.values.size(); ++at) {
        fill(container.values[at], value.values[at], value.kind, memory);
    }
}

template <class Records>
void ContainerConversion<Records>::fill(Slot& slot, const Value& value, ValueKind kind,
                                        Orv::AutoMemory& memory) {
    switch (kind) {
    case ValueKind::Bool:
        slot.boolean = std::get<bool>(value);
        return;
    case ValueKind::Int:
        slot.int64 = std::get<std::int64_t>(value);
        return;
    case ValueKind::Uint:
        slot.uint64 = std::get<std::uint64_t>(value);
        return;
    case ValueKind::Double:
        slot.real = std::get<double>(value);
        return;
    case ValueKind::MoRef:
        slot.moRef = copyText(memory, std::get<std::string>(value));
        return;
    case ValueKind::Struct:
        slot.structValue = makeMembers(std::get<StructValue>(value), memory);
        return;
    case ValueKind::Enumeration:
    case ValueKind::String:
        slot.string = copyText(memory, std::get<std::string>(value));
        return;
    }
}

template <class Records>
typename Records::Member* ContainerConversion<Records>::makeMembers(const StructValue& value,
                                                                    Orv::AutoMemory& memory) {
    Member* first = nullptr;
    Member** place = &first;
    for (const NamedValue& named : value.members) {
        Member* const member = allocate<Member>(memory, 1);
        member->name = copyText(memory, named.first);
        member->value = allocate<Container>(memory, 1);
        fill(*member->value, named.second, memory);
        *place = member;
        place = &member->next;
    }
    return first;
}

template class ContainerConversion<Records1>;
template class ContainerConversion<Records3>;

std::vector<NamedValue> toNamedValues(OrvMoNamedAttributeValueContainer_3** attributes) {
    std::vector<NamedValue> values;
    for (auto** next = attributes; next != nullptr && *next != nullptr; ++next) {
        const std::string name(requireText((*next)->name, "the name of an attribute"));
        try {
            values.emplace_back(name, ContainerConversion<Records3>::toValue((*next)->value));
        } catch (const HostError& error) {
            throw HostError(error.code(), "'" + name + "': " + error.what());
        }
    }
    return values;
}

void refuseNull(const char* what) {
    throw HostError(OrvInvalidArgument, std::string(what) + " is null");
}

}
