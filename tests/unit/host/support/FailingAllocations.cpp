// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "FailingAllocations.h"

#include <atomic>
#include <cstdlib>
#include <new>
#include <utility>

namespace {

thread_local bool isSpared = false;
/// How many allocations still fail, those that succeed before them, and how many have failed.
std::atomic<long> failing{0};
std::atomic<long> left{0};
std::atomic<long> failed{0};

bool mayAllocate() {
    if (isSpared || failing <= 0 || left.fetch_sub(1) > 0 || failing.fetch_sub(1) <= 0) {
        return true;
    }
    ++failed;
    return false;
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

void FailingAllocations::failAfter(long number, long howMany) {
    left = number;
    failed = 0;
    failing = howMany;
}

long FailingAllocations::count() {
    return failed;
}

bool FailingAllocations::stop() {
    failing = 0;
    return failed > 0;
}

FailingAllocations::Spared::Spared() : mBefore(std::exchange(isSpared, true)) {}

FailingAllocations::Spared::~Spared() {
    isSpared = mBefore;
}

}
