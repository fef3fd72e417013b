// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Value.h"

#include <array>
#include <charconv>

namespace OrvHost {

namespace {

std::string numberText(double number) {
    std::array<char, 32> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number).ptr;
    return {buffer.data(), end};
}

std::string valuesText(const std::vector<Value>& values) {
    if (values.size() == 1) {
        return toText(values.front());
    }
    std::string text = "[";
    for (const Value& value : values) {
        text += (text.size() > 1 ? ", " : "") + toText(value);
    }
    return text + "]";
}

std::string structText(const StructValue& value) {
    std::string text = "{";
    for (const auto& member : value.members) {
        text += (text.size() > 1 ? ", " : "") + member.first + "=";
        text += valuesText(member.second.values);
    }
    return text + "}";
}

/// Writes each alternative of Value as text.
struct TextWriter {
    std::string operator()(bool flag) const { return flag ? "true" : "false"; }
    std::string operator()(std::int64_t number) const { return std::to_string(number); }
    std::string operator()(std::uint64_t number) const { return std::to_string(number); }
    std::string operator()(double number) const { return numberText(number); }
    std::string operator()(const std::string& text) const { return text; }
    std::string operator()(const StructValue& value) const { return structText(value); }
};

}

StructValue::StructValue() = default;
StructValue::StructValue(Members values) : members(std::move(values)) {}
StructValue::StructValue(const StructValue& other) = default;
StructValue::StructValue(StructValue&& other) noexcept = default;
StructValue& StructValue::operator=(const StructValue& other) = default;
StructValue& StructValue::operator=(StructValue&& other) noexcept = default;
StructValue::~StructValue() = default;

const AttributeValue* StructValue::find(std::string_view name) const {
    for (const auto& [member, value] : members) {
        if (member == name) {
            return &value;
        }
    }
    return nullptr;
}

bool operator==(const StructValue& left, const StructValue& right) {
    return left.members == right.members;
}

bool operator==(const AttributeValue& left, const AttributeValue& right) {
    return left.kind == right.kind && left.values == right.values;
}

bool isOfKind(const Value& value, ValueKind kind) {
    switch (kind) {
    case ValueKind::Bool:
        return std::holds_alternative<bool>(value);
    case ValueKind::Int:
        return std::holds_alternative<std::int64_t>(value);
    case ValueKind::Uint:
        return std::holds_alternative<std::uint64_t>(value);
    case ValueKind::Double:
        return std::holds_alternative<double>(value);
    case ValueKind::Enumeration:
    case ValueKind::String:
    case ValueKind::MoRef:
        return std::holds_alternative<std::string>(value);
    case ValueKind::Struct:
        return std::holds_alternative<StructValue>(value);
    }
    return false;
}

std::string_view kindName(ValueKind kind) {
    switch (kind) {
    case ValueKind::Bool:
        return "truth value";
    case ValueKind::Int:
        return "whole number";
    case ValueKind::Uint:
        return "whole number without sign";
    case ValueKind::Double:
        return "decimal number";
    case ValueKind::Enumeration:
        return "enumeration";
    case ValueKind::String:
        return "text";
    case ValueKind::MoRef:
        return "reference";
    case ValueKind::Struct:
        return "struct";
    }
    return "value of an unknown kind";
}

std::string toText(const Value& value) {
    return std::visit(TextWriter(), value);
}

}
