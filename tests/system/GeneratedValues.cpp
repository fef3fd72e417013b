// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "GeneratedValues.h"

#include "DnUtil.h"
#include "model/KeyValues.h"
#include "model/ValueCheck.h"

#include <algorithm>

namespace SystemTest {

using namespace OrvHost;

namespace {

/// Texts of the forms that patterns in models ask for.
constexpr const char* kTexts[] = {"1",
                                  "2",
                                  "3",
                                  "a",
                                  "b",
                                  "c",
                                  "name",
                                  "10.0.0.1",
                                  "10.0.0.2",
                                  "2001:db8::1",
                                  "2001:db8::2",
                                  "10.0.0.0/8",
                                  "2001:db8::/32",
                                  "host.example.com",
                                  "http://host.example.com/a",
                                  "urn:a:b",
                                  "00:11:22:33:44:55",
                                  "2026-01-02T03:04:05Z",
                                  "2026-01-02T03:04:05+00:00",
                                  "2026-01-02",
                                  "03:04:05",
                                  "03:04:05Z",
                                  "0a",
                                  "0A1B",
                                  "000001",
                                  "A1B2C3",
                                  "^A1B2C3$", // in YANG, "^" and "$" stand for themselves
                                  "001",
                                  "01",
                                  "123",
                                  "1234",
                                  "12345",
                                  "123456",
                                  "0a1b2c3d",
                                  "0123456789abcdef",
                                  "0123456789abcdef0123456789abcdef",
                                  "123e4567-e89b-12d3-a456-426614174000",
                                  "1.5",
                                  "1-2",
                                  "001-01",
                                  "a@example.com",
                                  "true",
                                  "AQID",
                                  "/a",
                                  "/_3gpp-common-managed-element:ManagedElement[id='1']",
                                  "BAROMETRIC_PRESSURE"};

Value textValue(const char* text) {
    return {std::string(text)};
}

std::vector<Value> numbers(ValueKind kind) {
    std::vector<Value> all;
    for (const std::int64_t number :
         {1,   2,   3,   0,    5,    8,    10,   15,   16,    20,    30,    32,    40,
          50,  60,  64,  100,  120,  128,  160,  200,  256,   300,   320,   480,   500,
          512, 640, 900, 1000, 1024, 1280, 2000, 3600, 10000, 40000, 65535, 100000}) {
        if (kind == ValueKind::Int) {
            all.emplace_back(number);
            all.emplace_back(-number);
        } else if (kind == ValueKind::Uint) {
            all.emplace_back(static_cast<std::uint64_t>(number));
        } else {
            all.emplace_back(static_cast<double>(number));
            all.emplace_back(static_cast<double>(number) / 10);
        }
    }
    return all;
}

}

std::set<std::string> GeneratedValues::leftOut(const std::vector<ChoiceDef>& choices) {
    std::set<std::string> names;
    for (const ChoiceDef& choice : choices) {
        for (std::size_t at = 1; at < choice.cases.size(); ++at) {
            names.insert(choice.cases[at].attributes.begin(), choice.cases[at].attributes.end());
        }
    }
    return names;
}

std::vector<Value> GeneratedValues::candidates(const TypeDef& type) const {
    std::vector<Value> all;
    switch (type.kind) {
    case ValueKind::Bool:
        return {Value(true), Value(false)};
    case ValueKind::Int:
    case ValueKind::Uint:
    case ValueKind::Double:
        return numbers(type.kind);
    case ValueKind::Enumeration:
        for (const std::string& name : type.enumerators) {
            all.emplace_back(name);
        }
        return all;
    case ValueKind::MoRef:
        for (const ClassIndex target : type.targets) {
            all.emplace_back(mModel.classes[target].name + "=1");
        }
        return all.empty() ? std::vector<Value>{Value(mReference)} : all;
    case ValueKind::Struct:
        if (auto value = structure(type)) {
            all.push_back(std::move(*value));
        }
        return all;
    case ValueKind::String:
        std::transform(std::begin(kTexts), std::end(kTexts), std::back_inserter(all), textValue);
        return all;
    }
    return all;
}

std::optional<Value> GeneratedValues::structure(const TypeDef& type) const {
    const std::set<std::string> left = leftOut(type.choices);
    StructValue value;
    for (const AttributeDef& member : type.members) {
        if (left.count(member.name) > 0) {
            continue;
        }
        if (auto given = valueOf(member)) {
            value.members.emplace_back(member.name, std::move(*given));
        } else if (member.isRequired()) {
            return std::nullopt;
        }
    }
    return value;
}

std::optional<AttributeValue> GeneratedValues::valueOf(const AttributeDef& def) const {
    AttributeValue value{def.type.kind, {}};
    const auto count = static_cast<std::size_t>(std::max<std::int64_t>(1, def.multiplicity.lower));
    for (const Value& candidate : candidates(def.type)) {
        if (value.values.size() < count && whyRefused(def.type, candidate).empty()) {
            value.values.push_back(candidate);
        }
    }
    return value.values.size() == count ? std::optional(std::move(value)) : std::nullopt;
}

std::optional<std::string> GeneratedValues::nameOf(const ClassDef& moc) const {
    std::vector<std::string> keys;
    for (const AttributeDef& def : moc.attributes) {
        if (def.keyPosition) {
            const auto value = valueOf(def);
            if (!value) {
                return std::nullopt;
            }
            keys.resize(std::max(keys.size(), *def.keyPosition + 1));
            keys[*def.keyPosition] = std::get<std::string>(value->values.front());
        }
    }
    if (!keys.empty()) {
        return joinKeys(keys);
    }
    const auto value = valueOf(*moc.findAttribute(moc.namingAttribute));
    if (!value) {
        return std::nullopt;
    }
    return std::get<std::string>(value->values.front());
}

}
