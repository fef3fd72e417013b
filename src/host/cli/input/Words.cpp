// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Words.h"

#include "Place.h"
#include "cli/errors/CliErrors.h"

#include <algorithm>
#include <charconv>

namespace OrvHost {

bool Words::takeFlag(const std::string& name) {
    const auto end = optionsEnd();
    const auto found = std::find(mWords.begin(), end, name);
    if (found == end) {
        return false;
    }
    mWords.erase(found);
    return true;
}

std::optional<std::uint64_t> Words::takeNumber(const std::string& name) {
    const std::optional<std::string> text = takeAfter(name, "a number");
    return text ? std::optional(parseNumber(*text, name)) : std::nullopt;
}

std::optional<std::string> Words::takeText(const std::string& name) {
    return takeAfter(name, "a text");
}

std::vector<std::string>::iterator Words::optionsEnd() {
    return mWords.end() - static_cast<std::ptrdiff_t>(std::min(mValues, mWords.size()));
}

std::optional<std::string> Words::takeAfter(const std::string& name, const std::string& what) {
    const auto end = optionsEnd();
    const auto found = std::find(mWords.begin(), end, name);
    if (found == end) {
        return std::nullopt;
    }
    if (found + 1 == end) {
        throw UsageError(name + " needs " + what);
    }
    std::string text = *(found + 1);
    mWords.erase(found, found + 2);
    return text;
}

std::string Words::take(const std::string& what) {
    if (mWords.empty()) {
        throw UsageError(what + " is missing");
    }
    std::string word = mWords.front();
    mWords.erase(mWords.begin());
    return word;
}

std::optional<std::string> Words::takeOptional() {
    return mWords.empty() ? std::nullopt : std::optional(take({}));
}

std::string Words::takeDn(const Model& model) {
    return fromTop(model, mHere, take("the DN"));
}

std::string Words::takeDnOrTop(const Model& model) {
    const std::string dn = takeOptional().value_or("");
    return dn.empty() ? dn : fromTop(model, mHere, dn);
}

std::string Words::takeDnOrHere(const Model& model) {
    return mWords.empty() ? mHere : takeDnOrTop(model);
}

std::vector<std::string> Words::takeRest() {
    return std::exchange(mWords, {});
}

void Words::end() const {
    if (!mWords.empty()) {
        throw UsageError("'" + mWords.front() + "' is one word too many");
    }
}

std::uint64_t parseNumber(const std::string& text, const std::string& what) {
    std::uint64_t number = 0;
    const char* end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, number);
    if (text.empty() || parsed.ec != std::errc() || parsed.ptr != end) {
        throw UsageError(what + " needs a number from 0, not '" + text + "'");
    }
    return number;
}

}
