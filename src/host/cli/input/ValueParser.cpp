// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ValueParser.h"

#include "cli/errors/CliErrors.h"

#include <optional>
#include <utility>

namespace OrvHost {

namespace {

bool isTextual(ValueKind kind) {
    return kind == ValueKind::String || kind == ValueKind::Enumeration || kind == ValueKind::MoRef;
}

bool takesBrackets(const AttributeDef* def) {
    return def == nullptr || !isTextual(def->type.kind) || def->multiplicity.upper > 1;
}

JsonValue parseJson(const std::string& text) {
    try {
        return JsonValue::parse(text);
    } catch (const JsonSyntaxError& failure) {
        throw UsageError("'" + text + "' is no JSON (near character " +
                         std::to_string(failure.at()) +
                         "); mind that JSON needs single quotes around it");
    } catch (const JsonError& failure) { // what JSON permits, but is certainly a mistake
        throw UsageError(failure.what());
    }
}

JsonValue parseScalar(const std::string& text) {
    try {
        JsonValue json = JsonValue::parse(text);
        return json.isNumber() || json.isBool() ? std::move(json) : JsonValue(text);
    } catch (const JsonError&) {
        return text;
    }
}

StructValue toStruct(const JsonValue& json, const AttributeDef* def) {
    StructValue value;
    for (const auto& [name, member] : json.members()) {
        const AttributeDef* const known = def != nullptr ? def->type.findMember(name) : nullptr;
        value.members.emplace_back(name, toAttributeValue(member, known));
    }
    return value;
}

std::optional<Value> toNumber(const JsonValue& json, ValueKind kind) {
    if (kind == ValueKind::Double) {
        return Value(json.get<double>());
    }
    if (kind == ValueKind::Uint && json.isUnsigned()) {
        return Value(json.get<std::uint64_t>());
    }
    const bool fits =
        json.isInteger() && (!json.isUnsigned() || json.get<std::uint64_t>() <= INT64_MAX);
    if (kind == ValueKind::Int && fits) {
        return Value(json.get<std::int64_t>());
    }
    return std::nullopt;
}

// Returns nothing if the value is of another kind.
std::optional<Value> toValue(const JsonValue& json, ValueKind kind, const AttributeDef* def) {
    if (json.isBool() && kind == ValueKind::Bool) {
        return Value(json.get<bool>());
    }
    if (json.isText() && isTextual(kind)) {
        return Value(json.get<std::string>());
    }
    if (json.isObject() && kind == ValueKind::Struct) {
        return Value(toStruct(json, def));
    }
    return json.isNumber() ? toNumber(json, kind) : std::nullopt;
}

ValueKind ownKind(const JsonValue& json) {
    if (json.isBool()) {
        return ValueKind::Bool;
    }
    if (json.isDouble()) {
        return ValueKind::Double;
    }
    if (json.isNumber()) {
        return toNumber(json, ValueKind::Int) ? ValueKind::Int : ValueKind::Uint;
    }
    return json.isObject() ? ValueKind::Struct : ValueKind::String;
}

std::optional<AttributeValue> toValues(const JsonValue& list, ValueKind kind,
                                       const AttributeDef* def) {
    AttributeValue result{kind, {}};
    for (const JsonValue& json : list.elements()) {
        std::optional<Value> value = toValue(json, kind, def);
        if (!value) {
            return std::nullopt;
        }
        result.values.push_back(std::move(*value));
    }
    return result;
}

}

JsonValue parseValue(const std::string& text, const AttributeDef* def) {
    if (text == "null") {
        return nullptr;
    }
    const char first = text.empty() ? '\0' : text.front();
    if (first == '"' || ((first == '{' || first == '[') && takesBrackets(def))) {
        return parseJson(text);
    }
    return def != nullptr && isTextual(def->type.kind) ? JsonValue(text) : parseScalar(text);
}

AttributeValue toAttributeValue(const JsonValue& json, const AttributeDef* def) {
    const JsonValue list = json.isArray()  ? json
                           : json.isNull() ? JsonValue::array()
                                           : JsonValue::array({json});
    const ValueKind wanted = def != nullptr             ? def->type.kind
                             : !list.elements().empty() ? ownKind(list.elements().front())
                                                        : ValueKind::String;
    if (std::optional<AttributeValue> typed = toValues(list, wanted, def)) {
        return std::move(*typed);
    }
    if (std::optional<AttributeValue> own =
            toValues(list, ownKind(list.elements().front()), nullptr)) {
        return std::move(*own);
    }
    throw UsageError("the values in " + toLine(json) + " are of several types");
}

}
