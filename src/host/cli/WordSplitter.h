// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_WORDSPLITTER_H
#define ORV_HOST_CLI_WORDSPLITTER_H

#include <string>
#include <string_view>
#include <vector>

namespace OrvHost {

/// A line taken apart into words.
struct SplitLine {
    std::vector<std::string> words;
    std::vector<std::size_t> starts; ///< where each word begins in the line
    bool isOpen = false;     ///< the line ends inside a quoted text, or with a single backslash
    bool endsInWord = false; ///< the last word goes on at the end of the line
};

/// Words are parted by blanks. In 'single quotes' all characters stand for themselves; in "double
/// quotes" and outside of quotes a backslash makes the character behind it stand for itself. A `#`
/// at the start of a word begins a comment, which goes on to the end of the line. Quoted and plain
/// parts that touch are one word; "" is an empty word.
SplitLine splitWords(std::string_view line);

/// \p word in a form that splitWords takes for one word.
std::string quoteWord(const std::string& word);

}

#endif
