// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ChoiceCheck.h"

#include "base/Join.h"

#include <algorithm>

namespace OrvHost {

namespace {

using HasValue = std::function<bool(const std::string&)>;

/// The first of these that has a value; null if none has.
const std::string* firstOf(const std::vector<std::string>& names, const HasValue& hasValue) {
    const auto found = std::find_if(names.begin(), names.end(), hasValue);
    return found == names.end() ? nullptr : &*found;
}

std::string caseNames(const ChoiceDef& choice) {
    std::string text;
    for (const ChoiceCase& one : choice.cases) {
        text += (text.empty() ? "" : ", ") + one.name;
    }
    return text;
}

void checkCase(const ChoiceDef& choice, const ChoiceCase& taken, const HasValue& hasValue,
               std::vector<std::string>& wrong) {
    for (const std::string& name : taken.required) {
        if (!hasValue(name)) {
            wrong.push_back(joined({"the case '", taken.name, "' of the choice '", choice.name,
                                    "' requires '", name, "', which has no value"}));
        }
    }
}

void checkChoice(const ChoiceDef& choice, const HasValue& hasValue,
                 std::vector<std::string>& wrong) {
    const std::string* first = nullptr;
    for (const ChoiceCase& one : choice.cases) {
        const std::string* present = firstOf(one.attributes, hasValue);
        if (present == nullptr) {
            continue;
        }
        if (first != nullptr) {
            wrong.push_back(
                joined({"'", *first, "' and '", *present, "' are of two cases of the choice '",
                        choice.name, "', expected one case"}));
            return;
        }
        first = present;
        checkCase(choice, one, hasValue, wrong);
    }
    if (first == nullptr && choice.isMandatory) {
        wrong.push_back(joined({"the choice '", choice.name,
                                "' is mandatory and no case of it has a value, expected one of: ",
                                caseNames(choice)}));
    }
}

}

std::vector<std::string> wrongChoices(const std::vector<ChoiceDef>& choices,
                                      const HasValue& hasValue) {
    std::vector<std::string> wrong;
    for (const ChoiceDef& choice : choices) {
        if (choice.around.empty() || firstOf(choice.around, hasValue) != nullptr) {
            checkChoice(choice, hasValue, wrong);
        }
    }
    return wrong;
}

bool isDefaultInUse(const std::vector<ChoiceDef>& choices, const std::string& name,
                    const HasValue& hasValue) {
    const auto isTaken = [&](const ChoiceCase& one) {
        return firstOf(one.attributes, hasValue) != nullptr;
    };
    const auto isOf = [&](const ChoiceCase& one) {
        return std::find(one.attributes.begin(), one.attributes.end(), name) !=
               one.attributes.end();
    };
    return std::all_of(choices.begin(), choices.end(), [&](const ChoiceDef& choice) {
        const auto own = std::find_if(choice.cases.begin(), choice.cases.end(), isOf);
        return own == choice.cases.end() || isTaken(*own) ||
               (own->isDefault && std::none_of(choice.cases.begin(), choice.cases.end(), isTaken));
    });
}

bool isPresent(const TypeDef& type, const AttributeValue& value) {
    const auto isAbsent = [&](const Value& one) {
        const bool* flag = std::get_if<bool>(&one);
        return type.isFalseAbsent && flag != nullptr && !*flag;
    };
    return !std::all_of(value.values.begin(), value.values.end(), isAbsent);
}

}
