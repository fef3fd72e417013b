// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "XPathText.h"

#include <cctype>

namespace OrvHost {
namespace {

bool isNameStart(char c) {
    return std::isalpha(static_cast<unsigned char>(c)) != 0 || c == '_';
}

bool isNamePart(char c) {
    return isNameStart(c) || std::isdigit(static_cast<unsigned char>(c)) != 0 || c == '-' ||
           c == '.';
}

/// Reads an expression from left to right. Whether a name or "*" is an operator, and whether "/"
/// begins a path, depends on what stands before it.
class Scanner {
public:
    explicit Scanner(std::string_view text) : mText(text) {}

    XPathMoves scan() && {
        while (mAt < mText.size()) {
            step();
        }
        return std::move(mMoves);
    }

private:
    void step() {
        const char c = mText[mAt];
        if (std::isspace(static_cast<unsigned char>(c)) != 0) {
            ++mAt;
        } else if (c == '"' || c == '\'') {
            mAt = std::min(mText.find(c, mAt + 1), mText.size() - 1) + 1;
            end(true);
        } else if (isNameStart(c)) {
            name();
        } else if (std::isdigit(static_cast<unsigned char>(c)) != 0) {
            number();
        } else if (c == '.') {
            dots();
        } else if (c == '/') {
            slash();
        } else if (c == '*') {
            mMoves.isUnbounded = mMoves.isUnbounded || !mIsAfterOperand;
            ++mAt;
            end(!mIsAfterOperand);
        } else {
            ++mAt;
            end(c == ')' || c == ']');
        }
    }

    void number() {
        while (mAt < mText.size() &&
               (std::isdigit(static_cast<unsigned char>(mText[mAt])) != 0 || mText[mAt] == '.')) {
            ++mAt;
        }
        end(true);
    }

    void dots() {
        if (mText.substr(mAt, 2) == "..") {
            ++mMoves.climbs;
            mAt += 2;
        } else {
            ++mAt;
        }
        end(true);
    }

    void slash() {
        const bool isDouble = mText.substr(mAt, 2) == "//";
        mMoves.isUnbounded = mMoves.isUnbounded || isDouble || !mIsAfterOperand;
        mAt += isDouble ? 2 : 1;
        end(false);
    }

    std::string_view word() {
        const std::size_t start = mAt;
        while (mAt < mText.size() && isNamePart(mText[mAt])) {
            ++mAt;
        }
        return mText.substr(start, mAt - start);
    }

    /// What follows, without spaces before it.
    std::string_view rest() const {
        const std::size_t next = mText.find_first_not_of(" \t\r\n", mAt);
        return next == std::string_view::npos ? std::string_view() : mText.substr(next);
    }

    void name() {
        std::string_view found = word();
        if (mIsAfterOperand &&
            (found == "and" || found == "or" || found == "div" || found == "mod")) {
            end(false);
            return;
        }
        if (rest().substr(0, 2) == "::") {
            axis(found);
            return;
        }
        if (mAt + 1 < mText.size() && mText[mAt] == ':' && isNameStart(mText[mAt + 1])) {
            ++mAt;
            found = word();
        } else if (mAt + 1 < mText.size() && mText[mAt] == ':' && mText[mAt + 1] == '*') {
            mAt += 2;
            mMoves.isUnbounded = true;
            end(true);
            return;
        }
        if (rest().substr(0, 1) == "(") {
            // A function, or a test for a kind of node.
            mMoves.isUnbounded =
                mMoves.isUnbounded || found == "deref" || found == "id" || found == "node";
        } else if (!mIsUpward) {
            mMoves.descends.emplace(found);
        }
        end(true);
    }

    void axis(std::string_view found) {
        mAt = mText.find("::", mAt) + 2;
        const bool isFar = found == "ancestor" || found == "ancestor-or-self";
        const bool isParent = found == "parent";
        const bool isDownward = found == "child" || found == "attribute";
        mMoves.climbsFar = mMoves.climbsFar || isFar;
        mMoves.climbs += isParent ? 1 : 0;
        mMoves.isUnbounded =
            mMoves.isUnbounded || !(isFar || isParent || isDownward || found == "self");
        end(false);
        mIsUpward = !isDownward;
    }

    void end(bool isOperand) {
        mIsAfterOperand = isOperand;
        mIsUpward = false;
    }

    std::string_view mText;
    std::size_t mAt = 0;
    bool mIsAfterOperand = false;
    bool mIsUpward = false; ///< the axis before this token leads up, or nowhere
    XPathMoves mMoves;
};

}

XPathMoves movesOf(std::string_view expression) {
    return Scanner(expression).scan();
}

}
