// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "OpenTransactions.h"

#include "ClientErrors.h"
#include "Suggestion.h"

#include <algorithm>
#include <regex>

namespace OrvHost {

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
    static const std::regex pattern(R"(\btransaction (\d{1,18})\b)");
    std::string result;
    auto rest = text.cbegin();
    for (std::sregex_iterator match(text.begin(), text.end(), pattern), end; match != end;
         ++match) {
        const auto phrase = mPhrases.find(std::stoul((*match)[1].str()));
        result.append(rest, (*match)[0].first);
        result += phrase != mPhrases.end() ? phrase->second : (*match)[0].str();
        rest = (*match)[0].second;
    }
    return result.append(rest, text.cend());
}

}
