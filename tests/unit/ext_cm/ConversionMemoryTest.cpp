// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "values/ConversionMemory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace {

using OrvExtCmRouterService::ConversionMemory;

bool isIn(const ConversionMemory& memory, const void* block) {
    const auto* const begin = reinterpret_cast<const std::byte*>(&memory);
    const auto* const place = static_cast<const std::byte*>(block);
    return begin <= place && place < begin + sizeof(memory);
}

template <class T>
void expectZeros(const T* block, std::size_t count) {
    EXPECT_TRUE(std::all_of(block, block + count, [](T element) { return element == T{}; }));
}

TEST(ConversionMemory, SmallBlocks_StandInTheObjectSideBySide) {
    ConversionMemory memory;
    auto* const first = memory.malloc<std::uint64_t>(3);
    auto* const second = memory.malloc<char*>(2);
    EXPECT_TRUE(isIn(memory, first));
    EXPECT_EQ(static_cast<void*>(second), first + 3);
    expectZeros(first, 3);
    expectZeros(second, 2);
}

TEST(ConversionMemory, WhatDoesNotFit_ComesFromTheHeapAndLaterOnesMayFit) {
    ConversionMemory memory;
    auto* const large = memory.malloc<std::uint64_t>(65);
    auto* const all = memory.malloc<std::uint64_t>(64);
    auto* const oneMore = memory.malloc<std::uint64_t>(1);
    EXPECT_FALSE(isIn(memory, large));
    EXPECT_TRUE(isIn(memory, all));
    EXPECT_FALSE(isIn(memory, oneMore));
    std::fill(all, all + 64, ~std::uint64_t{0});
    expectZeros(large, 65);
    expectZeros(oneMore, 1);
}

}
