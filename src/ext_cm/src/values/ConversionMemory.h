// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_CONVERSIONMEMORY_H
#define ORV_EXT_CM_CONVERSIONMEMORY_H

#include "AutoMemory.h"

#include <cstddef>
#include <cstring>
#include <new>

namespace OrvExtCmRouterService {

/// \p block, which is memory for something. \throws std::bad_alloc if it is null.
template <class Element>
Element* present(Element* block) {
    if (block == nullptr) {
        throw std::bad_alloc(); // GCOVR_EXCL_LINE: only when the C library has no memory left
    }
    return block;
}

/// The memory of what an operation converts for the call that it makes. Most conversions are small
/// and fit into this object, which stands on the stack; the others come from the heap. All goes
/// when this object goes.
///
/// Threads: one at a time.
class ConversionMemory {
public:
    ConversionMemory() = default;
    ConversionMemory(const ConversionMemory&) = delete;
    ConversionMemory& operator=(const ConversionMemory&) = delete;
    ~ConversionMemory() = default;

    /// A zeroed array of \p count elements. \throws std::bad_alloc if there is no memory left.
    template <class T>
    T* malloc(unsigned int count) {
        // NOLINTNEXTLINE(bugprone-sizeof-expression): the elements may be pointers.
        constexpr std::size_t size = sizeof(T);
        static_assert(size % alignment == 0 && alignof(T) <= alignment);
        if (count > (sizeof(mSpace) - mUsed) / size) {
            return present(mHeap.malloc<T>(count));
        }
        void* const block = mSpace + mUsed;
        mUsed += count * size;
        return static_cast<T*>(std::memset(block, 0, count * size));
    }

    /// For what must be an object or a memory of its own.
    Orv::AutoMemory& heap() { return mHeap; }

private:
    static constexpr std::size_t alignment = alignof(void*);

    alignas(alignment) std::byte mSpace[512]; // set when it is given out
    std::size_t mUsed = 0;
    Orv::AutoMemory mHeap;
};

}

#endif
