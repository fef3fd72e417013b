// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "LogLevel.h"

#include "cli/errors/CliErrors.h"

#include <array>
#include <charconv>

namespace OrvHost {

namespace {

struct NamedLevel {
    const char* name;
    unsigned int level;
};

// The lowest number for each word: a level of logging lets messages up to that number through.
constexpr std::array<NamedLevel, 5> kLevels{
    {{"off", 0}, {"error", 3}, {"warning", 4}, {"info", 6}, {"trace", 8}}};

}

unsigned int parseLogLevel(const std::string& text) {
    for (const NamedLevel& named : kLevels) {
        if (text == named.name) {
            return named.level;
        }
    }
    unsigned int level = 0;
    const char* end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, level);
    if (text.empty() || parsed.ec != std::errc() || parsed.ptr != end) {
        throw UsageError("'" + text +
                         "' is no level: use off, error, warning, info, trace, or a number");
    }
    return level;
}

std::string logLevelWord(unsigned int level) {
    std::string word;
    for (const NamedLevel& named : kLevels) {
        if (named.level <= level) {
            word = named.name;
        }
    }
    return word;
}

std::vector<std::string> logLevelWords() {
    std::vector<std::string> words;
    words.reserve(kLevels.size());
    for (const NamedLevel& named : kLevels) {
        words.emplace_back(named.name);
    }
    return words;
}

}
