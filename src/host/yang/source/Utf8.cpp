// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Utf8.h"

#include <cstdint>
#include <cstring>

namespace OrvHost {

namespace {

constexpr std::uint64_t kEach = 0x0101010101010101U;
constexpr std::uint64_t kTopBits = 0x80U * kEach;

// True if each of the eight bytes is from 0x20 to 0x7F. A borrow can only come from a byte
// that is below 0x20 itself.
bool arePlain(std::uint64_t bytes) {
    return ((bytes | (bytes - 0x20U * kEach)) & kTopBits) == 0;
}

}

std::size_t plainPrefix(std::string_view text) {
    std::size_t at = 0;
    for (std::uint64_t bytes = 0; at + sizeof bytes <= text.size(); at += sizeof bytes) {
        std::memcpy(&bytes, text.data() + at, sizeof bytes);
        if (!arePlain(bytes)) {
            break;
        }
    }
    while (at < text.size() && arePlain(kEach * static_cast<unsigned char>(text[at]))) {
        ++at;
    }
    return at;
}

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
