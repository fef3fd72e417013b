// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ValueParser.h"

#include "cli/errors/CliErrors.h"

#include <optional>
#include <set>

namespace OrvHost {

namespace {

bool isTextual(ValueKind kind) {
    return kind == ValueKind::String || kind == ValueKind::Enumeration || kind == ValueKind::MoRef;
}

bool takesBrackets(const AttributeDef* def) {
    return def == nullptr || !isTextual(def->type.kind) || def->multiplicity.upper > 1;
}

// Deeper than any struct of a model, but not so deep that a recursive walk over the value could use
// up the stack.
constexpr int kDeepest = 256;

/// Checks JSON while it is parsed, for what JSON permits but is certainly a mistake.
class JsonGuard {
public:
    bool look(int depth, JsonValue::parse_event_t event, const JsonValue& parsed) {
        if (event == JsonValue::parse_event_t::object_start) {
            mNames.emplace_back();
        } else if (event == JsonValue::parse_event_t::object_end) {
            mNames.pop_back();
        } else if (event == JsonValue::parse_event_t::key) {
            enter(parsed.get<std::string>());
        }
        if (depth > kDeepest) {
            throw UsageError("the JSON is nested deeper than " + std::to_string(kDeepest) +
                             " levels");
        }
        return true;
    }

private:
    // The parser would keep the second of two values and drop the first one silently.
    void enter(const std::string& name) {
        if (!mNames.back().insert(name).second) {
            throw UsageError("\"" + name + "\" stands twice in one JSON object");
        }
    }

    std::vector<std::set<std::string>> mNames; ///< those of each open object, the outermost first
};

JsonValue parseJson(const std::string& text) {
    JsonGuard guard;
    try {
        return JsonValue::parse(
            text, [&](int depth, JsonValue::parse_event_t event, const JsonValue& parsed) {
                return guard.look(depth, event, parsed);
            });
    } catch (const JsonValue::parse_error& failure) {
        throw UsageError("'" + text + "' is no JSON (near character " +
                         std::to_string(failure.byte) +
                         "); mind that JSON needs single quotes around it");
    }
}

JsonValue parseScalar(const std::string& text) {
    const JsonValue json = JsonValue::parse(text, nullptr, false);
    return json.is_number() || json.is_boolean() ? json : JsonValue(text);
}

StructValue toStruct(const JsonValue& json, const AttributeDef* def) {
    StructValue value;
    for (const auto& member : json.items()) {
        const AttributeDef* const known =
            def != nullptr ? def->type.findMember(member.key()) : nullptr;
        value.members.emplace_back(member.key(), toAttributeValue(member.value(), known));
    }
    return value;
}

std::optional<Value> toNumber(const JsonValue& json, ValueKind kind) {
    if (kind == ValueKind::Double) {
        return Value(json.get<double>());
    }
    if (kind == ValueKind::Uint && json.is_number_unsigned()) {
        return Value(json.get<std::uint64_t>());
    }
    const bool fits = json.is_number_integer() &&
                      (!json.is_number_unsigned() || json.get<std::uint64_t>() <= INT64_MAX);
    if (kind == ValueKind::Int && fits) {
        return Value(json.get<std::int64_t>());
    }
    return std::nullopt;
}

// Returns nothing if the value is of another kind.
std::optional<Value> toValue(const JsonValue& json, ValueKind kind, const AttributeDef* def) {
    if (json.is_boolean() && kind == ValueKind::Bool) {
        return Value(json.get<bool>());
    }
    if (json.is_string() && isTextual(kind)) {
        return Value(json.get<std::string>());
    }
    if (json.is_object() && kind == ValueKind::Struct) {
        return Value(toStruct(json, def));
    }
    return json.is_number() ? toNumber(json, kind) : std::nullopt;
}

ValueKind ownKind(const JsonValue& json) {
    if (json.is_boolean()) {
        return ValueKind::Bool;
    }
    if (json.is_number_float()) {
        return ValueKind::Double;
    }
    if (json.is_number()) {
        return toNumber(json, ValueKind::Int) ? ValueKind::Int : ValueKind::Uint;
    }
    return json.is_object() ? ValueKind::Struct : ValueKind::String;
}

std::optional<AttributeValue> toValues(const JsonValue& list, ValueKind kind,
                                       const AttributeDef* def) {
    AttributeValue result{kind, {}};
    for (const JsonValue& json : list) {
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
    const JsonValue list = json.is_array()  ? json
                           : json.is_null() ? JsonValue::array()
                                            : JsonValue::array({json});
    const ValueKind wanted = def != nullptr  ? def->type.kind
                             : !list.empty() ? ownKind(list.front())
                                             : ValueKind::String;
    if (std::optional<AttributeValue> typed = toValues(list, wanted, def)) {
        return std::move(*typed);
    }
    if (std::optional<AttributeValue> own = toValues(list, ownKind(list.front()), nullptr)) {
        return std::move(*own);
    }
    throw UsageError("the values in " + toLine(json) + " are of several types");
}

}
