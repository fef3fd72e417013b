// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ValueCheck.h"

#include "base/Join.h"
#include "model/ChoiceCheck.h"

#include <algorithm>

namespace OrvHost {

namespace {

std::string whyWrongEnumerator(const TypeDef& type, const std::string& name) {
    const auto& known = type.enumerators;
    if (std::find(known.begin(), known.end(), name) != known.end()) {
        return {};
    }
    // Published lists of identities have hundreds.
    constexpr std::size_t most = 20;
    std::string expected;
    for (std::size_t i = 0; i < std::min(most, known.size()); ++i) {
        expected += (i == 0 ? "" : ", ") + known[i];
    }
    if (known.size() > most) {
        expected += " and " + std::to_string(known.size() - most) + " more";
    }
    return joined({"\"", name, "\" is none of the permitted names: ", expected});
}

std::size_t countOf(const StructValue& value, const std::string& name) {
    return static_cast<std::size_t>(
        std::count_if(value.members.begin(), value.members.end(),
                      [&](const NamedValue& member) { return member.first == name; }));
}

std::string whyWrongMember(const TypeDef& type, const StructValue& whole,
                           const NamedValue& member) {
    const AttributeDef* def = type.findMember(member.first);
    if (!def) {
        return joined({"the struct has no member \"", member.first, "\""});
    }
    if (countOf(whole, member.first) > 1) {
        return joined({"the member \"", member.first, "\" is there more than once"});
    }
    const std::string reason = whyRefused(*def, member.second);
    return reason.empty() ? reason : joined({"member \"", member.first, "\": ", reason});
}

std::string whyMissing(const AttributeDef& member, const StructValue& value) {
    if (!member.isRequired() || countOf(value, member.name) > 0) {
        return {};
    }
    return joined({"the member \"", member.name, "\" is missing"});
}

std::string whyWrongStruct(const TypeDef& type, const StructValue& value) {
    for (const NamedValue& member : value.members) {
        std::string reason = whyWrongMember(type, value, member);
        if (!reason.empty()) {
            return reason;
        }
    }
    for (const AttributeDef& member : type.members) {
        std::string reason = whyMissing(member, value);
        if (!reason.empty()) {
            return reason;
        }
    }
    const auto hasValue = [&](const std::string& name) {
        return std::any_of(value.members.begin(), value.members.end(),
                           [&](const NamedValue& member) {
                               return member.first == name &&
                                      isPresent(type.findMember(name)->type, member.second);
                           });
    };
    const std::vector<std::string> wrong = wrongChoices(type.choices, hasValue);
    return wrong.empty() ? std::string() : wrong.front();
}

std::string whyWrongCount(const AttributeDef& def, std::size_t size) {
    const Bounds& bounds = def.multiplicity;
    if (bounds.contain(size) || (size == 0 && def.isConditional)) {
        return {};
    }
    return joined(
        {std::to_string(size), size == 1 ? " value" : " values", ", expected ", toText(bounds)});
}

}

std::string whyRefused(const TypeDef& type, const Value& value) {
    if (!isOfKind(value, type.kind)) {
        return joined({"\"", toText(value), "\" is not a ", kindName(type.kind)});
    }
    if (type.kind == ValueKind::Struct) {
        return whyWrongStruct(type, std::get<StructValue>(value));
    }
    if (type.kind == ValueKind::Enumeration) {
        std::string reason = whyWrongEnumerator(type, std::get<std::string>(value));
        if (!reason.empty()) {
            return reason;
        }
    }
    return type.check ? type.check(toText(value)) : std::string();
}

std::string whyRefused(const AttributeDef& def, const AttributeValue& value) {
    if (value.kind != def.type.kind) {
        return joined(
            {"the value is a ", kindName(value.kind), ", expected a ", kindName(def.type.kind)});
    }
    std::string reason = whyWrongCount(def, value.values.size());
    for (auto next = value.values.begin(); reason.empty() && next != value.values.end(); ++next) {
        reason = whyRefused(def.type, *next);
    }
    return reason;
}

}
