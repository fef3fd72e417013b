// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Value.h"

#include <algorithm>
#include <ostream>
#include <sstream>

namespace Scripted {

namespace {

constexpr int kReadDepth = 40;
constexpr std::uint64_t kFirstPage = 4096; ///< nothing lies there

bool holdsText(std::int32_t type) {
    return type == OrvMoAttributeTypeString_3 || type == OrvMoAttributeTypeMoRef_3 ||
           type == OrvMoAttributeTypeEnumeration_3;
}

std::string typeName(std::int32_t type) {
    switch (type) {
    case OrvMoAttributeTypeString_3:
        return "String";
    case OrvMoAttributeTypeMoRef_3:
        return "MoRef";
    case OrvMoAttributeTypeStruct_3:
        return "Struct";
    default:
        return "Type" + std::to_string(type);
    }
}

std::string membersText(const Members& members) {
    std::string text = "{";
    for (const Member& each : members) {
        text += text.size() > 1 ? ", " : "";
        text += each.name + ": " + (each.value ? each.value->text() : "null");
    }
    return text + "}";
}

std::string slotText(std::int32_t type, const Slot& slot) {
    if (slot.raw != 0) {
        return std::to_string(slot.raw);
    }
    if (holdsText(type)) {
        return quoted(slot.text ? slot.text->c_str() : nullptr);
    }
    if (type == OrvMoAttributeTypeStruct_3) {
        return slot.members ? membersText(*slot.members) : "null";
    }
    return std::to_string(slot.raw);
}

bool sameMembers(const Members& left, const Members& right) {
    if (left.size() != right.size()) {
        return false;
    }
    for (std::size_t i = 0; i < left.size(); ++i) {
        const bool bothThere = left[i].value && right[i].value;
        if (left[i].name != right[i].name ||
            (bothThere ? !(*left[i].value == *right[i].value) : left[i].value != right[i].value)) {
            return false;
        }
    }
    return true;
}

bool sameSlot(const Slot& left, const Slot& right) {
    const bool bothStructs = left.members && right.members;
    return left.text == right.text && left.raw == right.raw &&
           (bothStructs ? sameMembers(*left.members, *right.members)
                        : left.members == right.members);
}

Slot textSlot(const std::string& text) {
    Slot slot;
    slot.text = text;
    return slot;
}

std::vector<Slot> textSlots(const std::vector<std::string>& texts) {
    std::vector<Slot> slots;
    slots.reserve(texts.size());
    for (const std::string& text : texts) {
        slots.push_back(textSlot(text));
    }
    return slots;
}

template <class Container>
Value read(const Container& container, int depth);

template <class StructMember>
std::shared_ptr<const Members> readMembers(const StructMember* first, int depth) {
    if (first == nullptr) {
        return nullptr;
    }
    auto members = std::make_shared<Members>();
    for (const StructMember* each = first; each != nullptr; each = each->next) {
        members->push_back(bareMember(each->name != nullptr ? each->name : kNoName));
        if (each->value != nullptr) {
            members->back().value = std::make_shared<Value>(read(*each->value, depth + 1));
        }
    }
    return members;
}

template <class Container>
Slot readSlot(const Container& container, std::uint32_t index, int depth) {
    const auto& record = container.values[index];
    Slot slot;
    if (record.uint64 < kFirstPage) {
        slot.raw = record.uint64;
    } else if (holdsText(container.type)) {
        slot.text = record.string;
    } else if (container.type == OrvMoAttributeTypeStruct_3) {
        slot.members = readMembers(record.structValue, depth);
    } else {
        slot.raw = record.uint64;
    }
    return slot;
}

template <class Container>
Value read(const Container& container, int depth) {
    if (depth > kReadDepth) {
        return none(0);
    }
    std::vector<Slot> slots;
    for (std::uint32_t i = 0; container.values != nullptr && i < container.count; ++i) {
        slots.push_back(readSlot(container, i, depth));
    }
    return Value(container.type, std::move(slots)).counting(container.count);
}

}

Value::Value(std::int32_t type, std::vector<Slot> slots)
    : mType(type),
      mCount(static_cast<std::uint32_t>(slots.size())),
      mHasArray(!slots.empty()),
      mSlots(std::move(slots)) {}

Value Value::counting(std::uint32_t count) const {
    Value copy = *this;
    copy.mCount = count;
    return copy;
}

Value Value::withArray() const {
    Value copy = *this;
    copy.mHasArray = true;
    return copy;
}

std::string Value::text() const {
    std::ostringstream out;
    out << typeName(mType) << '[';
    for (std::size_t i = 0; i < mSlots.size(); ++i) {
        out << (i > 0 ? ", " : "") << slotText(mType, mSlots[i]);
    }
    if (mSlots.empty() && mCount != 0) {
        out << mCount << " without an array";
    }
    out << ']';
    return out.str();
}

bool operator==(const Value& left, const Value& right) {
    if (left.mType != right.mType || left.mCount != right.mCount) {
        return false;
    }
    const std::size_t held = std::min<std::size_t>(left.mCount, left.mSlots.size());
    if (held != std::min<std::size_t>(right.mCount, right.mSlots.size())) {
        return false;
    }
    for (std::size_t i = 0; i < held; ++i) {
        if (!sameSlot(left.mSlots[i], right.mSlots[i])) {
            return false;
        }
    }
    return true;
}

std::ostream& operator<<(std::ostream& out, const Value& value) {
    return out << value.text();
}

Value strings(const std::vector<std::string>& texts) {
    return Value(OrvMoAttributeTypeString_3, textSlots(texts));
}

Value refs(const std::vector<std::string>& dns) {
    return Value(OrvMoAttributeTypeMoRef_3, textSlots(dns));
}

Value structs(const std::vector<Members>& values) {
    std::vector<Slot> slots(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        slots[i].members = std::make_shared<Members>(values[i]);
    }
    return Value(OrvMoAttributeTypeStruct_3, std::move(slots));
}

Value opaque(std::int32_t type, const std::vector<std::uint64_t>& slots) {
    std::vector<Slot> made(slots.size());
    for (std::size_t i = 0; i < slots.size(); ++i) {
        made[i].raw = slots[i];
    }
    return Value(type, std::move(made));
}

Value none(std::int32_t type) {
    return Value(type, {});
}

Value nullText(std::int32_t type) {
    return Value(type, std::vector<Slot>(1));
}

Value andEmptyStruct(const Value& value) {
    std::vector<Slot> slots = value.slots();
    slots.emplace_back();
    return Value(value.type(), std::move(slots));
}

Member member(std::string name, const Value& value) {
    return Member{std::move(name), std::make_shared<Value>(value)};
}

Member bareMember(std::string name) {
    return Member{std::move(name), nullptr};
}

std::string textOf(const NamedValues& attributes) {
    std::string text = "{";
    for (const auto& [name, value] : attributes) {
        text += text.size() > 1 ? ", " : "";
        text += name + ": " + value.text();
    }
    return text + "}";
}

std::string quoted(const char* text) {
    return text == nullptr ? "null" : "'" + std::string(text) + "'";
}

std::optional<Value> readValue(const OrvMoAttributeValueContainer_3* container) {
    return container == nullptr ? std::nullopt : std::optional<Value>(read(*container, 0));
}

std::optional<Value> readValue(const OrvMoAttributeValueContainer* container) {
    return container == nullptr ? std::nullopt : std::optional<Value>(read(*container, 0));
}

NamedValues readNamed(OrvMoNamedAttributeValueContainer_3* const* attributes) {
    NamedValues read;
    for (; attributes != nullptr && *attributes != nullptr; ++attributes) {
        const char* const name = (*attributes)->name;
        read.emplace_back(name != nullptr ? name : kNoName, *readValue(&(*attributes)->value));
    }
    return read;
}

}
