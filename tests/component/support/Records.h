// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_COMPONENT_SUPPORT_RECORDS_H
#define ORV_TESTS_COMPONENT_SUPPORT_RECORDS_H

#include "Value.h"

#include <deque>
#include <string>
#include <vector>

namespace Scripted {

/// The record types of versions 3 and 3_1.
struct RecordsOfVersion3 {
    using Container = OrvMoAttributeValueContainer_3;
    using SlotRecord = OrvMoAttributeValue_3;
    using MemberRecord = OrvMoStructMember_3;
};

/// The record types of version 1.
struct RecordsOfVersion1 {
    using Container = OrvMoAttributeValueContainer;
    using SlotRecord = OrvMoAttributeValue;
    using MemberRecord = OrvMoStructMember;
};

/// Builds records from values and owns all of them, so that they go together with this object.
template <class Version>
class BasicRecords {
public:
    using Container = typename Version::Container;

    BasicRecords() = default;
    BasicRecords(const BasicRecords&) = delete;
    BasicRecords& operator=(const BasicRecords&) = delete;

    /// The record of \p value.
    Container* container(const Value& value) {
        mContainers.push_back(containerOf(value));
        return &mContainers.back();
    }

    /// The records of \p values, ended by a null pointer.
    Container** array(const std::vector<Value>& values) {
        std::vector<Container*> pointers;
        for (const Value& value : values) {
            pointers.push_back(container(value));
        }
        pointers.push_back(nullptr);
        mArrays.push_back(std::move(pointers));
        return mArrays.back().data();
    }

    /// The records of named attributes, ended by a null pointer.
    OrvMoNamedAttributeValueContainer_3** named(const NamedValues& attributes) {
        std::vector<OrvMoNamedAttributeValueContainer_3*> pointers;
        for (const auto& [name, value] : attributes) {
            mNamed.push_back({nameText(name), containerOf(value)});
            pointers.push_back(&mNamed.back());
        }
        pointers.push_back(nullptr);
        mNamedArrays.push_back(std::move(pointers));
        return mNamedArrays.back().data();
    }

    const char* text(const std::string& text) {
        mTexts.push_back(text);
        return mTexts.back().c_str();
    }

private:
    using SlotRecord = typename Version::SlotRecord;
    using MemberRecord = typename Version::MemberRecord;

    Container containerOf(const Value& value) {
        std::vector<SlotRecord> slots;
        for (const Slot& slot : value.slots()) {
            slots.push_back(slotOf(value.type(), slot));
        }
        if (slots.empty() && value.hasArray()) {
            slots.emplace_back();
        }
        mSlots.push_back(std::move(slots));
        std::vector<SlotRecord>& kept = mSlots.back();
        return Container{value.type(), value.count(), kept.empty() ? nullptr : kept.data()};
    }

    const char* nameText(const std::string& name) { return name == kNoName ? nullptr : text(name); }

    SlotRecord slotOf(std::int32_t type, const Slot& slot) {
        SlotRecord record = {};
        record.uint64 = slot.raw;
        if (type == OrvMoAttributeTypeStruct_3 && slot.members) {
            record.structValue = membersOf(*slot.members);
        } else if (slot.text) {
            record.string = text(*slot.text);
        }
        return record;
    }

    MemberRecord* membersOf(const Members& members) {
        MemberRecord* first = nullptr;
        MemberRecord* last = nullptr;
        for (const Member& each : members) {
            mMembers.push_back(
                {nameText(each.name), each.value ? container(*each.value) : nullptr, nullptr});
            (last == nullptr ? first : last->next) = &mMembers.back();
            last = &mMembers.back();
        }
        return first;
    }

    std::deque<std::string> mTexts;
    std::deque<Container> mContainers;
    std::deque<std::vector<SlotRecord>> mSlots;
    std::deque<MemberRecord> mMembers;
    std::deque<std::vector<Container*>> mArrays;
    std::deque<OrvMoNamedAttributeValueContainer_3> mNamed;
    std::deque<std::vector<OrvMoNamedAttributeValueContainer_3*>> mNamedArrays;
};

using Records = BasicRecords<RecordsOfVersion3>;
using Records1 = BasicRecords<RecordsOfVersion1>;

}

#endif
