// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ResultBlock.h"

#include "ContainerConversion.h"
#include "model/TypeCode.h"
#include "store/AttributeBytes.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <string_view>

namespace OrvHost {

namespace {

/// The records of values that the store keeps: how much memory they take, and filling it. Records
/// come first in the memory, texts after them. Names, and enumerators, stay in the model.
template <class Records>
class StoredValues {
    using Container = typename Records::Container;
    using Slot = typename Records::Slot;
    using Member = typename Records::Member;

public:
    StoredValues(const TypeDef& type, std::string_view values) : mType(type), mValues(values) {
        BytesReader reader(values);
        measure(type, reader);
    }

    /// The number of bytes that fill uses.
    std::size_t size() const { return mRecordBytes + mTextBytes; }

    /// Fills \p container with values in the memory at \p block, which is aligned for any record.
    void fill(Container& container, char* block) {
        mRecord = block;
        mText = block + mRecordBytes;
        BytesReader reader(mValues);
        fill(container, mType, reader);
    }

private:
    void measure(const TypeDef& type, BytesReader& reader) {
        const std::uint64_t count = reader.number();
        mRecordBytes += count * sizeof(Slot);
        if (type.kind == ValueKind::String || type.kind == ValueKind::MoRef) {
            for (std::uint64_t at = 0; at < count; ++at) {
                mTextBytes += reader.text().size() + 1;
            }
            return;
        }
        for (std::uint64_t at = 0; at < count; ++at) {
            measureOne(type, reader);
        }
    }
    void measureOne(const TypeDef& type, BytesReader& reader) {
        switch (type.kind) {
        case ValueKind::Struct:
            for (std::uint64_t members = reader.number(); members > 0; --members) {
                mRecordBytes += sizeof(Member) + sizeof(Container);
                measure(type.members[reader.number()].type, reader);
            }
            return;
        case ValueKind::Bool:
            reader.flag();
            return;
        case ValueKind::Double:
            reader.real();
            return;
        default:
            reader.number();
            return;
        }
    }

    template <class T>
    T* take(std::size_t count) {
        T* const taken = reinterpret_cast<T*>(mRecord);
        mRecord += count * sizeof(T);
        return taken;
    }
    const char* put(std::string_view text) {
        char* const copy = mText;
        std::memcpy(copy, text.data(), text.size());
        copy[text.size()] = 0;
        mText += text.size() + 1;
        return copy;
    }

    void fill(Container& container, const TypeDef& type, BytesReader& reader) {
        container.type = static_cast<decltype(container.type)>(typeCodeOf(type.kind));
        container.count = static_cast<std::uint32_t>(reader.number());
        container.values = container.count == 0 ? nullptr : take<Slot>(container.count);
        for (std::uint32_t at = 0; at < container.count; ++at) {
            fill(container.values[at], type, reader);
        }
    }
    void fill(Slot& slot, const TypeDef& type, BytesReader& reader) {
        switch (type.kind) {
        case ValueKind::Bool:
            slot.uint64 = 0;
            slot.boolean = reader.flag();
            return;
        case ValueKind::Int:
            slot.int64 = reader.signedNumber();
            return;
        case ValueKind::Uint:
            slot.uint64 = reader.number();
            return;
        case ValueKind::Double:
            slot.real = reader.real();
            return;
        case ValueKind::MoRef:
            slot.moRef = put(reader.text());
            return;
        case ValueKind::Struct:
            slot.structValue = makeMembers(type, reader);
            return;
        case ValueKind::Enumeration:
            slot.string = type.enumerators[reader.number()].c_str();
            return;
        case ValueKind::String:
            slot.string = put(reader.text());
            return;
        }
    }
    Member* makeMembers(const TypeDef& type, BytesReader& reader) {
        Member* first = nullptr;
        Member** place = &first;
        for (std::uint64_t count = reader.number(); count > 0; --count) {
            const AttributeDef& def = type.members[reader.number()];
            Member* const member = take<Member>(1);
            member->name = def.name.c_str();
            member->value = take<Container>(1);
            member->next = nullptr;
            fill(*member->value, def.type, reader);
            *place = member;
            place = &member->next;
        }
        return first;
    }

