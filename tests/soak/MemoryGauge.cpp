// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "MemoryGauge.h"

#include <algorithm>

#include <malloc.h>

// g++ reports sanitizers by macros, clang by features.
#if defined(__SANITIZE_ADDRESS__)
#define ORV_SOAK_COUNTS_REQUESTS 1
#elif defined(__SANITIZE_THREAD__)
#define ORV_SOAK_COUNTS_CLASSES 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ORV_SOAK_COUNTS_REQUESTS 1
#elif __has_feature(thread_sanitizer)
#define ORV_SOAK_COUNTS_CLASSES 1
#endif
#endif

#if defined(ORV_SOAK_COUNTS_REQUESTS) || defined(ORV_SOAK_COUNTS_CLASSES)
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace Soak {

#if defined(ORV_SOAK_COUNTS_REQUESTS)

std::int64_t MemoryGauge::allocated() {
    return static_cast<std::int64_t>(__sanitizer_get_current_allocated_bytes());
}

std::int64_t MemoryGauge::costOf(std::size_t bytes) {
    return static_cast<std::int64_t>(bytes);
}

#elif defined(ORV_SOAK_COUNTS_CLASSES)

std::int64_t MemoryGauge::allocated() {
    return static_cast<std::int64_t>(__sanitizer_get_current_allocated_bytes());
}

std::int64_t MemoryGauge::costOf(std::size_t bytes) {
    return static_cast<std::int64_t>((bytes + 15) / 16 * 16);
}

#else

std::int64_t MemoryGauge::allocated() {
    const struct mallinfo2 info = mallinfo2();
    return static_cast<std::int64_t>(info.uordblks + info.hblkhd);
}

// The allocator puts a block after its length, at a multiple of 16; a block is never smaller than
// 32 bytes.
std::int64_t MemoryGauge::costOf(std::size_t bytes) {
    return static_cast<std::int64_t>(std::max<std::size_t>(32, (bytes + 8 + 15) / 16 * 16));
}

#endif

}
