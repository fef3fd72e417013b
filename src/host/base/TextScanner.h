// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_BASE_TEXTSCANNER_H
#define ORV_HOST_BASE_TEXTSCANNER_H

#include <cstddef>
#include <optional>
#include <string_view>

namespace OrvHost {

/// Takes a text apart from both its ends. For messages that hold names which clients choose: a
/// regular expression of the standard library goes one call deeper for each character of them,
/// until the stack is full.
///
/// What is taken stays a view of the text, which must outlive it. A call that does not find what it
/// is asked for takes nothing.
class TextScanner {
public:
    explicit TextScanner(std::string_view text) : mRest(text) {}

    std::string_view rest() const { return mRest; }

    /// Takes away \p text if the rest begins with it.
    bool take(std::string_view text);
    /// Takes away \p text if the rest ends with it.
    bool takeEnd(std::string_view text);
    /// What stands before the first \p mark; takes it and the mark.
    std::optional<std::string_view> before(std::string_view mark);
    /// What stands before the last \p mark; takes it and the mark.
    std::optional<std::string_view> beforeLast(std::string_view mark);
    /// What stands after the last \p mark; takes it and the mark.
    std::optional<std::string_view> afterLast(std::string_view mark);

private:
    /// \p at is the place of a mark, or npos if it is not there.
    std::optional<std::string_view> takeUntil(std::size_t at, std::size_t markSize);

    std::string_view mRest;
};

/// The number that the whole text is, in decimal digits with or without a minus. Nothing if it is
/// none or too large.
std::optional<long long> numberIn(std::string_view text);

}

#endif
