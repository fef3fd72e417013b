// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_BASE_BYTEORDERMARK_H
#define ORV_HOST_BASE_BYTEORDERMARK_H

#include <string>

namespace OrvHost {

/// Removes the mark with which some editors begin a file in UTF-8. It is not a part of the text.
inline void removeByteOrderMark(std::string& text) {
    constexpr const char* kMark = "\xEF\xBB\xBF";
    if (text.compare(0, 3, kMark) == 0) {
        text.erase(0, 3);
    }
}

/// True if the text begins with the mark of UTF-16, in which some editors write.
inline bool hasMarkOfUtf16(const std::string& text) {
    return text.compare(0, 2, "\xFF\xFE") == 0 || text.compare(0, 2, "\xFE\xFF") == 0;
}

}

#endif
