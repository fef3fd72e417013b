// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "store/DnIndex.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>

namespace OrvHost {
namespace {

NodeId findNode(const DnIndex& index, std::uint32_t hash, NodeId wanted) {
    return index.find(hash, [wanted](NodeId node) { return node == wanted; });
}

TEST(DnIndexTest, Find_EqualHashes_AsksForEach) {
    DnIndex index;
    index.insert(7, 1);
    index.insert(7, 2);
    std::set<NodeId> asked;
    EXPECT_EQ(index.find(7,
                         [&](NodeId node) {
                             asked.insert(node);
                             return false;
                         }),
              kNoNode);
    EXPECT_EQ(asked, (std::set<NodeId>{1, 2}));
    EXPECT_EQ(findNode(index, 7, 2), 2U);
    EXPECT_EQ(findNode(index, 8, 2), kNoNode);
}

TEST(DnIndexTest, InsertErase_ManyCollisions_FindsExactlyWhatIsThere) {
    DnIndex index;
    std::mt19937 random(1); // NOLINT: the same sequence each time
    std::map<NodeId, std::uint32_t> expected;
    for (NodeId next = 1; next < 3000; ++next) {
        const auto hash =
            static_cast<std::uint32_t>(random() % 100); // far more objects than hashes
        index.insert(hash, next);
        expected[next] = hash;
        if (random() % 3 != 0) {
            auto victim = expected.begin();
            std::advance(victim, random() % std::min<std::size_t>(expected.size(), 20));
            index.erase(victim->second, victim->first);
            expected.erase(victim);
        }
        if (next % 500 == 0) {
            for (const auto& entry : expected) {
                ASSERT_EQ(findNode(index, entry.second, entry.first), entry.first);
            }
        }
    }
    for (NodeId node = 1; node < 3000; ++node) {
        for (std::uint32_t hash = 0; hash < 100; hash += 13) {
            const bool isThere = expected.count(node) > 0 && expected[node] == hash;
            ASSERT_EQ(findNode(index, hash, node) == node, isThere);
        }
    }
}

TEST(DnIndexTest, Erase_UnknownNode_ChangesNothing) {
    DnIndex index;
    index.insert(7, 1);
    index.erase(7, 2);
    index.erase(9, 1);
    EXPECT_EQ(findNode(index, 7, 1), 1U);
}

}
}
