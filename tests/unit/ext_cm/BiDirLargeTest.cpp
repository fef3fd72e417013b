// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "BiDirScene.h"

#include "LoggingWrapper.h"
#include "PlainHost.h"

#include <algorithm>
#include <ctime>
#include <iterator>
#include <random>

// Sizes at which a step that is quadratic would not come to an end. The bound is generous: it
// separates minutes from seconds, also in an instrumented build.

namespace BiDirTests {
namespace {

constexpr double patience = 60; // seconds

class BiDirLarge : public Scene {
protected:
    BiDirLarge() {
        Orv::LoggingWrapper::instance()->setLevel(0);
        stage.script.keepCalls(false);
        modelOfXAndY();
        stage.model.moc("X").reference("ys", "Y", 0, 1'000'000);
    }

    ~BiDirLarge() override { EXPECT_LT(secondsOfWork() - mBegin, patience); }

    static Lines dns(const std::string& step, int first, int last) {
        Lines all;
        for (int i = first; i < last; ++i) {
            all.push_back(step + std::to_string(i));
        }
        return all;
    }

private:
    // Of this process, so that a machine with other work makes no difference.
    static double secondsOfWork() {
        return static_cast<double>(std::clock()) / static_cast<double>(CLOCKS_PER_SEC);
    }

    double mBegin = secondsOfWork();
};

TEST_F(BiDirLarge, DifferenceOfTwoLongLists_InOrderAndWithoutQuadraticSearch) {
    constexpr int size = 100'000;
    Scripted::Records records;
    Lines toAdd;
    Lines toRemove;
    utils.getMoRefDiff(records.container(Scripted::refs(dns("Y=", size / 2, size / 2 + size))),
                       records.container(Scripted::refs(dns("Y=", 0, size))), toAdd, toRemove);
    EXPECT_TRUE(toAdd == dns("Y=", size, size / 2 + size));
    EXPECT_TRUE(toRemove == dns("Y=", 0, size / 2));
}

// Of few and of many, with texts that stand there more than once, against one comparison for each
// pair.
TEST_F(BiDirLarge, DifferenceOfRandomLists_IsThatOfAllPairs) {
    std::mt19937 random(11);
    const auto someDns = [&random] {
        Lines lines(random() % 40);
        for (std::string& line : lines) {
            line = "Y=" + std::to_string(random() % 50);
        }
        return lines;
    };
    const auto missing = [](const Lines& lines, const Lines& among) {
        Lines result;
        std::copy_if(lines.begin(), lines.end(), std::back_inserter(result),
                     [&among](const std::string& line) {
                         return std::find(among.begin(), among.end(), line) == among.end();
                     });
        return result;
    };
    for (int round = 0; round < 2000; ++round) {
        const Lines newDns = someDns();
        const Lines oldDns = someDns();
        Scripted::Records records;
        Lines toAdd;
        Lines toRemove;
        utils.getMoRefDiff(records.container(Scripted::refs(newDns)),
                           records.container(Scripted::refs(oldDns)), toAdd, toRemove);
        ASSERT_EQ(toAdd, missing(newDns, oldDns));
        ASSERT_EQ(toRemove, missing(oldDns, newDns));
    }
}

TEST_F(BiDirLarge, TenThousandValuesReplacedHalf_EveryFarSideFollows) {
    constexpr int size = 10'000;
    for (const std::string& dn : dns("Y=", 0, size + size / 2)) {
        stage.world.mo(dn);
    }
    stage.world.mo("X=1");
    start();
    set(1, "X=1", "ys", dns("Y=", 0, size));
    EXPECT_EQ(set(1, "X=1", "ys", dns("Y=", size / 2, size + size / 2)), OrvOk);
    int wrong = 0;
    for (int i = 0; i < size + size / 2; ++i) {
        const Lines expected = i < size / 2 ? Lines() : Lines{"X=1"};
        wrong += refs("Y=" + std::to_string(i), "xs") == expected ? 0 : 1;
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(utils.getModifiedBackPointers(1).size(), size + size / 2 + 1U);
}

TEST_F(BiDirLarge, HundredThousandPairs_AreEachValidatedOnce) {
    constexpr int size = 100'000;
    start();
    for (const std::string& dn : dns("X=", 0, size)) {
        utils.addUpdatedBp(1, dn.c_str(), "ys");
    }
    // In the place of the scripted router and repository, which would take most of the time.
    validator.moRouter = PlainHost::router();
    validator.modelRepository = utils.modelRepository = PlainHost::repository();
    PlainHost::reads = 0;
    EXPECT_EQ(validate(1), OrvOk);
    EXPECT_TRUE(valid);
    EXPECT_EQ(PlainHost::reads, size);
}

TEST_F(BiDirLarge, HundredThousandAdditionsThatWait_AreFoundByKeyAndDroppedAtTheEnd) {
    constexpr int size = 100'000;
    start();
    stage.world.mo("X=1");
    set(1, "X=1", "ys", dns("Y=", 0, size));
    ASSERT_EQ(utils.pendingBackPointers.size(), size + 0U);
    for (const std::string& dn : dns("Y=", 0, size / 10)) {
        client.create(1, dn);
    }
    EXPECT_EQ(utils.pendingBackPointers.size(), size - size / 10 + 0U);
    client.finish(1);
    EXPECT_TRUE(utils.pendingBackPointers.empty());
}

// Each target that is given up asks for what its source has queued, also if that is long gone.
TEST_F(BiDirLarge, ManyTargetsGivenUp_WhatOthersHaveQueuedStays) {
    constexpr int size = 20'000;
    start();
    stage.world.mo("X=1");
    stage.world.mo("X=2").with("ys", Scripted::refs(dns("Y=", 0, size)));
    set(1, "X=1", "ys", dns("Y=", 0, size));
    set(1, "X=2", "ys", {});
    EXPECT_EQ(utils.pendingBackPointers.size(), size + 0U);
    set(1, "X=1", "ys", {});
    EXPECT_TRUE(utils.pendingBackPointers.empty());
}

}
}
