// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ModuleStatements.h"

#include <utility>

namespace OrvHost {
namespace {

/// A word, a quoted text, or one of the characters that structure the text.
struct Token {
    enum Kind { End, Word, Quoted, Open, Close, Semicolon, Plus } kind = End;
    std::string text;
    int line = 0;
    std::size_t begin = 0;
};

/// Splits the text into tokens.
class Lexer {
public:
    explicit Lexer(std::string_view text) : mText(text) {}

    Token next() {
        skipBlanks();
        Token token;
        token.line = mLine;
        token.begin = mPosition;
        if (atEnd()) {
            return token;
        }
        const char first = mText[mPosition];
        if (first == '"' || first == '\'') {
            return quoted(token, first);
        }
        if (const Token::Kind kind = structural(first); kind != Token::End) {
            take();
            token.kind = kind;
            return token;
        }
        return word(token);
    }

    /// The place in the text after the last token.
    std::size_t position() const { return mPosition; }

private:
    bool atEnd() const { return mPosition >= mText.size(); }
    bool startsWith(std::string_view text) const {
        return mText.substr(mPosition, text.size()) == text;
    }

    char take() {
        const char taken = mText[mPosition++];
        mLine += taken == '\n' ? 1 : 0;
        return taken;
    }

    void skipTo(std::string_view end) {
        while (!atEnd() && !startsWith(end)) {
            take();
        }
        mPosition = std::min(mPosition + end.size(), mText.size());
    }

    static bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

    void skipBlanks() {
        while (!atEnd()) {
            if (startsWith("//")) {
                while (!atEnd() && mText[mPosition] != '\n') {
                    take();
                }
            } else if (startsWith("/*")) {
                skipTo("*/");
            } else if (isBlank(mText[mPosition])) {
                take();
            } else {
                return;
            }
        }
    }

    static Token::Kind structural(char c) {
        switch (c) {
        case '{':
            return Token::Open;
        case '}':
            return Token::Close;
        case ';':
            return Token::Semicolon;
        case '+':
            return Token::Plus;
        default:
            return Token::End;
        }
    }

    Token quoted(Token token, char quote) {
        token.kind = Token::Quoted;
        take();
        while (!atEnd() && mText[mPosition] != quote) {
            const char taken = take();
            const bool escapes = quote == '"' && taken == '\\' && !atEnd();
            token.text += escapes ? take() : taken;
        }
        if (!atEnd()) {
            take();
        }
        return token;
    }

    Token word(Token token) {
        token.kind = Token::Word;
        while (!atEnd() && !isBlank(mText[mPosition]) && mText[mPosition] != '{' &&
               mText[mPosition] != '}' && mText[mPosition] != ';') {
            token.text += take();
        }
        return token;
    }

    std::string_view mText;
    std::size_t mPosition = 0;
    int mLine = 1;
};

}

std::string withSingleSpaces(std::string_view text) {
    std::string single;
    for (const char c : text) {
        const bool isBlank = c == ' ' || c == '\t' || c == '\r' || c == '\n';
        if (!isBlank) {
            single += c;
        } else if (!single.empty() && single.back() != ' ') {
            single += ' ';
        }
    }
    return single;
}

std::string_view withoutPrefix(std::string_view keyword) {
    const std::size_t colon = keyword.find(':');
    return colon == std::string_view::npos ? keyword : keyword.substr(colon + 1);
}

ModuleStatements::ModuleStatements(std::string_view text) {
    Lexer lexer(text);
    std::vector<std::size_t> open;
    bool inStatement = false; // false: the next word is a keyword
    for (Token token = lexer.next(); token.kind != Token::End; token = lexer.next()) {
        if (token.kind == Token::Close) {
            inStatement = false;
            if (!open.empty()) {
                endStatement(open.back(), lexer.position());
                open.pop_back();
            }
        } else if (token.kind == Token::Semicolon) {
            if (inStatement) {
                endStatement(mStatements.size() - 1, lexer.position());
            }
            inStatement = false;
        } else if (token.kind == Token::Open) {
            inStatement = false;
            open.push_back(mStatements.empty() ? kNone : mStatements.size() - 1);
        } else if (!inStatement) {
            inStatement = true;
            const std::size_t parent = open.empty() ? kNone : open.back();
            mStatements.push_back({token.text, "", token.line, parent, token.begin, text.size()});
        } else if (token.kind != Token::Plus) {
            mStatements.back().argument += token.text;
        }
    }
    for (const Statement& statement : mStatements) {
        mPaths.push_back(pathOf(statement));
        mLineByPath.emplace(mPaths.back(), statement.line);
    }
}

void ModuleStatements::endStatement(std::size_t statement, std::size_t end) {
    if (statement != kNone) {
        mStatements[statement].end = end;
    }
}

std::string ModuleStatements::pathOf(const Statement& statement) const {
    std::string own(withoutPrefix(statement.keyword));
    if (!statement.argument.empty()) {
        own += " " + withSingleSpaces(statement.argument);
    }
    // The module itself is left out, because a path begins below it.
    const bool hasPath = statement.parent != kNone && mStatements[statement.parent].parent != kNone;
    return hasPath ? mPaths[statement.parent] + "/" + own : own;
}

int ModuleStatements::lineOf(const std::string& path) const {
    const auto found = mLineByPath.find(path);
    return found == mLineByPath.end() ? 0 : found->second;
}

int ModuleStatements::lineOfFirst(std::string_view keyword, std::string_view argument) const {
    for (const Statement& statement : mStatements) {
        if (withoutPrefix(statement.keyword) == keyword && statement.argument == argument) {
            return statement.line;
        }
    }
    return 0;
}

int ModuleStatements::lineOfMentioned(const std::string& text) const {
    const auto isQuoted = [&text](const std::string& word) {
        return text.find("\"" + word + "\"") != std::string::npos;
    };
    for (const Statement& statement : mStatements) {
        const bool hasPrefix = statement.keyword.find(':') != std::string::npos;
        const bool isLink = statement.keyword == "include" || statement.keyword == "import";
        if ((hasPrefix && isQuoted(statement.keyword)) ||
            (isLink && isQuoted(statement.argument))) {
            return statement.line;
        }
    }
    return 0;
}

const ModuleStatements::Statement& ModuleStatements::top() const {
    static const Statement none;
    return mStatements.empty() ? none : mStatements.front();
}

std::vector<ModuleStatements::Statement>
ModuleStatements::inModule(std::string_view keyword) const {
    std::vector<Statement> found;
    for (const Statement& statement : mStatements) {
        if (statement.parent == 0 && statement.keyword == keyword) {
            found.push_back(statement);
        }
    }
    return found;
}

std::string ModuleStatements::prefixOf(std::string_view importedModule) const {
    for (const Statement& statement : mStatements) {
        if (statement.keyword != "prefix" || statement.parent == kNone) {
            continue;
        }
        const Statement& parent = mStatements[statement.parent];
        if (parent.keyword == "import" && parent.argument == importedModule) {
            return statement.argument;
        }
    }
    return "";
}

}
