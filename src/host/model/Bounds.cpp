// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Bounds.h"

namespace OrvHost {

bool Bounds::contain(std::size_t count) const {
    const auto number = static_cast<std::int64_t>(count);
    return lower <= number && number <= upper;
}

std::string toText(const Bounds& bounds) {
    std::string lower = std::to_string(bounds.lower);
    if (bounds.lower == bounds.upper) {
        return lower;
    }
    return lower + ".." + (bounds.upper == kUnbounded ? "*" : std::to_string(bounds.upper));
}

}
