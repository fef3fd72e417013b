// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ContainerConversion.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <memory>
#include <new>
#include <optional>
#include <utility>

namespace OrvHost {

namespace {

// Deeper than any model; stops at a record that is nested without end before the stack runs out.
constexpr int kDeepest = 64;

// A list with more members is taken for one that leads back into itself.
constexpr std::size_t kMostMembers = 100000;

struct Code {
    ValueKind kind;
    OrvMoAttributeType_3 code;
};

constexpr Code kCodes[] = {
    {ValueKind::Bool, OrvMoAttributeTypeBool_3},
    {ValueKind::Int, OrvMoAttributeTypeInt64_3},
    {ValueKind::Uint, OrvMoAttributeTypeUint64_3},
    {ValueKind::Double, OrvMoAttributeTypeDouble_3},
    {ValueKind::Enumeration, OrvMoAttributeTypeEnumeration_3},
    {ValueKind::String, OrvMoAttributeTypeString_3},
    {ValueKind::MoRef, OrvMoAttributeTypeMoRef_3},
    {ValueKind::Struct, OrvMoAttributeTypeStruct_3},
};

std::int32_t codeOf(ValueKind kind) {
    return std::find_if(std::begin(kCodes), std::end(kCodes),
                        [kind](const Code& code) { return code.kind == kind; })
        ->code;
}

ValueKind requireKind(std::int32_t code) {
    const auto* const found =
        std::find_if(std::begin(kCodes), std::end(kCodes),
                     [code](const Code& candidate) { return candidate.code == code; });
    if (found == std::end(kCodes)) {
        throw HostError(OrvInvalidArgument,
                        "the type code " + std::to_string(code) + " is unknown");
    }
    return found->kind;
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

}

template <class Records>
AttributeValue ContainerConversion<Records>::toValue(const Container& container) {
    return toValue(container, 0);
}

template <class Records>
AttributeValue ContainerConversion<Records>::toValue(const Container& container, int depth) {
    AttributeValue result;
    result.kind = requireKind(container.type);
    if (container.count > 0) {
        requireGiven(container.values, "an array of values");
    }
    result.values.reserve(container.count);
    for (std::uint32_t at = 0; at < container.count; ++at) {
        result.values.push_back(toValue(container.values[at], result.kind, depth));
    }
    return result;
}

template <class Records>
Value ContainerConversion<Records>::toValue(const Slot& slot, ValueKind kind, int depth) {
    switch (kind) {
    case ValueKind::Bool:
        return isTrue(slot);
    case ValueKind::Int:
        return slot.int64;
    case ValueKind::Uint:
        return slot.uint64;
    case ValueKind::Double:
        return slot.real;
    case ValueKind::MoRef:
        return requireText(slot.moRef, "a reference");
    case ValueKind::Struct:
        return toStruct(slot.structValue, depth + 1);
    case ValueKind::Enumeration:
    case ValueKind::String:
        break;
    }
    return requireText(slot.string, "the text of a value");
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
        std::string name = requireText(member->name, "the name of a struct member");
        const bool isGiven =
            member->value != nullptr && (member->value->type != 0 || member->value->count > 0);
        if (isGiven) {
            result.members.emplace_back(std::move(name), toValue(*member->value, depth));
        }
    }
    return result;
}

template <class Records>
void ContainerConversion<Records>::fill(Container& container, const AttributeValue& value,
                                        Orv::AutoMemory& memory) {
    container.type = static_cast<decltype(container.type)>(codeOf(value.kind));
    container.count = static_cast<std::uint32_t>(value.values.size());
    container.values = value.values.empty() ? nullptr : allocate<Slot>(memory, value.values.size());
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
        const std::string name = requireText((*next)->name, "the name of an attribute");
        try {
            values.emplace_back(name, ContainerConversion<Records3>::toValue((*next)->value));
        } catch (const HostError& error) {
            throw HostError(error.code(), "'" + name + "': " + error.what());
        }
    }
    return values;
}

namespace {

/// A record that owns the memory of its values.
struct OwnedContainer : OrvMoAttributeValueContainer_3 {
    Orv::AutoMemory memory;
};

void releaseContainer(OrvMoAttributeValueContainer_3* container) {
    delete static_cast<OwnedContainer*>(container);
}

/// Stands directly before an array of records, so that the owner can be found from the array's
/// address.
struct ArrayHead {
    Orv::AutoMemory* owner;
};

// makeResult reserves one element of the array for the head.
static_assert(sizeof(ArrayHead) == sizeof(void*), "one word");

void releaseContainers(OrvMoAttributeValueContainer_3** containers) {
    delete (reinterpret_cast<ArrayHead*>(containers) - 1)->owner;
}

}

OrvMoAttributeValueResult_3 makeResult(const AttributeValue& value) {
    auto owned = std::make_unique<OwnedContainer>();
    ContainerConversion<Records3>::fill(*owned, value, owned->memory);
    return {&releaseContainer, owned.release()};
}

OrvMoAttributeValuesResult_3 makeResult(const std::vector<AttributeValue>& values) {
    auto memory = std::make_unique<Orv::AutoMemory>();
    auto** const words = allocate<OrvMoAttributeValueContainer_3*>(*memory, values.size() + 2);
    auto** const containers = words + 1;
    for (std::size_t at = 0; at < values.size(); ++at) {
        containers[at] = allocate<OrvMoAttributeValueContainer_3>(*memory, 1);
        ContainerConversion<Records3>::fill(*containers[at], values[at], *memory);
    }
    reinterpret_cast<ArrayHead*>(words)->owner = memory.release();
    return {&releaseContainers, containers};
}

void requireGiven(const void* argument, const char* what) {
    if (argument == nullptr) {
        throw HostError(OrvInvalidArgument, std::string(what) + " is null");
    }
}

std::string requireText(const char* text, const char* what) {
    requireGiven(text, what);
    return text;
}

}
