// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The words of a line of orvhost: any line can be taken apart, and what was taken apart can be
// written so that the same words come out again.

#include "base/Suggestion.h"
#include "cli/input/WordSplitter.h"
#include "support/ByteSource.h"
#include "support/Require.h"

using namespace Fuzz;
using namespace OrvHost;

namespace {

void checkPlaces(const SplitLine& split, const std::string& line) {
    require(split.starts.size() == split.words.size(), "words without a place");
    std::size_t least = 0;
    for (const std::size_t start : split.starts) {
        require(start >= least && start < line.size(), "a word is at no place of its line");
        least = start + 1;
    }
}

void checkQuoting(const std::vector<std::string>& words) {
    std::string line;
    for (const std::string& word : words) {
        line += (line.empty() ? "" : " ") + quoteWord(word);
    }
    const SplitLine again = splitWords(line);
    require(again.words == words, "quoted words are others");
    require(!again.isOpen, "quoted words leave the line open");
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string line = ByteSource(data, size).rest();
    const SplitLine split = splitWords(line);
    checkPlaces(split, line);
    checkQuoting(split.words);
    if (!split.words.empty()) {
        const std::string& near = closest(split.words.back(), {"create", "delete", "commit"});
        require(near.empty() || near == "create" || near == "delete" || near == "commit",
                "a suggestion out of nowhere");
    }
    return 0;
}
