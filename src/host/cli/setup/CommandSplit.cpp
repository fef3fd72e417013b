// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "CommandSplit.h"

#include "base/Suggestion.h"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace OrvHost {

namespace {

constexpr const char* kJson = "--json";
constexpr const char* kEndOfOptions = "--";

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

CLI::ExtrasError unknownOption(const CLI::App& app, const std::string& word,
                               const std::string& name) {
    std::vector<std::string> names;
    for (const CLI::Option* option : app.get_options()) {
        for (const std::string& one : option->get_lnames()) {
            names.push_back("--" + one);
        }
    }
    const std::string guess = didYouMean(name, names);
    return {"orvhost", {word + (guess.empty() ? "" : "." + guess)}};
}

bool asksForHelp(const std::string& word) {
    return word == "--help" || word == "-h";
}

// The command's words, with --json in front of them if it was among them. What comes after the
// user's own "--" stays as it is.
void addCommand(const CLI::App& app, const std::vector<std::string>& words,
                std::vector<std::string>& result) {
    const auto end = std::find(words.begin(), words.end(), kEndOfOptions);
    std::vector<std::string> command;
    if (std::any_of(words.begin(), end, asksForHelp)) {
        command = {"help", words.front()};
    }
    const bool isHelp = !command.empty();
    for (auto word = words.begin(); word != end; ++word) {
        if (*word == kJson) {
            result.emplace_back(kJson);
        } else if (isHelp) {
            continue;
        } else if (isOptionWord(*word) && readOption(app, *word).option != nullptr) {
            throw CLI::ExtrasError(
                "orvhost", {*word + " (it must come before the command '" + words.front() + "')"});
        } else {
            command.push_back(*word);
        }
    }
    if (!isHelp) {
        command.insert(command.end(), end, words.end());
    }
    result.emplace_back(kEndOfOptions);
    result.insert(result.end(), command.begin(), command.end());
}

/// The options before the command, and where they end.
struct ReadOptions {
    GivenOptions given;
    std::vector<std::string>::const_iterator end;
};

ReadOptions readOptions(const CLI::App& app, const std::vector<std::string>& arguments) {
    GivenOptions given;
    auto at = arguments.begin();
    for (; at != arguments.end() && isOptionWord(*at) && *at != kEndOfOptions; ++at) {
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
    return {std::move(given), at};
}

}

std::vector<std::string> withCommandApart(const CLI::App& app,
                                          const std::vector<std::string>& arguments,
                                          const std::vector<std::string>& verbs) {
    std::vector<std::string> result;
    for (auto at = arguments.begin(); at != arguments.end(); ++at) {
        const bool isVerb = std::find(verbs.begin(), verbs.end(), *at) != verbs.end();
        if (*at == kEndOfOptions || isVerb) {
            result.insert(result.end(), at, arguments.end());
            return result;
        }
        if (!isOptionWord(*at)) {
            addCommand(app, {at, arguments.end()}, result);
            return result;
        }
        const WrittenOption written = readOption(app, *at);
        if (written.option == nullptr) {
            throw unknownOption(app, *at, written.name);
        }
        const bool takes = takesValue(*written.option);
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
    return readOptions(app, arguments).given;
}

std::string commandWord(const CLI::App& app, const std::vector<std::string>& arguments) {
    auto at = readOptions(app, arguments).end;
    at += at != arguments.end() && *at == kEndOfOptions ? 1 : 0;
    return at == arguments.end() ? "" : *at;
}

}
