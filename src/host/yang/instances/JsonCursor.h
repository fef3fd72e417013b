// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_INSTANCES_JSONCURSOR_H
#define ORV_HOST_YANG_INSTANCES_JSONCURSOR_H

#include <optional>
#include <string>
#include <string_view>

namespace OrvHost {

/// Goes through a JSON text once, from its beginning. Each function skips blanks and takes what it
/// names, or takes nothing that the caller could still use: a caller who does not find what it
/// needs gives the text up.
///
/// The text is well-formed UTF-8 and must outlive the cursor.
class JsonCursor {
public:
    explicit JsonCursor(std::string_view text) : mAt(text.data()), mEnd(mAt + text.size()) {}

    /// Takes the mark if it comes next.
    bool take(char mark) {
        skipBlanks();
        if (mAt == mEnd || *mAt != mark) {
            return false;
        }
        ++mAt;
        return true;
    }
    /// Takes a word such as "null" if the text goes on with it.
    bool takeWord(std::string_view word);
    bool isAtEnd() {
        skipBlanks();
        return mAt == mEnd;
    }
    /// True if the mark comes next.
    bool isAt(char mark) {
        skipBlanks();
        return mAt != mEnd && *mAt == mark;
    }
    /// True if a string comes next.
    bool isAtString() { return isAt('"'); }

    /// Of what was taken last, from 1.
    int line() const { return mLine; }

    /// A string without its quotes; a view of the text, or of memory that the next string uses
    /// again. Nothing for a string that is not closed, or that has an escape with a number or a
    /// character that parsers judge differently.
    std::optional<std::string_view> string();
    /// A whole number as it is written; nothing for one with a fraction or an exponent.
    std::optional<std::string_view> wholeNumber();
    /// Goes past a value that is no object and no array, whatever it is. False if there is none.
    bool skipScalar();

private:
    void skipBlanks() {
        while (mAt != mEnd && (*mAt == ' ' || *mAt == '\n' || *mAt == '\t' || *mAt == '\r')) {
            mLine += *mAt == '\n' ? 1 : 0; // strings have none
            ++mAt;
        }
    }
    std::optional<std::string_view> byCharacters();

    const char* mAt;
    const char* mEnd;
    int mLine = 1;
    std::string mUnescaped;
};

}

#endif
