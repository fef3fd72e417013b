// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Runs out of memory at each allocation in turn. The process's operator new is replaced for that,
// so these tests have a program of their own.

#include "AutoMemory.h"

#include <cstddef>
#include <cstdlib>
#include <gtest/gtest.h>
#include <new>

namespace {

int allocationsLeft = -1; // no limit below zero

bool mayAllocate() {
    if (allocationsLeft == 0) {
        return false;
    }
    if (allocationsLeft > 0) {
        --allocationsLeft;
    }
    return true;
}

int alive = 0;

struct Counted {
    Counted() { ++alive; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
    ~Counted() { --alive; }
};

// Calls `operation` with room for `allocations` allocations and returns whether it ran out of them.
template <class Operation>
bool runsOut(int allocations, Operation&& operation) {
    bool ranOut = false;
    allocationsLeft = allocations;
    try {
        operation();
    } catch (const std::bad_alloc&) {
        ranOut = true;
    }
    allocationsLeft = -1;
    return ranOut;
}

}

// Out of line, so that the compiler does not take a `delete` for a `free` of the wrong block.
__attribute__((noinline)) void* operator new(std::size_t size) {
    void* block = mayAllocate() ? std::malloc(size) : nullptr;
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}
__attribute__((noinline)) void operator delete(void* block) noexcept {
    std::free(block);
}
__attribute__((noinline)) void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}

TEST(AutoMemoryFailure, Own_HolderCannotBeMade_DeletesTheObject) {
    Orv::AutoMemory memory;
    auto* object = new Counted;
    EXPECT_TRUE(runsOut(0, [&] { memory.own(object); }));
    EXPECT_EQ(alive, 0);
}

TEST(AutoMemoryFailure, Own_NodeCannotBeMade_DeletesTheObjectOnce) {
    {
        Orv::AutoMemory memory;
        auto* object = new Counted;
        EXPECT_TRUE(runsOut(1, [&] { memory.own(object); }));
        EXPECT_EQ(alive, 0);
        memory.own(new Counted);
        EXPECT_EQ(alive, 1);
    }
    EXPECT_EQ(alive, 0);
}

TEST(AutoMemoryFailure, Own_TwoAllocations_AreEnough) {
    Orv::AutoMemory memory;
    auto* object = new Counted;
    EXPECT_FALSE(runsOut(2, [&] { memory.own(object); }));
}

// That the block itself is not lost shows under the leak check.
TEST(AutoMemoryFailure, MallocAndStrdup_NodeCannotBeMade_PassTheExceptionAndKeepTheRest) {
    Orv::AutoMemory memory;
    char* before = memory.strdup("before");
    EXPECT_TRUE(runsOut(0, [&] { memory.malloc<char>(16); }));
    EXPECT_TRUE(runsOut(0, [&] { memory.strdup("lost"); }));
    EXPECT_STREQ(before, "before");
    EXPECT_STREQ(memory.strdup("after"), "after");
}
