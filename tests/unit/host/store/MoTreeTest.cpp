// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "store/MoTree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
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

/// Adds an object of the only class. \p dn is its DN.
NodeId add(MoTree& tree, CommitNumber at, NodeId parent, const std::string& dn) {
    TreeChange change;
    NewMo one;
    one.parent = parent;
    one.dnHash = MoTree::hashOf(dn);
    one.record = MoRecord(dn.substr(dn.rfind('=') + 1), "");
    change.created.push_back(std::move(one));
    tree.apply(change, at, MoTree::OldRecords::Drop);
    return change.created.front().node;
}

TEST(MoTreeTest, Find_ManyParentsKept_FindsWhatIsThereAndNothingElse) {
    Model model;
    ClassDef node;
    node.name = "Node";
    model.classes.push_back(node);
    MoTree tree(model);
    // More parents than are kept, some with equal names, some with DNs too long to be kept.
    std::vector<std::string> dns;
    std::vector<NodeId> nodes;
    CommitNumber commit = 0;
    const auto put = [&](NodeId parent, const std::string& dn) {
        nodes.push_back(add(tree, ++commit, parent, dn));
        dns.push_back(dn);
        return nodes.back();
    };
    for (const std::string& top : {std::string("1"), std::string("2"), std::string(200, 'x')}) {
        const NodeId above = put(kRootNode, "Node=" + top);
        for (const std::string middle : {"1", "2", "3"}) {
            const std::string dn = "Node=" + top + ",Node=" + middle;
            const NodeId parent = put(above, dn);
            put(parent, dn + ",Node=1");
            put(parent, dn + ",Node=2");
        }
    }
    ParentsFoundLast parents;
    for (std::size_t step = 1; step <= dns.size(); ++step) { // neighbours first, then far apart
        for (std::size_t at = 0; at < dns.size(); ++at) {
            const std::size_t next = at * step % dns.size();
            EXPECT_EQ(tree.find(HashedText(dns[next]), commit, parents), nodes[next]) << dns[next];
            for (const std::string& other : {dns[next] + ",Node=4", "Node=1," + dns[next],
                                             dns[next].substr(1), dns[next] + "1"}) {
                EXPECT_EQ(tree.find(HashedText(other), commit, parents), tree.find(other, commit))
                    << other;
            }
        }
    }
}

// Only the DN decides, also where a table of hashes does not tell two apart.
TEST(MoTreeTest, Find_SameHashBelowAnotherParent_ComparesWhatIsAbove) {
    Model model;
    ClassDef node;
    node.name = "Node";
    model.classes.push_back(node);
    MoTree tree(model);
    const NodeId parent = add(tree, 1, kRootNode, "Node=1");
    TreeChange change;
    NewMo one;
    one.parent = parent;
    one.dnHash = MoTree::hashOf("Node=2,Node=7"); // of a DN that is not there
    one.record = MoRecord("7", "");
    change.created.push_back(std::move(one));
    tree.apply(change, 2, MoTree::OldRecords::Drop);
    ParentsFoundLast parents;
    parents.note(parent, "Node=1");
    EXPECT_EQ(tree.find(HashedText("Node=2,Node=7"), 2, parents), kNoNode);
    EXPECT_EQ(tree.find(HashedText("Node=1"), 2, parents), parent);
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
