// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_UTF8_H
#define ORV_HOST_YANG_UTF8_H

#include <cstddef>
#include <string_view>

namespace OrvHost {

/// The number of bytes of the UTF-8 character that \p text, which is not empty, begins with; 0 if
/// it begins with none that a text in YANG, JSON or XML may hold: a malformed one, or a control
/// character but for tab and the ends of lines. Any thread.
std::size_t lengthOfCharacter(std::string_view text);

}

#endif
