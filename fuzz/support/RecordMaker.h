// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_FUZZ_SUPPORT_RECORDMAKER_H
#define ORV_FUZZ_SUPPORT_RECORDMAKER_H

#include "AutoMemory.h"
#include "ByteSource.h"
#include "OrvMoAttributeValue.h"

#include <iterator>

namespace Fuzz {

/// The value records of version 1.
struct Version1 {
    using Container = OrvMoAttributeValueContainer;
    using Slot = OrvMoAttributeValue;
    using Member = OrvMoStructMember;
    static constexpr bool hasBareMembers = false; ///< members without a value
};

/// The value records of versions 3 and 3_1.
struct Version3 {
    using Container = OrvMoAttributeValueContainer_3;
    using Slot = OrvMoAttributeValue_3;
    using Member = OrvMoStructMember_3;
    static constexpr bool hasBareMembers = true;
};

/// Makes value records out of bytes: any nesting, any type code, any bytes in slots of codes that
/// nobody knows, texts that are DNs or look like it. Every record is one that a producer may hand
/// over. The records belong to this object.
template <class Version>
class RecordMaker {
public:
    using Container = typename Version::Container;
    using Slot = typename Version::Slot;
    using Member = typename Version::Member;

    explicit RecordMaker(ByteSource& source) : mSource(source) {}

    Container* container() { return container(0); }

    /// A DN in one of the two forms, or something like it.
    const char* dn() {
        static constexpr const char* kDns[] = {
            "ManagedElement=north", "ManagedElement=1",       "ManagedElement=north,Unit=7",
            "ManagedElement=1,A=2", "ManagedElement=other,A", "Network=1,Node=2",
            "ManagedElementX=north"};
        const std::size_t choice = mSource.below(std::size(kDns) + 1);
        return choice < std::size(kDns) ? mMemory.strdup(kDns[choice]) : text();
    }

    const char* text() { return mMemory.strdup(mSource.text().c_str()); }

private:
    // Each level takes three bytes at least, and a call or two in code that walks the record.
    static constexpr int kMostDepth = 300;

    std::int32_t type(int depth) {
        static constexpr std::int32_t kTypes[] = {
            OrvMoAttributeTypeMoRef_3,  OrvMoAttributeTypeStruct_3,      OrvMoAttributeTypeString_3,
            OrvMoAttributeTypeBool_3,   OrvMoAttributeTypeInt64_3,       OrvMoAttributeTypeUint64_3,
            OrvMoAttributeTypeDouble_3, OrvMoAttributeTypeEnumeration_3, 0};
        const std::size_t choice = mSource.below(std::size(kTypes) + 1);
        std::int32_t made = choice < std::size(kTypes)
                                ? kTypes[choice]
                                : static_cast<std::int32_t>(mSource.number(4));
        return made == OrvMoAttributeTypeStruct_3 && depth == kMostDepth ? 0 : made;
    }

    Container* container(int depth) {
        auto* const made = mMemory.malloc<Container>(1);
        made->type = type(depth);
        const std::uint8_t shape = mSource.byte();
        made->count = shape % 8 == 7 ? shape : shape % 8U;
        // An array may be there although there is no value.
        if (made->count > 0 || shape >= 128) {
            made->values = mMemory.malloc<Slot>(made->count + 1);
        }
        for (std::uint32_t at = 0; at < made->count; ++at) {
            fill(made->values[at], made->type, at == 0, depth);
        }
        return made;
    }

    void fill(Slot& slot, std::int32_t type, bool isFirst, int depth) {
        switch (type) {
        case OrvMoAttributeTypeMoRef_3:
            slot.moRef = dn();
            break;
        case OrvMoAttributeTypeStruct_3:
            slot.structValue = members(isFirst, depth);
            break;
        case OrvMoAttributeTypeString_3:
        case OrvMoAttributeTypeEnumeration_3:
            slot.string = text();
            break;
        case OrvMoAttributeTypeBool_3:
            slot.boolean = mSource.byte() % 2 == 1;
            break;
        default:
            slot.uint64 = mSource.number(8);
        }
    }

    /// A member of the first struct shows its type to those who look for references, so it has a
    /// value. In version 1 all have one.
    Member* members(bool isFirst, int depth) {
        Member* first = nullptr;
        Member** link = &first;
        for (std::size_t left = mSource.below(5); left > 0; --left) {
            auto* const made = mMemory.malloc<Member>(1);
            made->name = text();
            const bool mayBeBare = Version::hasBareMembers && !isFirst;
            made->value = mayBeBare && mSource.below(8) == 0 ? nullptr : container(depth + 1);
            *link = made;
            link = &made->next;
        }
        return first;
    }

    ByteSource& mSource;
    Orv::AutoMemory mMemory;
};

}

#endif
