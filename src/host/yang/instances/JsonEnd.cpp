// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "JsonEnd.h"

#include "yang/instances/JsonCursor.h"

#include <string>

namespace OrvHost {

namespace {

/// Goes through a text as far as it is JSON.
class JsonWalk {
public:
    explicit JsonWalk(std::string_view text) : mText(text) {}

    std::string_view missing() {
        while (takeValue()) {
            while (!mClosers.empty() && mText.take(mClosers.back())) {
                mClosers.pop_back();
            }
            if (mClosers.empty()) {
                return kOther;
            }
            if (!mText.take(',')) {
                return mText.isAtEnd() ? kEnd : expectedAfterValue();
            }
        }
        return mText.isAtEnd() ? kEnd : kOther;
    }

private:
    static constexpr std::string_view kEnd = "the text ends too early";
    static constexpr std::string_view kOther = "JSON was expected";

    std::string_view expectedAfterValue() const {
        return mClosers.back() == ']' ? "after a value in [...], \",\" or \"]\" was expected"
                                      : "after a value in {...}, \",\" or \"}\" was expected";
    }

    /// Takes a scalar, or goes into objects and arrays until there is one, or an empty one of them.
    bool takeValue() {
        for (;;) {
            const bool isMember = !mClosers.empty() && mClosers.back() == '}';
            if (isMember && (!mText.string() || !mText.take(':'))) {
                return false;
            }
            if (mText.take('{')) {
                mClosers += '}';
            } else if (mText.take('[')) {
                mClosers += ']';
            } else {
                return mText.skipScalar();
            }
            if (mText.isAt(mClosers.back())) {
                return true;
            }
        }
    }

    JsonCursor mText;
    std::string mClosers; ///< of the objects and arrays that are open
};

}

std::string_view missingInJson(std::string_view text) {
    return JsonWalk(text).missing();
}

}
