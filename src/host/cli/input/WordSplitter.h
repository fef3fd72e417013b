// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_INPUT_WORDSPLITTER_H
#define ORV_HOST_CLI_INPUT_WORDSPLITTER_H

#include <string>
#include <string_view>
#include <vector>

namespace OrvHost {

/// A line split into words.
struct SplitLine {
    std::vector<std::string> words;
    std::vector<std::size_t> starts; ///< where each word begins in the line
    bool isOpen = false;     ///< the line ends inside a quoted text, or with a single backslash
    bool endsInWord = false; ///< the last word reaches to the end of the line
};

/// Words are separated by blanks. In 'single quotes' all characters are taken as they are. In
/// "double quotes" and outside quotes, a backslash means that the next character is taken as it is.
/// A `#` at the start of a word begins a comment, which reaches to the end of the line. Quoted and
/// unquoted parts without a blank between them are one word; "" is an empty word.
SplitLine splitWords(std::string_view line);

/// \p word in a form that splitWords reads as one word.
std::string quoteWord(const std::string& word);

/// \p word in a form that both splitWords and a POSIX shell read as one word, for commands that a
/// message names: they are typed at the prompt, or after the name of the program and its options.
std::string quoteForTyping(const std::string& word);

}

#endif
