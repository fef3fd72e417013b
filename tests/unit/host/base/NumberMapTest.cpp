// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "base/NumberMap.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace OrvHost {
namespace {

using Map = NumberMap<std::uint64_t, std::string>;

std::vector<std::uint64_t> keysOf(const Map& map) {
    std::vector<std::uint64_t> keys;
    for (const auto& [key, value] : map) {
        keys.push_back(key);
    }
    return keys;
}

TEST(NumberMap, Empty_HasNothing) {
    Map map;
    EXPECT_TRUE(map.empty());
    EXPECT_EQ(map.find(0), nullptr);
    map.erase(0);
    EXPECT_TRUE(keysOf(map).empty());
}

TEST(NumberMap, Entries_AreInTheOrderInWhichTheyWereAdded) {
    Map map;
    std::vector<std::uint64_t> keys;
    for (std::uint64_t key = 100; key > 0; --key) {
        map[key * key] += std::to_string(key);
        keys.push_back(key * key);
    }
    EXPECT_EQ(keysOf(map), keys);
    EXPECT_EQ(map.size(), 100U);
    EXPECT_EQ(*map.find(81), "9");
    map[81] += "!";
    EXPECT_EQ(*map.find(81), "9!");
    EXPECT_EQ(map.size(), 100U);
}

TEST(NumberMap, Clear_LeavesNothingAndRoomForOthers) {
    Map map;
    for (const int count : {3, 100, 40000, 5}) { // also more than it keeps room for
        for (int key = 0; key < count; ++key) {
            map[static_cast<std::uint64_t>(key) * 1024] = std::to_string(key);
        }
        map.clear();
        EXPECT_TRUE(map.empty());
        EXPECT_EQ(map.find(0), nullptr);
        map[1024] = "again";
        EXPECT_EQ(keysOf(map), std::vector<std::uint64_t>{1024}) << count;
        EXPECT_EQ(*map.find(1024), "again");
        map.clear();
    }
}

// The same as a map of the standard library, after any number of steps.
TEST(NumberMap, AnyOperations_AreAsWithAnotherMap) {
    std::mt19937 random(7); // NOLINT(cert-msc51-cpp): the same in each run
    for (const std::uint64_t stride : {std::uint64_t{1}, std::uint64_t{1} << 32U}) {
        Map map;
        std::map<std::uint64_t, std::string> other;
        for (int step = 0; step < 20000; ++step) {
            const std::uint64_t key = stride * (random() % 64);
            if (random() % 2 == 0) {
                map[key] = other[key] = std::to_string(step) + " is long enough to be in the heap";
            } else {
                map.erase(key);
                other.erase(key);
            }
            ASSERT_EQ(map.size(), other.size());
            const std::uint64_t asked = stride * (random() % 64);
            const auto expected = other.find(asked);
            const std::string* const found = map.find(asked);
            ASSERT_EQ(found != nullptr, expected != other.end());
            ASSERT_TRUE(found == nullptr || *found == expected->second);
        }
        const std::map<std::uint64_t, std::string> all(map.begin(), map.end());
        ASSERT_EQ(all, other);
    }
}

TEST(NumberMap, ManyEntries_ComeAndGo) {
    constexpr std::uint64_t kMany = 100000;
    Map map;
    for (int round = 0; round < 2; ++round) {
        for (std::uint64_t key = 0; key < kMany; ++key) {
            map[key] = "x";
        }
        ASSERT_EQ(map.size(), kMany);
        for (std::uint64_t key = 0; key < kMany; ++key) {
            ASSERT_NE(map.find(key), nullptr);
            map.erase(key);
        }
        ASSERT_TRUE(map.empty());
    }
}

}
}
