// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "JsonCursor.h"

#include "yang/source/Utf8.h"

#include <cstddef>

namespace OrvHost {

namespace {

constexpr std::string_view kEscapes = "\"\\/nrt";
constexpr std::string_view kEscaped = "\"\\/\n\r\t";

// What stands for itself in a string. Characters that begin with 0xEF can be none at all: some
// parsers take them and others do not.
bool isPlain(char letter) {
    const auto byte = static_cast<unsigned char>(letter);
    return byte >= 0x20 && byte != '"' && byte != '\\' && byte != 0xEF;
}

bool isDigit(char letter) {
    return letter >= '0' && letter <= '9';
}

}

bool JsonCursor::takeWord(std::string_view word) {
    skipBlanks();
    const auto left = static_cast<std::size_t>(mEnd - mAt);
    if (!std::string_view(mAt, left).starts_with(word)) {
        return false;
    }
    mAt += word.size();
    return true;
}

std::optional<std::string_view> JsonCursor::string() {
    if (!take('"')) {
        return std::nullopt;
    }
    const std::string_view rest(mAt, static_cast<std::size_t>(mEnd - mAt));
    const std::string_view text = rest.substr(0, rest.find('"'));
    const bool isClosed = text.size() < rest.size();
    if (!isClosed || text.find('\\') != std::string_view::npos ||
        plainPrefix(text) != text.size()) {
        return byCharacters();
    }
    mAt += text.size() + 1;
    return text;
}

std::optional<std::string_view> JsonCursor::byCharacters() {
    mUnescaped.clear();
    for (; mAt != mEnd && *mAt != '"'; ++mAt) {
        if (isPlain(*mAt)) {
            mUnescaped += *mAt;
            continue;
        }
        if (*mAt != '\\' || ++mAt == mEnd) {
            return std::nullopt;
        }
        const std::size_t which = kEscapes.find(*mAt);
        if (which == std::string_view::npos) {
            return std::nullopt;
        }
        mUnescaped += kEscaped[which];
    }
    return take('"') ? std::optional<std::string_view>(mUnescaped) : std::nullopt;
}

std::optional<std::string_view> JsonCursor::wholeNumber() {
    skipBlanks();
    const char* const begin = mAt;
    if (mAt != mEnd && *mAt == '-') {
        ++mAt;
    }
    const char* const digits = mAt;
    while (mAt != mEnd && isDigit(*mAt)) {
        ++mAt;
    }
    const bool isWhole =
        mAt != digits && (*digits != '0' || (mAt == digits + 1 && begin == digits));
    const bool goesOn = mAt != mEnd && (*mAt == '.' || *mAt == 'e' || *mAt == 'E');
    if (!isWhole || goesOn) {
        return std::nullopt;
    }
    return std::string_view(begin, static_cast<std::size_t>(mAt - begin));
}

bool JsonCursor::skipScalar() {
    if (!take('"')) {
        const char* const begin = mAt;
        while (mAt != mEnd && std::string_view(" \n\t\r,]}").find(*mAt) == std::string_view::npos) {
            ++mAt;
        }
        return mAt != begin;
    }
    for (; mAt != mEnd && *mAt != '"'; ++mAt) {
        if (*mAt == '\\' && mAt + 1 != mEnd) {
            ++mAt;
        }
        mLine += *mAt == '\n' ? 1 : 0;
    }
    return take('"');
}

}
