// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "KeyValues.h"

#include "ValueCheck.h"
#include "base/Join.h"

#include <algorithm>

namespace OrvHost {

namespace {

constexpr char kSeparator = '|';
constexpr char kEscape = '%';
constexpr std::string_view kDigits = "0123456789ABCDEF";

bool mustBeEscaped(char character) {
    constexpr std::string_view kForbidden = ",=+\"\\<>;|%";
    const auto byte = static_cast<unsigned char>(character);
    return byte < 0x20 || byte == 0x7f || kForbidden.find(character) != std::string_view::npos;
}

void appendEscaped(std::string& text, char character) {
    const auto byte = static_cast<unsigned char>(character);
    text += kEscape;
    text += kDigits[byte >> 4U];
    text += kDigits[byte & 0xfU];
}

void appendKey(std::string& text, std::string_view key) {
    for (std::size_t at = 0; at < key.size(); ++at) {
        const bool isAtEnd = at == 0 || at + 1 == key.size();
        if (mustBeEscaped(key[at]) || (key[at] == ' ' && isAtEnd)) {
            appendEscaped(text, key[at]);
        } else {
            text += key[at];
        }
    }
}

/// The byte that "%" and two digits at the beginning of \p text stand for, if they are there.
std::optional<char> escapedByte(std::string_view text) {
    if (text.size() < 3 || text.front() != kEscape) {
        return std::nullopt;
    }
    const std::size_t high = kDigits.find(text[1]);
    const std::size_t low = kDigits.find(text[2]);
    if (high > 7 || low == std::string_view::npos) { // other bytes are never escaped
        return std::nullopt;
    }
    return static_cast<char>(high << 4U | low);
}

/// Malformed escapes stay as they are: the text is then not what joinKeys writes.
std::string withoutEscapes(std::string_view text) {
    std::string key;
    while (!text.empty()) {
        const std::optional<char> byte = escapedByte(text);
        key += byte.value_or(text.front());
        text.remove_prefix(byte ? 3 : 1);
    }
    return key;
}

std::vector<std::string> parts(std::string_view name) {
    std::vector<std::string> all;
    for (;;) {
        const std::size_t end = name.find(kSeparator);
        all.push_back(withoutEscapes(name.substr(0, end)));
        if (end == std::string_view::npos) {
            return all;
        }
        name.remove_prefix(end + 1);
    }
}

/// "KEY|KEY".
std::string formOf(const std::vector<AttributeDef>& keys) {
    std::string form;
    for (const AttributeDef& key : keys) {
        form += (form.empty() ? "" : std::string(1, kSeparator)) + key.name;
    }
    return form;
}

}

std::string joinKeys(const std::vector<std::string>& keys) {
    std::string name;
    for (std::size_t at = 0; at < keys.size(); ++at) {
        if (at > 0) {
            name += kSeparator;
        }
        appendKey(name, keys[at]);
    }
    return name;
}

std::optional<std::vector<std::string>> splitKeys(std::string_view name, std::size_t count) {
    std::vector<std::string> keys = parts(name);
    if (keys.size() != count || joinKeys(keys) != name) {
        return std::nullopt;
    }
    return keys;
}

std::string whyNoKeys(const std::vector<AttributeDef>& keys, const std::string& name) {
    const std::vector<std::string> values = parts(name);
    if (values.size() != keys.size()) {
        return joined({"expected the ", std::to_string(keys.size()), " key values ", formOf(keys),
                       ", got ", std::to_string(values.size())});
    }
    const std::string written = joinKeys(values);
    if (written != name) {
        return joined({"these key values are written as \"", written, "\""});
    }
    for (std::size_t at = 0; at < keys.size(); ++at) {
        const std::string reason = whyRefused(keys[at].type, Value(values[at]));
        if (!reason.empty()) {
            return joined({"key \"", keys[at].name, "\" of ", formOf(keys), ": ", reason});
        }
    }
    return {};
}

}
