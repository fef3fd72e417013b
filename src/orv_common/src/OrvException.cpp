// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "OrvException.h"

#include "FormatText.h"

#include <cstdarg>

namespace Orv {

OrvException::OrvException(OrvReturnT code, const char* format, ...) : mCode(code) {
    std::va_list arguments;
    va_start(arguments, format);
    mText = formatText(format, arguments);
    va_end(arguments);
}

OrvException::OrvException(const char* format, ...) : mCode(OrvFailure) {
    std::va_list arguments;
    va_start(arguments, format);
    mText = formatText(format, arguments);
    va_end(arguments);
}

const char* OrvException::what() const noexcept {
    return mText.c_str();
}

OrvReturnT OrvException::returnCode() const noexcept {
    return mCode;
}

}
