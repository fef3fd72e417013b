// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "FormatText.h"

#include <array>
#include <cstddef>
#include <cstdio>

namespace Orv {

std::string formatText(const char* format, std::va_list arguments) {
    std::va_list again;
    va_copy(again, arguments);
    std::array<char, 256> shortText{};
    const int length = std::vsnprintf(shortText.data(), shortText.size(), format, arguments);
    std::string text;
    if (length < 0) {
        text = format;
    } else if (static_cast<std::size_t>(length) < shortText.size()) {
        text.assign(shortText.data(), static_cast<std::size_t>(length));
    } else {
        text.resize(static_cast<std::size_t>(length));
        std::vsnprintf(text.data(), text.size() + 1, format, again);
    }
    va_end(again);
    return text;
}

}
