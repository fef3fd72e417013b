// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_OUTPUT_JSONVALUE_H
#define ORV_HOST_CLI_OUTPUT_JSONVALUE_H

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace OrvHost {

/// A text is no JSON, or a document is not of the expected form.
class JsonError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A text is no JSON.
class JsonSyntaxError : public JsonError {
public:
    explicit JsonSyntaxError(std::size_t at);

    /// Near which byte of the text; the first one is 1.
    std::size_t at() const { return mAt; }

private:
    std::size_t mAt;
};

class JsonItem;

/// A document of JSON. The members of its objects stay in their order.
///
/// Ending one takes no memory. The type of the JSON library asks for some in its destructor, which
/// may not fail: a server would end as soon as there is none.
class JsonValue {
public:
    using Elements = std::vector<JsonValue>;
    using Member = std::pair<std::string, JsonValue>;
    using Members = std::vector<Member>;

    /// What parse() takes: deeper than any document, but not so deep that a walk over it, or its
    /// end, could use up the stack.
    static constexpr int kDeepest = 256;

    // NOLINTBEGIN(google-explicit-constructor): braces with values in them are a document
    JsonValue(std::nullptr_t = nullptr) {}
    JsonValue(std::same_as<bool> auto value) : mValue(value) {}
    /// As in a text, what is not negative is unsigned.
    template <class Number>
    requires(std::integral<Number> && !std::same_as<Number, bool>) JsonValue(Number value) {
        if (std::cmp_less(value, 0)) {
            mValue = static_cast<std::int64_t>(value);
        } else {
            mValue = static_cast<std::uint64_t>(value);
        }
    }
    JsonValue(double value) : mValue(value) {}
    JsonValue(const char* text) : mValue(std::string(text)) {}
    JsonValue(std::string text) : mValue(std::move(text)) {}
    JsonValue(const std::vector<std::string>& texts)
        : mValue(Elements(texts.begin(), texts.end())) {}
    /// An object if all are pairs that begin with a text, an array otherwise.
    JsonValue(std::initializer_list<JsonItem> items);
    // NOLINTEND(google-explicit-constructor)

    static JsonValue array(std::initializer_list<JsonItem> items = {});
    static JsonValue object();

    /// Throws JsonSyntaxError; JsonError if it is nested deeper than kDeepest, or if a name stands
    /// twice in an object.
    static JsonValue parse(const std::string& text);

    bool isNull() const { return is<std::nullptr_t>(); }
    bool isBool() const { return is<bool>(); }
    /// Whether it is a number without a fraction; isUnsigned() then says whether it is not
    /// negative.
    bool isInteger() const { return is<std::int64_t>() || is<std::uint64_t>(); }
    bool isUnsigned() const { return is<std::uint64_t>(); }
    bool isDouble() const { return is<double>(); }
    bool isNumber() const { return isInteger() || isDouble(); }
    bool isText() const { return is<std::string>(); }
    bool isArray() const { return is<Elements>(); }
    bool isObject() const { return is<Object>(); }

    /// The value, if it is one of that type and size: bool, an integer, double (any number),
    /// std::string, or std::vector<std::string>. Throws JsonError otherwise.
    template <class T>
    T get() const;

    /// Those of an array; none of anything else.
    const Elements& elements() const;
    /// To an array, or to null, which becomes one. Throws JsonError for anything else.
    void add(JsonValue element);

    /// Those of an object; none of anything else.
    const Members& members() const;
    /// Null if there is none of that name.
    const JsonValue* find(const std::string& name) const;
    /// Throws JsonError if there is none of that name.
    const JsonValue& at(const std::string& name) const;
    /// Makes the member if there is none of that name. In an object, or in null, which becomes one.
    /// Throws JsonError for anything else.
    JsonValue& operator[](const std::string& name);
    /// Sets each member of \p other, an object.
    void update(const JsonValue& other);
    /// Calls \p change for each element, or for the value of each member.
    template <class Change>
    void changeEach(const Change& change);

    /// Numbers of any type are equal by their value, objects whatever the order of their members.
    friend bool operator==(const JsonValue& one, const JsonValue& other);

private:
    friend std::string toLine(const JsonValue& document);
    class Maker;

    [[noreturn]] void refuse(const char* expected) const;

    template <class T>
    bool is() const {
        return std::holds_alternative<T>(mValue);
    }

    /// A type of its own, since libstdc++ believes that a variant of vectors, texts and numbers
    /// always has a value: when a copy fails for want of memory, it ends the value that is not
    /// there.
    struct Object {
        Members members;

        bool operator==(const Object& other) const;
    };

    std::variant<std::nullptr_t, bool, std::int64_t, std::uint64_t, double, std::string, Elements,
                 Object>
        mValue;
};

template <class T>
T JsonValue::get() const {
    if constexpr (std::same_as<T, bool>) {
        if (!isBool()) {
            refuse("true or false");
        }
        return std::get<bool>(mValue);
    } else if constexpr (std::integral<T>) {
        if (const auto* const number = std::get_if<std::uint64_t>(&mValue);
            number != nullptr && std::in_range<T>(*number)) {
            return static_cast<T>(*number);
        }
        if (const auto* const number = std::get_if<std::int64_t>(&mValue);
            number != nullptr && std::in_range<T>(*number)) {
            return static_cast<T>(*number);
        }
        refuse("an integer of that size");
    } else if constexpr (std::same_as<T, double>) {
        return isDouble()     ? std::get<double>(mValue)
               : isUnsigned() ? static_cast<double>(get<std::uint64_t>())
                              : static_cast<double>(get<std::int64_t>());
    } else if constexpr (std::same_as<T, std::string>) {
        if (!isText()) {
            refuse("a text");
        }
        return std::get<std::string>(mValue);
    } else {
        static_assert(std::same_as<T, std::vector<std::string>>);
        if (!isArray()) {
            refuse("an array of texts");
        }
        T texts;
        for (const JsonValue& element : elements()) {
            texts.push_back(element.get<std::string>());
        }
        return texts;
    }
}

template <class Change>
void JsonValue::changeEach(const Change& change) {
    if (auto* const elements = std::get_if<Elements>(&mValue)) {
        for (JsonValue& element : *elements) {
            change(element);
        }
    }
    if (auto* const object = std::get_if<Object>(&mValue)) {
        for (Member& member : object->members) {
            change(member.second);
        }
    }
}

/// What stands between braces.
class JsonItem {
public:
    // NOLINTBEGIN(google-explicit-constructor,bugprone-forwarding-reference-overload): it is made
    // where a value is written, and no document is made of it
    template <class T>
    requires std::constructible_from<JsonValue, T&&> JsonItem(T&& value)
        : mValue(std::forward<T>(value)) {}
    JsonItem(std::initializer_list<JsonItem> items) : mValue(items) {}
    // NOLINTEND(google-explicit-constructor,bugprone-forwarding-reference-overload)

    const JsonValue& value() const { return mValue; }
    /// Once.
    JsonValue&& take() const { return std::move(mValue); }

private:
    mutable JsonValue mValue; // a list of braces is constant, and copies of documents are slow
};

/// The document as text in one line. In texts that are not UTF-8, replacement characters stand for
/// the wrong bytes.
std::string toLine(const JsonValue& document);

}

#endif
