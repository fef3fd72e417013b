// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "associations/PendingAdditions.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <vector>

namespace OrvExtCmRouterService {
namespace {

int compared = 0;

bool beginsWith(const std::string& text, const std::string& prefix) {
    ++compared;
    return text.starts_with(prefix);
}

class PendingAdditionsTest : public testing::Test {
protected:
    void add(unsigned long tx, const std::string& target, const std::string& source,
             const std::string& attribute) {
        pending.add(target.c_str(), {tx, "xs", 1, source, true, attribute});
    }

    /// "target <- source.attribute (tx)"
    std::vector<std::string> waiting() const {
        std::vector<std::string> lines;
        for (const auto& [target, addition] : store) {
            lines.push_back(target + " <- " + addition.sourceDn + "." + addition.sourceAttribute +
                            " (" + std::to_string(addition.txHandle) + ")");
        }
        return lines;
    }

    PendingAdditions::Store store;
    PendingAdditions pending{store};
};

using Lines = std::vector<std::string>;

TEST_F(PendingAdditionsTest, ActiveRecords_AreThoseOfTheTransactionAndTheWholeDnInTheirOrder) {
    add(1, "Y=1", "X=3", "a");
    add(2, "Y=1", "X=9", "a");
    add(1, "Y=10", "X=9", "a");
    add(1, "Y=1", "X=2", "a");
    add(1, "Y=1", "X=1", "a");
    store.begin()->second.active = false; // that of X=3
    Lines sources;
    for (const PendingAdditions::Record record : pending.activeRecords(1, "Y=1")) {
        sources.push_back(record->second.sourceDn);
    }
    EXPECT_EQ(sources, (Lines{"X=2", "X=1"}));
    EXPECT_TRUE(pending.activeRecords(1, "Y=2").empty());
}

TEST_F(PendingAdditionsTest, DropSources_OfAllAttributes_GoesByPrefixAndTransaction) {
    for (const char* attribute : {"a", "b", "c"}) {
        add(1, "Y=1", "X=1", attribute);
        add(1, "Y=2", "X=10", attribute);
        add(1, "Y=3", "X=0", attribute);
    }
    add(2, "Y=4", "X=1", "a");
    add(1, "Y=5", "X=2", "a");
    pending.dropSources(1, "X=1", &beginsWith);
    EXPECT_EQ(waiting(), (Lines{"Y=3 <- X=0.a (1)", "Y=3 <- X=0.b (1)", "Y=3 <- X=0.c (1)",
                                "Y=4 <- X=1.a (2)", "Y=5 <- X=2.a (1)"}));
    pending.dropSources(1, "", &beginsWith);
    EXPECT_EQ(waiting(), Lines{"Y=4 <- X=1.a (2)"});
}

TEST_F(PendingAdditionsTest, DropSources_OfOneAttribute_LeavesTheOthers) {
    for (const char* attribute : {"a", "ab", "b"}) {
        add(1, "Y=1", "X=1", attribute);
        add(1, "Y=2", "X=1", attribute);
    }
    pending.dropSources(1, "X=1", "a", &beginsWith);
    EXPECT_EQ(waiting(), (Lines{"Y=1 <- X=1.ab (1)", "Y=1 <- X=1.b (1)", "Y=2 <- X=1.ab (1)",
                                "Y=2 <- X=1.b (1)"}));
    pending.dropSources(1, "X=1", "", &beginsWith);
    pending.dropSources(1, "X=1", "z", &beginsWith);
    EXPECT_EQ(store.size(), 4U);
}

TEST_F(PendingAdditionsTest, BytesAboveAscii_AreOrderedLikeTheTextsThatBeginWithThem) {
    add(1, "Y=1", "X=\xc3\xa5", "a");
    add(1, "Y=2", "X=\xc3\xa5,Z=1", "a");
    add(1, "Y=3", "X=z", "a");
    pending.dropSources(1, "X=\xc3\xa5", "a", &beginsWith);
    EXPECT_EQ(waiting(), Lines{"Y=3 <- X=z.a (1)"});
}

TEST_F(PendingAdditionsTest, Drop_OneOfManyOfOneSource_LeavesTheOthers) {
    add(1, "Y=1", "X=1", "a");
    add(1, "Y=1", "X=1", "a");
    add(1, "Y=2", "X=1", "a");
    pending.drop(store.begin());
    EXPECT_EQ(waiting(), (Lines{"Y=1 <- X=1.a (1)", "Y=2 <- X=1.a (1)"}));
    pending.dropSources(1, "X=1", "a", &beginsWith);
    EXPECT_TRUE(store.empty());
}

// Additions come and go in order, against it and in no order; dropSources finds what is left.
TEST_F(PendingAdditionsTest, AddAndDrop_InEveryOrder_LeaveWhatWasNotDropped) {
    constexpr int count = 40;
    for (const int step : {1, 39, 7, 13}) {
        for (int i = 0; i < count; ++i) {
            const std::string number = std::to_string(i * step % count);
            add(1, "Y=" + number, "X=" + number, i % 2 == 0 ? "a" : "b");
            add(2, "Y=" + number, "X=1", "a");
        }
        for (const int other : {1, 39, 11}) {
            const std::string target = "Y=" + std::to_string(other * 3 % count);
            for (const PendingAdditions::Record record : pending.activeRecords(1, target)) {
                pending.drop(record);
            }
            EXPECT_TRUE(pending.activeRecords(1, target).empty()) << target;
            EXPECT_EQ(pending.activeRecords(2, target).size(), 1U) << target;
        }
        EXPECT_EQ(store.size(), 2U * count - 3);
        pending.dropSources(1, "X=", &beginsWith);
        EXPECT_EQ(store.size(), count + 0U);
        pending.dropTransaction(2);
        EXPECT_TRUE(store.empty());
        EXPECT_TRUE(pending.isEmpty());
    }
}

// Few targets, so that many additions wait for one: each transaction must find its own in the order
// in which they came, wherever one came or went before.
TEST_F(PendingAdditionsTest, RandomAdditionsAndDrops_KeepTheOrderOfEachTarget) {
    std::mt19937 random(7);
    std::map<std::string, Lines> expected;
    for (int step = 0; step < 5000; ++step) {
        const std::string target = "Y=" + std::to_string(random() % 30);
        Lines& sources = expected[target];
        if (random() % 3 != 0) {
            sources.push_back("X=" + std::to_string(step));
            add(1, target, sources.back(), "a");
        } else if (!sources.empty()) {
            pending.drop(pending.activeRecords(1, target).front());
            sources.erase(sources.begin());
        }
        const std::string other = "Y=" + std::to_string(random() % 30);
        Lines found;
        for (const PendingAdditions::Record record : pending.activeRecords(1, other)) {
            found.push_back(record->second.sourceDn);
        }
        ASSERT_EQ(found, expected[other]) << other << " after step " << step;
    }
}

TEST_F(PendingAdditionsTest, DropTransaction_TakesNothingElse) {
    for (const unsigned long tx : {0UL, 1UL, 2UL}) {
        add(tx, "Y=1", "X=1", "a");
        add(tx, "Y=1", "X=2", "b");
    }
    pending.dropTransaction(1);
    pending.dropTransaction(7);
    EXPECT_EQ(waiting(), (Lines{"Y=1 <- X=1.a (0)", "Y=1 <- X=2.b (0)", "Y=1 <- X=1.a (2)",
                                "Y=1 <- X=2.b (2)"}));
}

// What is dropped is compared, and one more: never what other sources have queued.
TEST_F(PendingAdditionsTest, DropSources_LooksAtWhatIsDroppedAndNoFurther) {
    constexpr int others = 1000;
    for (int i = 0; i < others; ++i) {
        add(1, "Y=" + std::to_string(i), "X=3", "a");
        add(1, "Y=" + std::to_string(i), "X=1", "b");
        add(2, "Y=" + std::to_string(i), "X=1", "a");
    }
    add(1, "Y=1", "X=1", "a");
    add(1, "Y=2", "X=1", "a");
    compared = 0;
    pending.dropSources(1, "X=1", "a", &beginsWith);
    EXPECT_EQ(compared, 3);
    EXPECT_EQ(store.size(), 3U * others);
    compared = 0;
    pending.dropSources(1, "X=1", "a", &beginsWith);
    EXPECT_EQ(compared, 1);
    compared = 0;
    pending.dropSources(1, "X=2", &beginsWith);
    EXPECT_EQ(compared, 1) << "the one attribute that has a source after this one";
    EXPECT_EQ(store.size(), 3U * others);
}

}
}
