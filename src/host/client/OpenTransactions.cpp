// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "OpenTransactions.h"

#include "ClientErrors.h"
#include "Suggestion.h"
#include "base/TextScanner.h"

#include <algorithm>
#include <cctype>

namespace OrvHost {

namespace {

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
    for (std::size_t number = 1;; ++number) {
        std::string name = "t" + std::to_string(number);
        if (mUsedNames.count(name) == 0) {
            return name;
        }
    }
}

void OpenTransactions::add(const std::string& name, unsigned long handle) {
    mOpen.push_back({name, handle, 0});
    mPhrases[handle] = "transaction " + name;
    mUsedNames[name] = handle;
    mCurrent = name;
}

void OpenTransactions::addUnnamed(unsigned long handle) {
    mPhrases[handle] = "a write without a transaction";
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
