// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "AssociationStatement.h"

#include <charconv>
#include <cstddef>
#include <sstream>
#include <string_view>
#include <vector>

namespace OrvHost {
namespace {

std::string quote(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

/// The words of an argument, taken one by one.
class Words {
public:
    explicit Words(const std::string& argument) {
        std::istringstream stream(argument);
        for (std::string word; stream >> word;) {
            mWords.push_back(std::move(word));
        }
    }

    bool atEnd() const { return mPosition == mWords.size(); }
    bool isNext(std::string_view word) const { return !atEnd() && mWords[mPosition] == word; }

    std::string take(const std::string& expected) {
        if (atEnd()) {
            throw StatementError(expected + " was expected at the end");
        }
        return mWords[mPosition++];
    }

    void take(std::string_view word, const std::string& form) {
        if (!isNext(word)) {
            throw StatementError(quote(word) + " was expected " + where() + ": " + form);
        }
        ++mPosition;
    }

    void expectEnd() const {
        if (!atEnd()) {
            throw StatementError("nothing more was expected " + where());
        }
    }

private:
    std::string where() const {
        return atEnd() ? "at the end" : "instead of " + quote(mWords[mPosition]);
    }

    std::vector<std::string> mWords;
    std::size_t mPosition = 0;
};

constexpr const char* kUniDirForm = "CLASS.ATTRIBUTE -> CLASS [BOUNDS] [role=WORD]";
constexpr const char* kBiDirForm =
    "CLASS.ATTRIBUTE [BOUNDS] [role=WORD] [keep-at-delete] <-> CLASS.ATTRIBUTE [BOUNDS] "
    "[role=WORD] [keep-at-delete]";

ClassName parseClass(const std::string& word) {
    const std::size_t colon = word.find(':');
    const bool hasModule = colon != std::string::npos;
    ClassName name{hasModule ? word.substr(0, colon) : "",
                   hasModule ? word.substr(colon + 1) : word};
    const bool isWhole = !name.name.empty() && colon != 0;
    if (!isWhole || name.name.find_first_of(".<>=") != std::string::npos) {
        throw StatementError("CLASS or MODULE:CLASS was expected instead of " + quote(word));
    }
    return name;
}

AttributeName parseAttribute(const std::string& word) {
    const std::size_t dot = word.rfind('.');
    if (dot == std::string::npos || dot + 1 == word.size()) {
        throw StatementError("CLASS.ATTRIBUTE was expected instead of " + quote(word));
    }
    return {parseClass(word.substr(0, dot)), word.substr(dot + 1)};
}

std::optional<std::int64_t> parseBound(std::string_view text) {
    if (text == "unbounded" || text == "*") {
        return kUnbounded;
    }
    std::uint32_t bound = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), bound);
    if (error != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return bound;
}

Bounds parseBounds(const std::string& word) {
    const std::size_t dots = word.find("..");
    const bool isRange = dots != std::string::npos;
    const auto lower = parseBound(word.substr(0, dots));
    const auto upper = isRange ? parseBound(word.substr(dots + 2)) : lower;
    if (!lower || !upper || *lower > *upper || *lower == kUnbounded) {
        throw StatementError("bounds such as 2, 0..4 or 1..unbounded, or role=WORD, or "
                             "keep-at-delete, were expected instead of " +
                             quote(word));
    }
    return {*lower, *upper};
}

ReferenceTerms parseTerms(Words& words) {
    constexpr std::string_view kRole = "role=";
    ReferenceTerms terms;
    while (!words.atEnd() && !words.isNext("<->")) {
        const std::string word = words.take("");
        if (word == "keep-at-delete" && !terms.keepAtDelete) {
            terms.keepAtDelete = true;
        } else if (word.compare(0, kRole.size(), kRole) == 0 && word.size() > kRole.size() &&
                   terms.role.empty()) {
            terms.role = word.substr(kRole.size());
        } else if (!terms.bounds) {
            terms.bounds = parseBounds(word);
        } else {
            throw StatementError(quote(word) + " is one word too many");
        }
    }
    return terms;
}

ReferenceTerms parseUniDirTerms(Words& words) {
    ReferenceTerms terms = parseTerms(words);
    words.expectEnd();
    if (terms.keepAtDelete) {
        throw StatementError("keep-at-delete was not expected: references in one direction are "
                             "never cleaned up");
    }
    return terms;
}

}

std::string toText(const ClassName& name) {
    return name.module.empty() ? name.name : name.module + ":" + name.name;
}

UniDirInLeaf parseUniDirInLeaf(const std::string& argument) {
    Words words(argument);
    ClassName target = parseClass(words.take("CLASS"));
    return {std::move(target), parseUniDirTerms(words)};
}

BiDirInLeaf parseBiDirInLeaf(const std::string& argument) {
    Words words(argument);
    AttributeName opposite = parseAttribute(words.take("CLASS.ATTRIBUTE"));
    BiDirInLeaf statement{std::move(opposite), parseTerms(words)};
    words.expectEnd();
    return statement;
}

UniDirInModule parseUniDirInModule(const std::string& argument) {
    Words words(argument);
    AttributeName owner = parseAttribute(words.take("CLASS.ATTRIBUTE"));
    words.take("->", kUniDirForm);
    ClassName target = parseClass(words.take("CLASS"));
    return {std::move(owner), std::move(target), parseUniDirTerms(words)};
}

BiDirInModule parseBiDirInModule(const std::string& argument) {
    Words words(argument);
    BiDirInModule statement;
    statement.sides[0].first = parseAttribute(words.take("CLASS.ATTRIBUTE"));
    statement.sides[0].second = parseTerms(words);
    words.take("<->", kBiDirForm);
    statement.sides[1].first = parseAttribute(words.take("CLASS.ATTRIBUTE"));
    statement.sides[1].second = parseTerms(words);
    words.expectEnd();
    return statement;
}

}
