// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "store/MoTree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace OrvHost {
namespace {

/// How many places one looks at on average to find an entry, in a table of \p size places where an
/// entry takes the first free place from that of its hash on.
template <class HashAt>
double looksPerEntry(std::size_t entries, std::size_t size, const HashAt& hashAt) {
    std::vector<bool> isTaken(size);
    std::size_t looks = 0;
    for (std::size_t entry = 0; entry < entries; ++entry) {
        std::size_t place = hashAt(entry) % size;
        for (++looks; isTaken[place]; ++looks) {
            place = (place + 1) % size;
        }
        isTaken[place] = true;
    }
    return static_cast<double>(looks) / static_cast<double>(entries);
}

TEST(MoTreeTest, HashOf_DnsThatAreCounted_LieApart) {
    constexpr std::size_t kEntries = 100000;
    constexpr std::size_t kSize = 1U << 18U;
    for (const std::string parent :
         {"ManagedElement=1,Site=1,Antenna=", "Network=1,Node=", "ManagedElement=1,Mast="}) {
        const double looks = looksPerEntry(kEntries, kSize, [&](std::size_t number) {
            return MoTree::hashOf(parent + std::to_string(number));
        });
        // Hashes at random need 1.31.
        EXPECT_LT(looks, 1.6) << parent;
    }
}

TEST(MoTreeTest, Reclaim_ManyReplacedRecords_StopsAtTheLimit) {
    constexpr int kObjects = 1000;
    Model model;
    ClassDef node;
    node.name = "Node";
    model.classes.push_back(node);
    MoTree tree(model);
    TreeChange creation;
    for (int number = 0; number < kObjects; ++number) {
        const std::string name = std::to_string(number);
        NewMo one;
        one.parent = kRootNode;
        one.dnHash = MoTree::hashOf("Node=" + name);
        one.record = MoRecord(name, "");
        creation.created.push_back(std::move(one));
    }
    tree.apply(creation, 1, MoTree::OldRecords::Drop);
    TreeChange change;
    for (std::size_t number = 0; number < creation.created.size(); ++number) {
        change.modified.emplace_back(creation.created[number].node,
                                     MoRecord(std::to_string(number), "x"));
    }
    tree.apply(change, 2, MoTree::OldRecords::Keep);

    int calls = 0;
    for (; tree.oldestGarbage() <= 2; ++calls) {
        tree.reclaim(2, kObjects / 10);
    }
    EXPECT_EQ(calls, 10);
    EXPECT_EQ(tree.memory().history, 0U);
}

}
}
