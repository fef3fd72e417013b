// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "OrvReturnText.h"

namespace Orv {

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
        return "unknown return code";
    }
}

}
