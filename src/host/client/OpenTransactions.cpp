// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "OpenTransactions.h"

#include "ClientErrors.h"
#include "base/Suggestion.h"
#include "base/TextScanner.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <utility>

namespace OrvHost {

namespace {

/// A conflict names a transaction that was open a short time ago.
constexpr std::size_t kMostEnded = 1000;

/// Of "t12": 12. Nothing if the name has another form.
std::optional<std::size_t> numberOf(const std::string& name) {
    const auto number = name.empty() || name.front() != 't' || name.compare(0, 2, "t0") == 0
                            ? std::nullopt
                            : numberIn(std::string_view(name).substr(1));
    return number ? std::optional(static_cast<std::size_t>(*number)) : std::nullopt;
}

bool isOfWord(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

}

void OpenTransactions::requireFree(const std::string& name) const {
    if (name.empty() || name.find_first_of(" \t\r\n") != std::string::npos) {
        throw RequestError("'" + name + "' cannot name a transaction: expected one word");
    }
    const std::vector<std::string> open = names();
    if (std::find(open.begin(), open.end(), name) != open.end()) {
        throw RequestError("transaction " + name + " is open already");
    }
}

std::string OpenTransactions::freeName() const {
    return "t" + std::to_string(mFirstFree);
}

OpenTransactions::Entry& OpenTransactions::add(const std::string& name, unsigned long handle) {
    std::optional<std::string> current(name);
    keepPhrase(handle, "transaction " + name);
    if (const std::optional<std::size_t> number = numberOf(name); number && *number >= mFirstFree) {
        mUsedNumbers.insert(*number);
    }
    while (mUsedNumbers.erase(mFirstFree) != 0) {
        ++mFirstFree;
    }
    mOpen.push_back({name, handle, 0});
    mCurrent = std::move(current);
    return mOpen.back();
}

void OpenTransactions::addUnnamed(unsigned long handle) {
    keepPhrase(handle, "a write without a transaction");
}

/// Handles rise, so the first ones are the oldest.
void OpenTransactions::keepPhrase(unsigned long handle, std::string phrase) {
    mPhrases[handle] = std::move(phrase);
    for (auto oldest = mPhrases.begin();
         mPhrases.size() > kMostEnded + mOpen.size() && oldest != mPhrases.end();) {
        oldest = isOpen(oldest->first) ? std::next(oldest) : mPhrases.erase(oldest);
    }
}

bool OpenTransactions::isOpen(unsigned long handle) const {
    return std::any_of(mOpen.begin(), mOpen.end(),
                       [handle](const Entry& entry) { return entry.handle == handle; });
}

void OpenTransactions::remove(unsigned long handle) {
    const auto found = std::find_if(mOpen.begin(), mOpen.end(),
                                    [&](const Entry& entry) { return entry.handle == handle; });
    if (found == mOpen.end()) {
        return;
    }
    if (mCurrent == found->name) {
        leave();
    }
    mOpen.erase(found);
}

void OpenTransactions::use(const std::string& name) {
    mCurrent = require(name).name;
}

OpenTransactions::Entry* OpenTransactions::current() {
    return mCurrent ? find(*mCurrent) : nullptr;
}

OpenTransactions::Entry& OpenTransactions::require(const std::optional<std::string>& name) {
    Entry* entry = name ? find(*name) : current();
    if (entry != nullptr) {
        return *entry;
    }
    const std::string open =
        mOpen.empty() ? "none is open, 'begin' opens one" : "open: " + enumerate(names());
    throw RequestError(name ? "there is no open transaction '" + *name + "'; " + open + "." +
                                  didYouMean(*name, names())
                            : "no transaction is the current one; " + open);
}

OpenTransactions::Entry* OpenTransactions::find(const std::string& name) {
    const auto found = std::find_if(mOpen.begin(), mOpen.end(),
                                    [&](const Entry& entry) { return entry.name == name; });
    return found != mOpen.end() ? &*found : nullptr;
}

std::vector<std::string> OpenTransactions::names() const {
    std::vector<std::string> names;
    for (const Entry& entry : mOpen) {
        names.push_back(entry.name);
    }
    return names;
}

std::string OpenTransactions::prompt() {
    return mCurrent ? "orvhost[" + *mCurrent + "]> " : "orvhost> ";
}

std::string OpenTransactions::withNames(const std::string& text) const {
    static const std::string word = "transaction ";
    std::string result;
    std::size_t from = 0;
    for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1)) {
        const std::size_t number = at + word.size();
        const std::size_t end = std::min(text.find_first_not_of("0123456789", number), text.size());
        const auto handle = numberIn(std::string_view(text).substr(number, end - number));
        const bool isWhole =
            (at == 0 || !isOfWord(text[at - 1])) && (end == text.size() || !isOfWord(text[end]));
        const auto phrase =
            isWhole && handle ? mPhrases.find(static_cast<unsigned long>(*handle)) : mPhrases.end();
        if (phrase != mPhrases.end()) {
            result.append(text, from, at - from).append(phrase->second);
            from = end;
        }
    }
    return result.append(text, from, std::string::npos);
}

}
