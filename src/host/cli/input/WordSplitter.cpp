// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "WordSplitter.h"

#include <algorithm>

namespace OrvHost {

namespace {

bool isBlank(char character) {
    return character == ' ' || character == '\t' || character == '\r' || character == '\n';
}

/// Reads one line from left to right.
class Splitter {
public:
    explicit Splitter(std::string_view line) : mLine(line) {}

    SplitLine split() {
        while (skipBlanks() && mLine[mPosition] != '#') {
            readWord();
        }
        return std::move(mResult);
    }

private:
    bool skipBlanks() {
        while (mPosition < mLine.size() && isBlank(mLine[mPosition])) {
            ++mPosition;
        }
        return mPosition < mLine.size();
    }

    void readWord() {
        mResult.starts.push_back(mPosition);
        mResult.words.emplace_back();
        while (mPosition < mLine.size() && !isBlank(mLine[mPosition])) {
            const char character = mLine[mPosition++];
            if (character == '\'' || character == '"') {
                readQuoted(character);
            } else if (character == '\\') {
                takeEscaped();
            } else {
                mResult.words.back() += character;
            }
        }
        mResult.endsInWord = mPosition == mLine.size();
    }

    void readQuoted(char quote) {
        while (mPosition < mLine.size()) {
            const char character = mLine[mPosition++];
            if (character == quote) {
                return;
            }
            if (character == '\\' && quote == '"') {
                takeEscaped();
            } else {
                mResult.words.back() += character;
            }
        }
        mResult.isOpen = true;
    }

    void takeEscaped() {
        if (mPosition == mLine.size()) {
            mResult.isOpen = true;
            return;
        }
        mResult.words.back() += mLine[mPosition++];
    }

    std::string_view mLine;
    std::size_t mPosition = 0;
    SplitLine mResult;
};

}

SplitLine splitWords(std::string_view line) {
    return Splitter(line).split();
}

std::string quoteWord(const std::string& word) {
    const bool isPlain = !word.empty() && word.front() != '#' &&
                         word.find_first_of(" \t\r\n'\"\\") == std::string::npos;
    if (isPlain) {
        return word;
    }
    std::string quoted = "\"";
    for (const char character : word) {
        if (character == '"' || character == '\\') {
            quoted += '\\';
        }
        quoted += character;
    }
    return quoted + '"';
}

std::string quoteForTyping(const std::string& word) {
    const auto isPlain = [](char letter) {
        const auto code = static_cast<unsigned char>(letter);
        const bool isOfName = (code >= '0' && code <= '9') || (code >= 'A' && code <= 'Z') ||
                              (code >= 'a' && code <= 'z') || code >= 0x80;
        return isOfName || std::string_view("_=,./:@%+-").find(letter) != std::string_view::npos;
    };
    if (!word.empty() && std::all_of(word.begin(), word.end(), isPlain)) {
        return word;
    }
    std::string quoted = "\"";
    for (const char letter : word) {
        if (letter == '!') {
            // Shells with a history replace it inside double quotes, whether it is escaped or not.
            quoted += "\"\\!\"";
            continue;
        }
        if (std::string_view("\"\\$`").find(letter) != std::string_view::npos) {
            quoted += '\\';
        }
        quoted += letter;
    }
    return quoted + '"';
}

}
