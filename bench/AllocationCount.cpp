// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "AllocationCount.h"

#include <cerrno>
#include <cstddef>
#include <cstdlib>

// The allocator of the C library, under the names that it has for programs that define malloc
// themselves.
extern "C" {
void* __libc_malloc(std::size_t size);                      // NOLINT(bugprone-reserved-identifier)
void* __libc_calloc(std::size_t count, std::size_t size);   // NOLINT(bugprone-reserved-identifier)
void* __libc_realloc(void* block, std::size_t size);        // NOLINT(bugprone-reserved-identifier)
void* __libc_memalign(std::size_t align, std::size_t size); // NOLINT(bugprone-reserved-identifier)
void __libc_free(void* block);                              // NOLINT(bugprone-reserved-identifier)
}

namespace OrvBench {

namespace {

// Needs no constructor, because the first allocations happen before any constructor runs.
struct Counters {
    bool on;
    int hostDepth;
    std::uint64_t outsideHost;
    std::uint64_t inHost;
};

constinit thread_local Counters counters{};

void countOne() {
    if (counters.on) {
        ++(counters.hostDepth == 0 ? counters.outsideHost : counters.inHost);
    }
}

}

AllocationCount::AllocationCount() {
    counters = {true, 0, 0, 0};
}

AllocationCount::~AllocationCount() {
    counters.on = false;
}

std::uint64_t AllocationCount::outsideHost() const {
    return counters.outsideHost;
}

std::uint64_t AllocationCount::inHost() const {
    return counters.inHost;
}

HostSection::HostSection() {
    ++counters.hostDepth;
}

HostSection::~HostSection() {
    --counters.hostDepth;
}

}

// These definitions replace those of the C library in the program and in every shared object.
extern "C" {

void* malloc(std::size_t size) {
    OrvBench::countOne();
    return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
    OrvBench::countOne();
    return __libc_calloc(count, size);
}

void* realloc(void* block, std::size_t size) {
    OrvBench::countOne();
    return __libc_realloc(block, size);
}

void* aligned_alloc(std::size_t align, std::size_t size) {
    OrvBench::countOne();
    return __libc_memalign(align, size);
}

int posix_memalign(void** block, std::size_t align, std::size_t size) {
    OrvBench::countOne();
    void* const made = __libc_memalign(align, size);
    if (made == nullptr) {
        return ENOMEM;
    }
    *block = made;
    return 0;
}

void free(void* block) {
    __libc_free(block);
}
}
