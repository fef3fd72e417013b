// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_BENCH_VALUES_H
#define ORV_BENCH_VALUES_H

#include "OrvMoAttributeValue.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace OrvBench {

/// A value for the tables, with everything that it points at. Copies share it; nobody writes to it.
template <class Container, class Slot, class Member>
class TableValue {
public:
    static TableValue text(std::string value) {
        return ofTexts(OrvMoAttributeTypeString_3, {std::move(value)});
    }

    static TableValue references(std::vector<std::string> dns) {
        return ofTexts(OrvMoAttributeTypeMoRef_3, std::move(dns));
    }

    /// A struct of two members, each with one value.
    static TableValue structure(const char* firstName, const TableValue& first,
                                const char* secondName, const TableValue& second) {
        TableValue made;
        Parts& parts = *made.mParts;
        parts.nested = {first.mParts, second.mParts};
        parts.members = {{firstName, &first.mParts->container, nullptr},
                         {secondName, &second.mParts->container, nullptr}};
        parts.members[0].next = &parts.members[1];
        parts.slots.resize(1);
        parts.slots[0].structValue = parts.members.data();
        parts.container = {OrvMoAttributeTypeStruct_3, 1, parts.slots.data()};
        return made;
    }

    /// Some tables take it as const, others do not; nobody writes to it.
    Container* container() const { return &mParts->container; }

private:
    struct Parts {
        std::vector<std::string> texts;
        std::vector<Slot> slots;
        std::vector<Member> members;
        std::vector<std::shared_ptr<Parts>> nested;
        Container container{};
    };

    static TableValue ofTexts(OrvMoAttributeType_3 type, std::vector<std::string> texts) {
        TableValue made;
        Parts& parts = *made.mParts;
        parts.texts = std::move(texts);
        parts.slots.resize(parts.texts.size());
        for (std::size_t index = 0; index < parts.texts.size(); ++index) {
            parts.slots[index].string = parts.texts[index].c_str();
        }
        parts.container = {type, static_cast<std::uint32_t>(parts.slots.size()),
                           parts.slots.data()};
        return made;
    }

    std::shared_ptr<Parts> mParts = std::make_shared<Parts>();
};

using Value1 = TableValue<OrvMoAttributeValueContainer, OrvMoAttributeValue, OrvMoStructMember>;
using Value3 =
    TableValue<OrvMoAttributeValueContainer_3, OrvMoAttributeValue_3, OrvMoStructMember_3>;

/// A list of named attributes as versions 3 and 3_1 take it, with everything that it points at.
class NamedValues {
public:
    NamedValues& add(const char* name, const Value3& value) {
        mParts->values.push_back(value);
        mParts->records.push_back({name, *value.container()});
        mParts->list.back() = &mParts->records.back();
        mParts->list.push_back(nullptr);
        return *this;
    }

    OrvMoNamedAttributeValueContainer_3** list() const { return mParts->list.data(); }

private:
    struct Parts {
        std::vector<Value3> values;
        std::deque<OrvMoNamedAttributeValueContainer_3> records; ///< a deque keeps addresses
        std::vector<OrvMoNamedAttributeValueContainer_3*> list{nullptr};
    };

    std::shared_ptr<Parts> mParts = std::make_shared<Parts>();
};

}

#endif
