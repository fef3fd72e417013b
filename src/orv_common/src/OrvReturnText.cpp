// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "OrvReturnText.h"

#include <cstdio>

namespace Orv {

namespace {

// A host's own code: the number is all that is known of it. Plain bytes of the thread, with nothing
// to destroy: a destructor would keep the library loaded until the thread ends.
const char* unknownCode(OrvReturnT code) {
    thread_local char text[sizeof("unknown return code -2147483648")];
    std::snprintf(text, sizeof(text), "unknown return code %d", static_cast<int>(code));
    return text;
}

}

const char* OrvReturn::strerror(OrvReturnT code) {
    switch (code) {
    case OrvOk:
        return "OrvOk";
    case OrvNotActive:
        return "OrvNotActive";
    case OrvFailure:
        return "OrvFailure";
    case OrvNotExist:
        return "OrvNotExist";
    case OrvAlreadyExist:
        return "OrvAlreadyExist";
    case OrvInvalidArgument:
        return "OrvInvalidArgument";
    case OrvValidationFailed:
        return "OrvValidationFailed";
    default:
        return unknownCode(code);
    }
}

}
