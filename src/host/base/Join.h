// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_BASE_JOIN_H
#define ORV_HOST_BASE_JOIN_H

#include <initializer_list>
#include <string>
#include <string_view>

namespace OrvHost {

/// Joins the pieces into one text.
std::string joined(std::initializer_list<std::string_view> pieces);

/// One line for each of \p items: what \p toLine, called with it, returns. The last line has no
/// end.
template <class Items, class ToLine>
std::string joinedLines(const Items& items, const ToLine& toLine) {
    std::string text;
    for (const auto& item : items) {
        text.append(text.empty() ? "" : "\n").append(toLine(item));
    }
    return text;
}

}

#endif
