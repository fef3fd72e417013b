// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "BoundsText.h"

namespace OrvHost {

std::string boundsText(const Bounds& bounds) {
    if (bounds.lower == bounds.upper) {
        return std::to_string(bounds.lower);
    }
    return std::to_string(bounds.lower) + ".." +
           (bounds.upper == kUnbounded ? "*" : std::to_string(bounds.upper));
}

}
