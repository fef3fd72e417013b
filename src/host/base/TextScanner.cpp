// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "TextScanner.h"

#include <charconv>

namespace OrvHost {

bool TextScanner::take(std::string_view text) {
    const bool isThere = mRest.substr(0, text.size()) == text;
    if (isThere) {
        mRest.remove_prefix(text.size());
    }
    return isThere;
}

bool TextScanner::takeEnd(std::string_view text) {
    const bool isThere =
        mRest.size() >= text.size() && mRest.substr(mRest.size() - text.size()) == text;
    if (isThere) {
        mRest.remove_suffix(text.size());
    }
    return isThere;
}

std::optional<std::string_view> TextScanner::before(std::string_view mark) {
    return takeUntil(mRest.find(mark), mark.size());
}

std::optional<std::string_view> TextScanner::beforeLast(std::string_view mark) {
    return takeUntil(mRest.rfind(mark), mark.size());
}

std::optional<std::string_view> TextScanner::takeUntil(std::size_t at, std::size_t markSize) {
    if (at == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view found = mRest.substr(0, at);
    mRest.remove_prefix(at + markSize);
    return found;
}

std::optional<std::string_view> TextScanner::afterLast(std::string_view mark) {
    const std::size_t at = mRest.rfind(mark);
    if (at == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view found = mRest.substr(at + mark.size());
    mRest = mRest.substr(0, at);
    return found;
}

std::optional<long long> numberIn(std::string_view text) {
    long long number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

}
