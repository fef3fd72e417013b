// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "FailingAllocations.h"

#include <atomic>
#include <cstdlib>
#include <new>
#include <utility>

namespace {

thread_local bool isSpared = false;
/// How many allocations still succeed, until one fails; below zero: all do.
std::atomic<long> left{-1};

bool mayAllocate() {
    return isSpared || left < 0 || left.fetch_sub(1) != 0;
}

}

// Out of line, so that the compiler does not take a `delete` for a `free` of the wrong block.
__attribute__((noinline)) void* operator new(std::size_t size) {
    void* const block = mayAllocate() ? std::malloc(size) : nullptr;
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}
__attribute__((noinline)) void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return mayAllocate() ? std::malloc(size) : nullptr;
}
__attribute__((noinline)) void operator delete(void* block) noexcept {
    std::free(block);
}
__attribute__((noinline)) void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}

namespace OrvHost {

void FailingAllocations::failAfter(long number) {
    left = number;
}

bool FailingAllocations::stop() {
    return left.exchange(-1) < 0;
}

FailingAllocations::Spared::Spared() : mBefore(std::exchange(isSpared, true)) {}

FailingAllocations::Spared::~Spared() {
    isSpared = mBefore;
}

}
