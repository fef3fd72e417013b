// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Utf8.h"

namespace OrvHost {

std::size_t lengthOfCharacter(std::string_view text) {
    const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char first = byte(0);
    if (first < 0x80) {
        const bool isAllowed = first >= 0x20 || first == '\t' || first == '\n' || first == '\r';
        return isAllowed ? 1 : 0;
    }
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || text.size() < length) {
        return 0;
    }
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0U) != 0x80) {
            return 0;
        }
    }
    // Overlong forms, surrogates, and numbers above the last code point.
    const bool isMalformed = (first == 0xE0 && byte(1) < 0xA0) ||
                             (first == 0xED && byte(1) > 0x9F) ||
                             (first == 0xF0 && byte(1) < 0x90) || (first == 0xF4 && byte(1) > 0x8F);
    return isMalformed ? 0 : length;
}

}
