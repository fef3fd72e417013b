// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_FUZZ_COMPONENT_VALUEMAKER_H
#define ORV_FUZZ_COMPONENT_VALUEMAKER_H

#include "AutoMemory.h"
#include "Names.h"
#include "support/ByteSource.h"
#include "support/RecordMaker.h"

#include <algorithm>
#include <iterator>

namespace Fuzz {

/// Makes value records out of bytes, also invalid ones: arrays, texts, names and members can be
/// missing (null). What is not null can be read, and a count is never too large. The records belong
/// to \p memory.
template <class Version>
class ValueMaker {
public:
    using Container = typename Version::Container;
    using Slot = typename Version::Slot;
    using Member = typename Version::Member;

    ValueMaker(ByteSource& source, Orv::AutoMemory& memory, Form form)
        : mSource(source), mMemory(memory), mForm(form) {}

    Container* container() {
        auto* const made = mMemory.malloc<Container>(1);
        fill(*made, 0);
        return made;
    }

    /// A fixed value instead of one made of bytes.
    Container* references(std::initializer_list<const char*> dns) {
        auto* const made = mMemory.malloc<Container>(1);
        made->type = OrvMoAttributeTypeMoRef_3;
        made->count = static_cast<std::uint32_t>(dns.size());
        made->values = mMemory.malloc<Slot>(made->count);
        std::transform(dns.begin(), dns.end(), made->values, [&](const char* dn) {
            Slot slot{};
            slot.moRef = mMemory.strdup(dn);
            return slot;
        });
        return made;
    }

    void fill(Container& made, int depth);

private:
    static constexpr int kMostDepth = 6;
    static constexpr std::uint8_t kMissing = 250; ///< and above: something is not there
    static constexpr std::uint8_t kDeep = 249;
    static constexpr std::uint8_t kMany = 248;

    std::int32_t type(std::uint8_t choice) {
        static constexpr std::int32_t kTypes[] = {OrvMoAttributeTypeMoRef_3,
                                                  OrvMoAttributeTypeStruct_3,
                                                  OrvMoAttributeTypeString_3,
                                                  OrvMoAttributeTypeMoRef_3,
                                                  OrvMoAttributeTypeInt64_3,
                                                  OrvMoAttributeTypeBool_3,
                                                  0,
                                                  OrvMoAttributeTypeEnumeration_3};
        return choice < 240 ? kTypes[choice % std::size(kTypes)]
                            : static_cast<std::int32_t>(mSource.number(4));
    }

    const char* dn() { return mMemory.strdup(makeDn(mSource, mForm).c_str()); }
    const char* text() {
        static constexpr const char* kTexts[] = {"1", "", "north", "a,b", " x", "\xff"};
        const std::size_t choice = mSource.below(std::size(kTexts) + 1);
        return mMemory.strdup(choice < std::size(kTexts) ? kTexts[choice] : mSource.text().c_str());
    }

    void fill(Slot& slot, std::int32_t type, int depth);
    Member* members(int depth);
    void nest(Container& outermost);
    void chain(Container& container);

    ByteSource& mSource;
    Orv::AutoMemory& mMemory;
    Form mForm;
};

template <class Version>
void ValueMaker<Version>::fill(Container& made, int depth) {
    made.type = type(mSource.byte());
    const std::uint8_t shape = mSource.byte();
    if (shape == kDeep && depth == 0) {
        nest(made);
        return;
    }
    if (shape == kMany && depth == 0) {
        chain(made);
        return;
    }
    if (shape >= kMissing) {
        made.count = shape == 255 ? 0xFFFFFFFFU : shape % 8U;
        return;
    }
    made.count = shape % 8U == 7U ? shape % 64U : shape % 4U;
    // An array may be there although there is no value.
    const std::uint32_t slots = std::max(made.count, shape >= 128 ? 1U : 0U);
    made.values = slots > 0 ? mMemory.malloc<Slot>(slots) : nullptr;
    for (std::uint32_t at = 0; at < slots; ++at) {
        fill(made.values[at], made.type, depth);
    }
}

template <class Version>
void ValueMaker<Version>::fill(Slot& slot, std::int32_t type, int depth) {
    switch (type) {
    case OrvMoAttributeTypeMoRef_3:
        slot.moRef = mSource.byte() >= kMissing ? nullptr : dn();
        break;
    case OrvMoAttributeTypeStruct_3:
        slot.structValue = members(depth);
        break;
    case OrvMoAttributeTypeString_3:
    case OrvMoAttributeTypeEnumeration_3:
        slot.string = mSource.byte() >= kMissing ? nullptr : text();
        break;
    default:
        slot.uint64 = mSource.number(8);
    }
}

template <class Version>
typename Version::Member* ValueMaker<Version>::members(int depth) {
    Member* first = nullptr;
    Member** link = &first;
    for (std::size_t left = depth < kMostDepth ? mSource.below(4) : 0; left > 0; --left) {
        auto* const made = mMemory.malloc<Member>(1);
        const std::uint8_t what = mSource.byte();
        made->name = what >= kMissing ? nullptr : mMemory.strdup("member");
        if (what % 16 != 15) {
            made->value = mMemory.malloc<Container>(1);
            fill(*made->value, depth + 1);
        }
        *link = made;
        link = &made->next;
    }
    return first;
}

/// Structs in structs, each with a reference beside it that makes it one to be converted.
template <class Version>
void ValueMaker<Version>::nest(Container& outermost) {
    const std::uint32_t levels = 16U * (1U + mSource.byte());
    Container* container = &outermost;
    for (std::uint32_t level = 0; level < levels; ++level) {
        auto* const pair = mMemory.malloc<Member>(2);
        pair[0] = {"reference", references({"ManagedElement=1"}), &pair[1]};
        pair[1] = {"struct", mMemory.malloc<Container>(1), nullptr};
        container->type = OrvMoAttributeTypeStruct_3;
        container->count = 1;
        container->values = mMemory.malloc<Slot>(1);
        container->values[0].structValue = &pair[0];
        container = pair[1].value;
    }
    fill(*container, 1);
}

/// One struct with very many members.
template <class Version>
void ValueMaker<Version>::chain(Container& container) {
    const std::uint32_t count = 16U * (1U + mSource.byte());
    auto* const made = mMemory.malloc<Member>(count);
    Container* const value = references({"ManagedElement=paris,Unit=1"});
    for (std::uint32_t at = 0; at < count; ++at) {
        made[at] = {"member", value, at + 1 < count ? &made[at + 1] : nullptr};
    }
    container.type = OrvMoAttributeTypeStruct_3;
    container.count = 1;
    container.values = mMemory.malloc<Slot>(1);
    container.values[0].structValue = made;
}

}

#endif
