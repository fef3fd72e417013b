// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "model/ModelWalk.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

namespace OrvExtCmRouterService {
namespace {

using Handle = unsigned long long;
using Handles = std::vector<Handle>;

/// One step of a scripted list: its answer, and what it finds (0: it leaves the handle alone).
struct Step {
    OrvReturnT code;
    Handle found;
};

/// A list whose steps are given beforehand; the last one repeats.
class List {
public:
    explicit List(std::vector<Step> steps) : mSteps(std::move(steps)) {}

    OrvReturnT first(Handle* found) { return take(found); }
    OrvReturnT next(Handle current, Handle* found) {
        asked.push_back(current);
        return take(found);
    }

    Handles asked; ///< the handles that next steps were made from

private:
    OrvReturnT take(Handle* found) {
        const Step step = mSteps[mPosition];
        mPosition += mPosition + 1 < mSteps.size() ? 1U : 0U;
        if (step.found != 0) {
            *found = step.found;
        }
        return step.code;
    }

    std::vector<Step> mSteps;
    std::size_t mPosition = 0;
};

auto untilNonZero(List& list) {
    return walkUntilNonZero<Handle>(
        ORV_TRACE_POINT, [&](Handle* found) { return list.first(found); },
        [&](Handle current, Handle* found) { return list.next(current, found); });
}

auto untilNotExist(List& list) {
    return walkUntilNotExist<Handle>(
        ORV_TRACE_POINT, [&](Handle* found) { return list.first(found); },
        [&](Handle current, Handle* found) { return list.next(current, found); });
}

template <class Walk>
Handles visited(Walk& walk, std::size_t atMost = std::numeric_limits<std::size_t>::max()) {
    Handles seen;
    for (; walk.more() && seen.size() < atMost; walk.advance()) {
        seen.push_back(walk.current());
    }
    return seen;
}

TEST(ModelWalk, UntilNonZero_EmptyList_VisitsNothing) {
    List list({{OrvNotExist, 0}});
    auto walk = untilNonZero(list);
    EXPECT_EQ(visited(walk), Handles());
    EXPECT_EQ(walk.code(), OrvNotExist);
    EXPECT_EQ(list.asked, Handles());
}

TEST(ModelWalk, UntilNonZero_EachStepFromTheOneBefore_InTheListsOrder) {
    List list({{OrvOk, 7}, {OrvOk, 3}, {OrvOk, 9}, {OrvNotExist, 0}});
    auto walk = untilNonZero(list);
    EXPECT_EQ(visited(walk), (Handles{7, 3, 9}));
    EXPECT_EQ(list.asked, (Handles{7, 3, 9}));
    EXPECT_EQ(walk.code(), OrvNotExist);
}

TEST(ModelWalk, UntilNonZero_AnyOtherCode_EndsItAndIsReported) {
    List list({{OrvOk, 7}, {-5, 8}, {OrvOk, 9}});
    auto walk = untilNonZero(list);
    EXPECT_EQ(visited(walk), Handles{7});
    EXPECT_EQ(walk.code(), -5);
    EXPECT_EQ(walk.current(), 7U);
}

TEST(ModelWalk, UntilNonZero_FailingFirstStep_VisitsNothing) {
    List list({{4, 7}});
    auto walk = untilNonZero(list);
    EXPECT_EQ(visited(walk), Handles());
    EXPECT_EQ(walk.code(), 4);
}

TEST(ModelWalk, UntilNonZero_ZeroHandle_IsVisitedLikeAnyOther) {
    List list({{OrvOk, 0}, {OrvNotExist, 0}});
    auto walk = untilNonZero(list);
    EXPECT_EQ(visited(walk), Handles{0});
}

TEST(ModelWalk, UntilNonZeroFrom_StartsAtTheGivenHandle) {
    List list({{OrvOk, 3}, {OrvNotExist, 0}});
    auto walk =
        walkUntilNonZeroFrom<Handle>(ORV_TRACE_POINT, 7, [&](Handle current, Handle* found) {
            return list.next(current, found);
        });
    EXPECT_EQ(visited(walk), (Handles{7, 3}));
    EXPECT_EQ(list.asked, (Handles{7, 3}));
}

TEST(ModelWalk, UntilNotExist_EmptyList_VisitsNothing) {
    List list({{OrvNotExist, 0}});
    auto walk = untilNotExist(list);
    EXPECT_EQ(visited(walk), Handles());
    EXPECT_EQ(walk.current(), 0U);
}

TEST(ModelWalk, UntilNotExist_VisitsAll_AndStandsWhereTheLastStepLeftIt) {
    List list({{OrvOk, 7}, {OrvOk, 3}, {OrvNotExist, 0}});
    auto walk = untilNotExist(list);
    EXPECT_EQ(visited(walk), (Handles{7, 3}));
    EXPECT_EQ(walk.current(), 3U); // the last step found what the next step before it had found
}

TEST(ModelWalk, UntilNotExist_OnlyOne_StandsAtZeroAfterwards) {
    List list({{OrvOk, 7}, {OrvNotExist, 0}});
    auto walk = untilNotExist(list);
    EXPECT_EQ(visited(walk), Handles{7});
    EXPECT_EQ(walk.current(), 0U); // no next step has found anything
}

TEST(ModelWalk, UntilNotExist_FailingStepThatMoves_IsWalkedPast) {
    List list({{OrvOk, 7}, {-5, 8}, {-1, 9}, {3, 10}, {OrvOk, 11}, {OrvNotExist, 0}});
    auto walk = untilNotExist(list);
    EXPECT_EQ(visited(walk), (Handles{7, 8, 9, 10, 11}));
}

TEST(ModelWalk, UntilNotExist_OneFailingStepThatStands_IsWalkedPast) {
    List list(
        {{OrvOk, 7}, {OrvOk, 8}, {-5, 0}, {OrvOk, 9}, {-5, 0}, {OrvOk, 10}, {OrvNotExist, 0}});
    auto walk = untilNotExist(list);
    EXPECT_EQ(visited(walk), (Handles{7, 8, 8, 9, 9, 10}));
}

TEST(ModelWalk, UntilNotExist_TwoFailingStepsThatStand_EndIt) {
    List list({{OrvOk, 7}, {OrvOk, 8}, {-5, 0}, {-5, 0}, {OrvOk, 9}});
    auto walk = untilNotExist(list);
    EXPECT_EQ(visited(walk, 100), (Handles{7, 8, 8}));
    EXPECT_EQ(walk.current(), 8U);
    EXPECT_EQ(list.asked, (Handles{7, 8, 8}));
}

TEST(ModelWalk, UntilNotExist_RepositoryThatFailsForEver_IsLeftAfterTwoSteps) {
    List list({{-1, 0}});
    auto walk = untilNotExist(list);
    EXPECT_EQ(visited(walk, 100), Handles{0});
    EXPECT_EQ(list.asked, Handles{0});
}

TEST(ModelWalk, UntilNotExist_FailsForEverAfterTheFirst_IsLeft) {
    List list({{OrvOk, 7}, {-1, 0}});
    auto walk = untilNotExist(list);
    // The first failing step moves from 7 to what no next step has found yet, the next two stand.
    EXPECT_EQ(visited(walk, 100), (Handles{7, 0, 0}));
}

TEST(ModelWalk, UntilNotExist_GoodStepThatStands_DoesNotEndIt) {
    List list({{OrvOk, 7}, {OrvOk, 7}, {OrvOk, 7}, {OrvOk, 7}, {OrvNotExist, 0}});
    auto walk = untilNotExist(list);
    EXPECT_EQ(visited(walk, 100), (Handles{7, 7, 7, 7}));
}

}
}