    const TypeDef& mType;
    std::string_view mValues;
    std::size_t mRecordBytes = 0;
    std::size_t mTextBytes = 0;
    char* mRecord = nullptr; ///< where the next record comes
    char* mText = nullptr;   ///< where the next text comes
};

/// A container of version 3 with what belongs to it: values of the store after it in the same
/// block, all others in a memory of their own.
struct OwnedContainer : OrvMoAttributeValueContainer_3 {
    std::unique_ptr<Orv::AutoMemory> memory;
};

void releaseContainer(OrvMoAttributeValueContainer_3* container) {
    auto* const owned = static_cast<OwnedContainer*>(container);
    if (owned != nullptr) {
        owned->~OwnedContainer();
        ::operator delete(owned);
    }
}

struct Release {
    void operator()(OwnedContainer* container) const { releaseContainer(container); }
};
using OwnedPointer = std::unique_ptr<OwnedContainer, Release>;

/// The array ends with a null pointer; each record in it is an OwnedContainer.
void releaseContainers(OrvMoAttributeValueContainer_3** containers) {
    const std::unique_ptr<OrvMoAttributeValueContainer_3*[]> array(containers);
    for (auto** next = containers; *next != nullptr; ++next) {
        releaseContainer(*next);
    }
}

OwnedPointer allocate(std::size_t more) {
    return OwnedPointer(new (::operator new(sizeof(OwnedContainer) + more)) OwnedContainer());
}

OwnedPointer makeContainer(const AttributeValue& value) {
    OwnedPointer owned = allocate(0);
    if (value.values.empty()) {
        owned->type = typeCodeOf(value.kind);
        return owned;
    }
    owned->memory = std::make_unique<Orv::AutoMemory>();
    ContainerConversion<Records3>::fill(*owned, value, *owned->memory);
    return owned;
}

OwnedPointer makeContainer(const AttributeView& view) {
    if (!view.stored) {
        return makeContainer(view.value());
    }
    StoredValues<Records3> values(view.def->type, *view.stored);
    OwnedPointer owned = allocate(values.size());
    values.fill(*owned, reinterpret_cast<char*>(owned.get() + 1));
    return owned;
}

}

OrvMoAttributeValueResult_3 makeResult(const AttributeView& view) {
    return {&releaseContainer, makeContainer(view).release()};
}

OrvMoAttributeValuesResult_3 makeResult(const std::vector<AttributeView>& views) {
    std::vector<OwnedPointer> owned;
    owned.reserve(views.size());
    for (const AttributeView& view : views) {
        owned.push_back(makeContainer(view));
    }
    auto array = std::make_unique<OrvMoAttributeValueContainer_3*[]>(views.size() + 1);
    std::transform(owned.begin(), owned.end(), array.get(),
                   [](OwnedPointer& one) { return one.release(); });
    return {&releaseContainers, array.release()};
}

OrvMoAttributeValueResult_3 makeResult(const AttributeValue& value) {
    return {&releaseContainer, makeContainer(value).release()};
}

OrvMoAttributeValueContainer* makeResult(const AttributeView& view, Orv::AutoMemory& memory) {
    auto* const container = memory.malloc<OrvMoAttributeValueContainer>(1);
    requireGiven(container, "memory for a value");
    if (!view.stored) {
        ContainerConversion<Records1>::fill(*container, view.value(), memory);
        return container;
    }
    StoredValues<Records1> values(view.def->type, *view.stored);
    // Counted in units of eight bytes: a count of bytes might not fit the parameter.
    const std::size_t units = values.size() / sizeof(std::uint64_t) + 1;
    std::uint64_t* const block =
        units <= std::numeric_limits<unsigned int>::max()
            ? memory.malloc<std::uint64_t>(static_cast<unsigned int>(units))
            : nullptr;
    requireGiven(block, "memory for a value");
    values.fill(*container, reinterpret_cast<char*>(block));
    return container;
}

}
