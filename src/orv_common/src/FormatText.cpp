// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "FormatText.h"

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace Orv {

namespace {

struct Free {
    void operator()(char* block) const { std::free(block); }
};

}

std::string formatText(const char* format, std::va_list arguments) {
    char* block = nullptr;
    const int length = ::vasprintf(&block, format, arguments);
    if (length < 0) { // the block means nothing then
        return format;
    }
    const std::unique_ptr<char, Free> owner(block);
    return {block, static_cast<std::size_t>(length)};
}

}
