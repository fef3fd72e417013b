// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "IdentitySearch.h"

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <sstream>
#include <string_view>
#include <utility>

namespace OrvHost {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";
/// A search path can hold all modules of the world, and this is only for a suggestion.
constexpr std::size_t kMostFiles = 2000;

std::string_view withoutBlanksAtEnd(std::string_view text) {
    const std::size_t last = text.find_last_not_of(kBlanks);
    return text.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

/// Takes the last word from the text; blanks at the end do not count.
std::string_view takeLastWord(std::string_view& text) {
    text = withoutBlanksAtEnd(text);
    const std::size_t start = text.find_last_of(" \t\r\n{};");
    const std::size_t first = start == std::string_view::npos ? 0 : start + 1;
    const std::string_view word = text.substr(first);
    text = text.substr(0, first);
    return word;
}

/// True if the text ends with "identity NAME { ... base", where a quote and a prefix may follow.
bool endsWithBaseOfIdentity(std::string_view text) {
    if (!text.empty() && kBlanks.find(text.back()) == std::string_view::npos) {
        takeLastWord(text);
    }
    if (takeLastWord(text) != "base") {
        return false;
    }
    text = text.substr(0, std::min(text.rfind('{'), text.size()));
    takeLastWord(text);
    return takeLastWord(text) == "identity";
}

bool isEnd(std::string_view text, std::size_t at) {
    return at < text.size() && (text[at] == ';' || text[at] == '"' || text[at] == '\'' ||
                                kBlanks.find(text[at]) != std::string_view::npos);
}

bool hasBase(std::string_view text, std::string_view identity) {
    for (std::size_t at = text.find(identity); at != std::string_view::npos;
         at = text.find(identity, at + 1)) {
        if (isEnd(text, at + identity.size()) && endsWithBaseOfIdentity(text.substr(0, at))) {
            return true;
        }
    }
    return false;
}

}

void IdentitySearch::readTexts() {
    mIsRead = true;
    std::vector<std::filesystem::path> files = mFinder.allFiles();
    files.resize(std::min(files.size(), kMostFiles));
    for (const std::filesystem::path& file : files) {
        std::ifstream input(file, std::ios::binary);
        std::ostringstream stream;
        stream << input.rdbuf();
        std::string text = stream.str();
        if (text.find("identity ") != std::string::npos) {
            const std::string stem = file.stem().string();
            mTexts.emplace_back(stem.substr(0, stem.find('@')), std::move(text));
        }
    }
    std::sort(mTexts.begin(), mTexts.end());
}

std::vector<std::string> IdentitySearch::modulesWithBase(const std::string& identity) {
    if (!mIsRead) {
        readTexts();
    }
    std::vector<std::string> names;
    for (const auto& [name, text] : mTexts) {
        if ((names.empty() || names.back() != name) && hasBase(text, identity)) {
            names.push_back(name);
        }
    }
    return names;
}

}
