// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_SOAK_MEMORYGAUGE_H
#define ORV_TESTS_SOAK_MEMORYGAUGE_H

#include <cstddef>
#include <cstdint>

namespace Soak {

/// Reads how much memory the process uses from its allocator: that of the C library, or a
/// sanitizer's.
class MemoryGauge {
public:
    /// The number of bytes that all threads have allocated now.
    static std::int64_t allocated();

    /// How much allocated() grows when a block of \p bytes is allocated.
    static std::int64_t costOf(std::size_t bytes);
};

}

#endif
