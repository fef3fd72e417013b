// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_SOAK_MEMORYGAUGE_H
#define ORV_TESTS_SOAK_MEMORYGAUGE_H

#include <cstddef>
#include <cstdint>

namespace Soak {

/// Asks the allocator of the process: that of the C library, or a sanitizer's.
class MemoryGauge {
public:
    /// Bytes that are allocated at present, by all threads.
    static std::int64_t allocated();

    /// Bytes of the process in memory.
    static std::int64_t resident();

    /// What allocated() rises by when a block of \p bytes is allocated.
    static std::int64_t costOf(std::size_t bytes);
};

}

#endif
