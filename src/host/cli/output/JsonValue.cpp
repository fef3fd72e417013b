// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "JsonValue.h"

#include "base/JsonText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <set>

namespace OrvHost {

namespace {

bool isMember(const JsonItem& item) {
    const JsonValue::Elements& pair = item.value().elements();
    return pair.size() == 2 && pair.front().isText();
}

void write(std::string& line, const JsonValue& value);

void write(std::string& line, const JsonValue::Elements& elements) {
    line += '[';
    for (const JsonValue& element : elements) {
        line += &element == &elements.front() ? "" : ",";
        write(line, element);
    }
    line += ']';
}

void write(std::string& line, const JsonValue::Members& members) {
    line += '{';
    for (const JsonValue::Member& member : members) {
        line += &member == &members.front() ? "" : ",";
        line += jsonText(member.first) + ":";
        write(line, member.second);
    }
    line += '}';
}

void write(std::string& line, const JsonValue& value) {
    if (value.isArray()) {
        write(line, value.elements());
    } else if (value.isObject()) {
        write(line, value.members());
    } else if (value.isText()) {
        line += jsonText(value.get<std::string>());
    } else if (value.isBool()) {
        line += value.get<bool>() ? "true" : "false";
    } else if (value.isUnsigned()) {
        line += std::to_string(value.get<std::uint64_t>());
    } else if (value.isInteger()) {
        line += std::to_string(value.get<std::int64_t>());
    } else if (value.isDouble()) {
        line += nlohmann::json(value.get<double>()).dump();
    } else {
        line += "null";
    }
}

}

JsonSyntaxError::JsonSyntaxError(std::size_t at)
    : JsonError("no JSON near character " + std::to_string(at)), mAt(at) {}

/// Makes a document while the library's parser reads its text.
class JsonValue::Maker {
public:
    explicit Maker(JsonValue& made) : mMade(made) {}

    // These names are the library's.
    bool null() { return put(nullptr) != nullptr; }
    bool boolean(bool value) { return put(value) != nullptr; }
    bool number_integer(std::int64_t value) { return put(value) != nullptr; }
    bool number_unsigned(std::uint64_t value) { return put(value) != nullptr; }
    bool number_float(double value, const std::string&) { return put(value) != nullptr; }
    bool string(std::string& text) { return put(std::move(text)) != nullptr; }
    bool binary(std::vector<std::uint8_t>&) { return false; }
    bool start_array(std::size_t) { return open(array()); }
    bool start_object(std::size_t) { return open(object()); }
    bool end_array() { return close(); }
    bool end_object() { return close(); }
    bool key(std::string& name) {
        Open& around = mOpen.back();
        if (!around.names.insert(name).second) {
            throw JsonError("\"" + name + "\" stands twice in one JSON object");
        }
        around.next = std::move(name);
        return true;
    }
    bool parse_error(std::size_t at, const std::string&, const nlohmann::json::exception&) {
        throw JsonSyntaxError(at);
    }

private:
    /// An array or an object whose end has not come yet.
    struct Open {
        JsonValue* value; ///< it stays where it is, since nothing is put beside it meanwhile
        std::set<std::string> names;
        std::string next; ///< the name of the member that comes
    };

    JsonValue* put(JsonValue value) {
        if (mOpen.empty()) {
            mMade = std::move(value);
            return &mMade;
        }
        Open& around = mOpen.back();
        if (auto* const elements = std::get_if<Elements>(&around.value->mValue)) {
            return &elements->emplace_back(std::move(value));
        }
        Members& members = std::get<Object>(around.value->mValue).members;
        return &members.emplace_back(std::move(around.next), std::move(value)).second;
    }
    bool open(JsonValue value) {
        if (mOpen.size() == kDeepest) {
            throw JsonError("the JSON is nested deeper than " + std::to_string(kDeepest) +
                            " levels");
        }
        mOpen.push_back({put(std::move(value)), {}, {}});
        return true;
    }
    bool close() {
        mOpen.pop_back();
        return true;
    }

