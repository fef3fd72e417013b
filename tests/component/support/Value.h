// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_COMPONENT_SUPPORT_VALUE_H
#define ORV_TESTS_COMPONENT_SUPPORT_VALUE_H

#include "OrvMoAttributeValue.h"

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Scripted {

class Value;

/// Where a name stands: the null pointer in the record.
constexpr char kNoName[] = "(null)";

/// One member of a struct value. A null \p value stands for the null pointer in the record.
struct Member {
    std::string name;
    std::shared_ptr<const Value> value;
};

using Members = std::vector<Member>;

/// One slot of a value: a text (which may be the null pointer), a struct (which may be the null
/// pointer), or 8 opaque bytes. The type of the value decides which of them holds; bytes in the
/// place of a text or struct are a pointer that nobody may follow.
struct Slot {
    std::optional<std::string> text;
    std::shared_ptr<const Members> members;
    std::uint64_t raw = 0;
};

/// An attribute value as a test writes it down and reads it: a deep copy, with no pointers into any
/// record. Two values are equal if their records mean the same.
class Value {
public:
    Value(std::int32_t type, std::vector<Slot> slots);

    std::int32_t type() const { return mType; }
    std::uint32_t count() const { return mCount; }
    const std::vector<Slot>& slots() const { return mSlots; }
    bool hasArray() const { return mHasArray; }

    /// The same with another number in `count`, so that the record can lie about its array, which
    /// is the null pointer if there are no slots.
    Value counting(std::uint32_t count) const;

    /// The same with a `values` pointer that is not null although there is no slot.
    Value withArray() const;

    /// For example "MoRef['Parent=1', null]" or "Struct[{ref: MoRef['A=1']}]".
    std::string text() const;

    friend bool operator==(const Value& left, const Value& right);

private:
    std::int32_t mType;
    std::uint32_t mCount;
    bool mHasArray;
    std::vector<Slot> mSlots;
};

std::ostream& operator<<(std::ostream& out, const Value& value);

// Builders: one for each kind of value that the component tells apart, and `opaque` for the rest.
Value strings(const std::vector<std::string>& texts);
Value refs(const std::vector<std::string>& dns);
Value structs(const std::vector<Members>& values);
Value opaque(std::int32_t type, const std::vector<std::uint64_t>& slots);

/// A value of \p type without slots: `count` 0 and a null array.
Value none(std::int32_t type);

/// \p type with one slot whose text is the null pointer.
Value nullText(std::int32_t type);

/// \p value with one more slot that holds the null pointer, for values of structs.
Value andEmptyStruct(const Value& value);

Member member(std::string name, const Value& value);
/// A member whose `value` is the null pointer.
Member bareMember(std::string name);

/// Attributes with their names, in the order of the array that carries them.
using NamedValues = std::vector<std::pair<std::string, Value>>;
std::string textOf(const NamedValues& attributes);

/// `'text'`, or `null`.
std::string quoted(const char* text);

/// Reads a record of version 3, to a limited depth: what lies deeper is read as an empty value of
/// type 0. Null pointers are read as such wherever they stand, and no pointer is followed that is
/// too small to be one. \p container may be null, which gives nothing.
std::optional<Value> readValue(const OrvMoAttributeValueContainer_3* container);
/// The same for a record of version 1.
std::optional<Value> readValue(const OrvMoAttributeValueContainer* container);

/// Reads an array of named attributes, which may be null.
NamedValues readNamed(OrvMoNamedAttributeValueContainer_3* const* attributes);

}

#endif
