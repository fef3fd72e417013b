// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Assignments.h"

#include "ValueParser.h"
#include "cli/errors/CliErrors.h"

namespace OrvHost {

namespace {

// A second value turns the first one into a list.
void add(JsonValue& all, const std::string& name, const JsonValue& value) {
    if (all.find(name) == nullptr) {
        all[name] = value;
        return;
    }
    JsonValue& list = all[name];
    if (!list.isArray()) {
        list = JsonValue::array({list});
    }
    if (!value.isArray()) {
        list.add(value);
    }
    for (const JsonValue& element : value.elements()) {
        list.add(element);
    }
}

void addAll(JsonValue& all, const std::string& text) {
    const JsonValue object = parseValue(text, nullptr);
    for (const auto& [name, value] : object.members()) {
        add(all, name, value);
    }
}

}

std::vector<NamedValue> parseAssignments(const std::vector<std::string>& words,
                                         const FindDefinition& find) {
    JsonValue all = JsonValue::object();
    for (const std::string& word : words) {
        const std::size_t equals = word.find('=');
        if (!word.empty() && word.front() == '{') {
            addAll(all, word);
        } else if (equals == std::string::npos || equals == 0) {
            throw UsageError("'" + word + "' is not NAME=VALUE");
        } else {
            const std::string name = word.substr(0, equals);
            add(all, name, parseValue(word.substr(equals + 1), find(name)));
        }
    }
    std::vector<NamedValue> values;
    for (const auto& [name, value] : all.members()) {
        values.emplace_back(name, toAttributeValue(value, find(name)));
    }
    return values;
}

}