    JsonValue& mMade;
    std::vector<Open> mOpen; ///< the outermost first
};

JsonValue::JsonValue(std::initializer_list<JsonItem> items) {
    if (!std::all_of(items.begin(), items.end(), isMember)) {
        *this = array(items);
        return;
    }
    Members members;
    members.reserve(items.size());
    for (const JsonItem& item : items) {
        auto pair = std::get<Elements>(item.take().mValue);
        members.emplace_back(std::get<std::string>(std::move(pair.front().mValue)),
                             std::move(pair.back()));
    }
    mValue = Object{std::move(members)};
}

JsonValue JsonValue::array(std::initializer_list<JsonItem> items) {
    Elements elements;
    elements.reserve(items.size());
    for (const JsonItem& item : items) {
        elements.push_back(item.take());
    }
    JsonValue made;
    made.mValue = std::move(elements);
    return made;
}

JsonValue JsonValue::object() {
    JsonValue made;
    made.mValue = Object();
    return made;
}

JsonValue JsonValue::parse(const std::string& text) {
    JsonValue made;
    Maker maker(made);
    nlohmann::json::sax_parse(text, &maker);
    return made;
}

void JsonValue::refuse(const char* expected) const {
    throw JsonError(std::string(expected) + " was expected, not " + toLine(*this));
}

const JsonValue::Elements& JsonValue::elements() const {
    static const Elements none;
    const auto* const elements = std::get_if<Elements>(&mValue);
    return elements != nullptr ? *elements : none;
}

void JsonValue::add(JsonValue element) {
    if (isNull()) {
        *this = array();
    }
    if (!isArray()) {
        refuse("an array");
    }
    std::get<Elements>(mValue).push_back(std::move(element));
}

const JsonValue::Members& JsonValue::members() const {
    static const Members none;
    const auto* const object = std::get_if<Object>(&mValue);
    return object != nullptr ? object->members : none;
}

const JsonValue* JsonValue::find(const std::string& name) const {
    const auto found = std::find_if(members().begin(), members().end(),
                                    [&](const Member& member) { return member.first == name; });
    return found != members().end() ? &found->second : nullptr;
}

const JsonValue& JsonValue::at(const std::string& name) const {
    const JsonValue* const found = find(name);
    if (found == nullptr) {
        refuse(("an object with the member " + jsonText(name)).c_str());
    }
    return *found;
}

JsonValue& JsonValue::operator[](const std::string& name) {
    if (isNull()) {
        *this = object();
    }
    if (!isObject()) {
        refuse("an object");
    }
    Members& members = std::get<Object>(mValue).members;
    const auto found = std::find_if(members.begin(), members.end(),
                                    [&](const Member& member) { return member.first == name; });
    return found != members.end() ? found->second : members.emplace_back(name, JsonValue()).second;
}

void JsonValue::update(const JsonValue& other) {
    for (const Member& member : other.members()) {
        (*this)[member.first] = member.second;
    }
}

bool JsonValue::Object::operator==(const Object& other) const {
    const auto isIn = [](const Member& member, const Members& all) {
        return std::any_of(all.begin(), all.end(), [&](const Member& one) {
            return one.first == member.first && one.second == member.second;
        });
    };
    return members.size() == other.members.size() &&
           std::all_of(members.begin(), members.end(),
                       [&](const Member& member) { return isIn(member, other.members); });
}

bool operator==(const JsonValue& one, const JsonValue& other) {
    const bool areNumbers = one.isNumber() && other.isNumber();
    return areNumbers && one.isDouble() != other.isDouble()
               ? one.get<double>() == other.get<double>()
               : one.mValue == other.mValue;
}

std::string toLine(const JsonValue& document) {
    std::string line;
    write(line, document);
    return line;
}

}
