// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_ORV_COMMON_FORMATTEXT_H
#define ORV_ORV_COMMON_FORMATTEXT_H

#include <cstdarg>
#include <string>

namespace Orv {

/// The text that a printf `format` gives with `arguments`, of any length. The arguments are left as
/// vsnprintf leaves them. If the C library cannot format them the text is the format itself, so
/// that a message is never lost whole.
std::string formatText(const char* format, std::va_list arguments)
    __attribute__((format(printf, 1, 0)));

}

#endif
