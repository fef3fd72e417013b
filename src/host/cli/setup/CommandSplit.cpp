// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "CommandSplit.h"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace OrvHost {

namespace {

constexpr const char* kJson = "--json";

bool isOptionWord(const std::string& word) {
    return word.size() > 1 && word.front() == '-';
}

/// The option that \p word begins with, and what it says of the value.
struct WrittenOption {
    const CLI::Option* option = nullptr; ///< null: the program has no such option
    bool hasValue = false;               ///< in the same word
    bool isEmptyValue = false;           ///< "--name="
    std::string name;
};

WrittenOption readOption(const CLI::App& app, const std::string& word) {
    const bool isLong = word.compare(0, 2, "--") == 0;
    const std::size_t end = isLong ? std::min(word.find('='), word.size()) : 2;
    WrittenOption written;
    written.name = word.substr(0, end);
    written.option = app.get_option_no_throw(written.name);
    written.hasValue = end < word.size();
    written.isEmptyValue = isLong && end + 1 == word.size();
    return written;
}

bool takesValue(const CLI::Option& option) {
    return option.get_expected_max() > 0;
}

// The command's words, with --json in front of them if it was among them.
void addCommand(const CLI::App& app, std::vector<std::string> words,
                std::vector<std::string>& result) {
    const auto json = std::remove(words.begin(), words.end(), kJson);
    if (json != words.end()) {
        words.erase(json, words.end());
        result.emplace_back(kJson);
    }
    for (const std::string& word : words) {
        if (isOptionWord(word) && app.get_option_no_throw(word) != nullptr) {
            throw CLI::ExtrasError(
                "orvhost", {word + " (it must come before the command '" + words.front() + "')"});
        }
    }
    result.emplace_back("--");
    result.insert(result.end(), words.begin(), words.end());
}

}

std::vector<std::string> withCommandApart(const CLI::App& app,
                                          const std::vector<std::string>& arguments,
                                          const std::vector<std::string>& verbs) {
    std::vector<std::string> result;
    for (auto at = arguments.begin(); at != arguments.end(); ++at) {
        const bool isVerb = std::find(verbs.begin(), verbs.end(), *at) != verbs.end();
        if (*at == "--" || isVerb) {
            result.insert(result.end(), at, arguments.end());
            return result;
        }
        if (!isOptionWord(*at)) {
            addCommand(app, {at, arguments.end()}, result);
            return result;
        }
        const WrittenOption written = readOption(app, *at);
        const bool takes = written.option != nullptr && takesValue(*written.option);
        if (takes && written.isEmptyValue) {
            // The parser of options takes "--name=" for an option without a value.
            result.push_back(written.name);
            result.emplace_back();
            continue;
        }
        result.push_back(*at);
        if (takes && !written.hasValue && at + 1 != arguments.end()) {
            result.push_back(*++at);
        }
    }
    return result;
}

GivenOptions givenOptions(const CLI::App& app, const std::vector<std::string>& arguments) {
    GivenOptions given;
    for (auto at = arguments.begin(); at != arguments.end() && isOptionWord(*at) && *at != "--";
         ++at) {
        const WrittenOption written = readOption(app, *at);
        if (written.option == nullptr || written.option->get_lnames().empty()) {
            continue;
        }
        std::string value;
        if (written.hasValue) {
            value = at->substr(written.name.size());
            value.erase(0, value.front() == '=' ? 1 : 0);
        } else if (takesValue(*written.option) && at + 1 != arguments.end()) {
            value = *++at;
        }
        given["--" + written.option->get_lnames().front()] = value;
    }
    return given;
}

}
