// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_MODEL_VALUE_H
#define ORV_HOST_MODEL_VALUE_H

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace OrvHost {

/// The kind of an attribute's values.
enum class ValueKind : std::uint8_t { Bool, Int, Uint, Double, Enumeration, String, MoRef, Struct };

struct AttributeValue;

/// A struct value: its members in order.
///
/// The value of a member may be a struct again, so AttributeValue is still incomplete here. For
/// that reason the special member functions are defined in the source file.
struct StructValue {
    using Members = std::vector<std::pair<std::string, AttributeValue>>;

    StructValue();
    explicit StructValue(Members values);
    StructValue(const StructValue& other);
    StructValue(StructValue&& other) noexcept;
    StructValue& operator=(const StructValue& other);
    StructValue& operator=(StructValue&& other) noexcept;
    ~StructValue();

    /// Null if there is no member of that name.
    const AttributeValue* find(std::string_view name) const;

    Members members;
};

/// One value, independent of any table record. Enumerations, texts and references (internal DNs)
/// are std::string.
using Value = std::variant<bool, std::int64_t, std::uint64_t, double, std::string, StructValue>;

/// The value of one attribute: all its values have the same kind.
struct AttributeValue {
    ValueKind kind = ValueKind::String;
    std::vector<Value> values;
};

bool operator==(const StructValue& left, const StructValue& right);
bool operator==(const AttributeValue& left, const AttributeValue& right);

/// True if `value` holds the alternative that values of `kind` use.
bool isOfKind(const Value& value, ValueKind kind);

/// The kind in words for messages: "text", "reference", "whole number"...
std::string_view kindName(ValueKind kind);

/// One value as a person writes it: "true", "-5", "0.25", the text itself; a struct as
/// "{name=value, list=[1, 2]}". TypeDef::check gets values in this form.
std::string toText(const Value& value);

/// An attribute with its name.
using NamedValue = std::pair<std::string, AttributeValue>;

}

#endif
