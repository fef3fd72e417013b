// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_MODEL_BOUNDS_H
#define ORV_HOST_MODEL_BOUNDS_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace OrvHost {

/// An upper bound that no count reaches. Large and positive, because some readers compare bounds as
/// signed numbers.
constexpr std::int64_t kUnbounded = INT64_MAX;

/// How many values, or how many objects, are allowed.
struct Bounds {
    std::int64_t lower = 0;
    std::int64_t upper = kUnbounded;

    bool contain(std::size_t count) const;
    /// True if every number is allowed.
    bool containAll() const { return lower <= 0 && upper == kUnbounded; }
};

/// The bounds for people, as models are written: "2" if both are the same, "0..4", and "1..*" if
/// there is no upper bound.
std::string toText(const Bounds& bounds);

}

#endif
