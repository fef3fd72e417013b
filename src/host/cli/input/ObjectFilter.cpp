// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ObjectFilter.h"

#include "cli/errors/CliErrors.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include <fnmatch.h>

namespace OrvHost {

namespace {

bool isLike(const std::string& text, const std::string& pattern) {
    return fnmatch(pattern.c_str(), text.c_str(), FNM_NOESCAPE) == 0;
}

std::optional<double> numberIn(const std::string& text) {
    double number = 0;
    const char* end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, number);
    return parsed.ec == std::errc() && parsed.ptr == end ? std::optional(number) : std::nullopt;
}

/// Below 0, 0 or above 0, as `left` is less, equal or more.
int compare(const std::string& left, const std::string& right) {
    const auto leftNumber = numberIn(left);
    const auto rightNumber = numberIn(right);
    if (leftNumber && rightNumber) {
        return *leftNumber < *rightNumber ? -1 : (*leftNumber > *rightNumber ? 1 : 0);
    }
    return left.compare(right);
}

[[noreturn]] void refuseOperator(const std::string& word) {
    throw UsageError("'" + word + "' does not compare; =, !=, <, <=, > or >= was expected");
}

bool isNumeric(ValueKind kind) {
    return kind == ValueKind::Int || kind == ValueKind::Uint || kind == ValueKind::Double;
}

std::string withoutBlanks(const std::string& text) {
    const std::size_t first = text.find_first_not_of(' ');
    return first == std::string::npos ? std::string()
                                      : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

}

ObjectFilter::ObjectFilter(const Model& model, const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : " ") + word;
    }
    const std::size_t at = text.find_first_of("=!<>");
    const std::string path = withoutBlanks(text.substr(0, at));
    if (const std::size_t blank = path.find(' '); blank != std::string::npos) {
        const std::size_t word = path.find_first_not_of(' ', blank);
        refuseOperator(path.substr(word, path.find(' ', word) - word));
    }
    split(model, path);
    if (at == std::string::npos) {
        if (!mAttribute.empty()) {
            throw UsageError("a condition on " + mAttribute + " is missing, such as =VALUE");
        }
        return;
    }
    const std::size_t end = std::min(text.find_first_not_of("=!<>", at), text.size());
    mOperator = text.substr(at, end - at);
    mValue = withoutBlanks(text.substr(end));
    const std::vector<std::string> known{"=", "!=", "<", "<=", ">", ">="};
    if (std::find(known.begin(), known.end(), mOperator) == known.end()) {
        refuseOperator(mOperator);
    }
    if (mAttribute.empty()) {
        throw UsageError("CLASS.ATTRIBUTE is missing before " + mOperator);
    }
}

// Names of classes can have dots, so the first part that fits a class is the class.
void ObjectFilter::split(const Model& model, const std::string& path) {
    if (path.empty()) {
        throw UsageError("the CLASS is missing");
    }
    mClass = path;
    for (std::size_t dot = path.find('.'); dot != std::string::npos;
         dot = path.find('.', dot + 1)) {
        const std::string name = path.substr(0, dot);
        const bool isClass =
            std::any_of(model.classes.begin(), model.classes.end(),
                        [&](const ClassDef& moc) { return isLike(moc.name, name); });
        if (isClass) {
            const std::string rest = path.substr(dot + 1);
            const std::size_t inner = std::min(rest.find('.'), rest.size());
            mClass = name;
            mAttribute = rest.substr(0, inner);
            mMembers = rest.substr(std::min(inner + 1, rest.size()));
            return;
        }
    }
}

bool ObjectFilter::matchesClass(const ClassDef& moc) const {
    return isLike(moc.name, mClass);
}

bool ObjectFilter::canMatch(const ClassDef& moc) const {
    return matchesClass(moc) && (mAttribute.empty() || moc.findAttribute(mAttribute) != nullptr);
}

bool ObjectFilter::canCompare(const ClassDef& moc) const {
    const AttributeDef* const def = moc.findAttribute(mAttribute);
    const bool isOrder = !mOperator.empty() && mOperator.find_first_of("<>") == 0;
    return def == nullptr || !isOrder || !isNumeric(def->type.kind) || numberIn(mValue);
}

bool ObjectFilter::matches(const ObjectState& object) const {
    if (!canMatch(*object.moc)) {
        return false;
    }
    if (mAttribute.empty()) {
        return true;
    }
    const AttributeDef* def = object.moc->findAttribute(mAttribute);
    const auto at = static_cast<std::size_t>(def - object.moc->attributes.data());
    return fitsAny(object.values.at(at), mMembers) != (mOperator == "!=");
}

// For != this is the question whether one is equal.
bool ObjectFilter::fitsAny(const AttributeValue& value, const std::string& members) const {
    return std::any_of(value.values.begin(), value.values.end(), [&](const Value& one) {
        if (members.empty()) {
            return fits(one);
        }
        const std::size_t dot = std::min(members.find('.'), members.size());
        const auto* whole = std::get_if<StructValue>(&one);
        const AttributeValue* inner =
            whole != nullptr ? whole->find(members.substr(0, dot)) : nullptr;
        return inner != nullptr &&
               fitsAny(*inner, members.substr(std::min(dot + 1, members.size())));
    });
}

bool ObjectFilter::fits(const Value& value) const {
    const std::string text = toText(value);
    if (mOperator == "=" || mOperator == "!=") {
        return isLike(text, mValue) || compare(text, mValue) == 0;
    }
    const int order = compare(text, mValue);
    return mOperator.front() == '<' ? order < 0 || (mOperator == "<=" && order == 0)
                                    : order > 0 || (mOperator == ">=" && order == 0);
}

bool isDnWord(const std::string& word) {
    const std::string step = word.substr(0, word.find(','));
    const std::size_t equals = step.find('=');
    const bool hasOperator = step.find_first_of("!<>") < equals;
    return word == "." || word.compare(0, 2, "..") == 0 || word.compare(0, 1, "/") == 0 ||
           (equals != std::string::npos && !hasOperator && step.find('.') > equals);
}

}
