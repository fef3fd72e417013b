// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_SOURCE_UTF8_H
#define ORV_HOST_YANG_SOURCE_UTF8_H

#include <cstddef>
#include <string_view>

namespace OrvHost {

/// The number of bytes of the UTF-8 character that \p text begins with; \p text must not be empty.
/// 0 if that character is malformed, or a control character other than tab and line ends, which a
/// text in YANG, JSON or XML must not contain. Any thread.
std::size_t lengthOfCharacter(std::string_view text);

/// The number of bytes, from the beginning, from 0x20 to 0x7F: each of them is a character, and it
/// takes no look at each one to find that out. Any thread.
std::size_t plainPrefix(std::string_view text);

}

#endif
