// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "runtime/StartPlan.h"

#include <gmock/gmock.h>

#include <memory>

namespace OrvHost {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// Components as lists of what they offer and require; identities are kept by pointer.
class StartPlanTest : public testing::Test {
protected:
    struct Parts {
        std::vector<VekMgmtSpiInterface_1*> offers;
        std::vector<VekMgmtSpiInterface_1*> needs;
        OrvMgmtSpiComponent_1 record = {};
    };

    void add(const char* name, std::vector<VekMgmtSpiInterface_1*> offers,
             std::vector<VekMgmtSpiInterface_1*> needs) {
        auto parts = std::make_unique<Parts>();
        offers.push_back(nullptr);
        needs.push_back(nullptr);
        parts->offers = std::move(offers);
        parts->needs = std::move(needs);
        parts->record.componentName = name;
        parts->record.interfaceArray = parts->offers.data();
        parts->record.dependencyArray = parts->needs.data();
        mComponents.push_back(&parts->record);
        mParts.push_back(std::move(parts));
    }

    std::vector<StartStep> plan() { return StartPlan(mHost, mComponents).steps(); }

    static std::vector<std::size_t> order(const std::vector<StartStep>& steps) {
        std::vector<std::size_t> result;
        for (const StartStep& step : steps) {
            result.push_back(step.component);
        }
        return result;
    }

    const StartStep& stepOf(const std::vector<StartStep>& steps, std::size_t component) {
        for (const StartStep& step : steps) {
            if (step.component == component) {
                return step;
            }
        }
        throw std::logic_error("no such step");
    }

    std::vector<const VekMgmtSpiInterface_1*> mHost;
    std::vector<const OrvMgmtSpiComponent_1*> mComponents;
    std::vector<std::unique_ptr<Parts>> mParts;
    VekMgmtSpiInterface_1 mA{"CompA", "IfA", "1"};
    VekMgmtSpiInterface_1 mB{"CompB", "IfB", "1"};
    VekMgmtSpiInterface_1 mC{"CompC", "IfC", "1"};
};

TEST_F(StartPlanTest, Plan_NoComponents_HasNoSteps) {
    EXPECT_THAT(plan(), IsEmpty());
}

TEST_F(StartPlanTest, Plan_ComponentWithNullArrays_StartsWithoutProblem) {
    OrvMgmtSpiComponent_1 bare = {};
    bare.componentName = "bare";
    mComponents.push_back(&bare);
    const auto steps = plan();
    ASSERT_EQ(steps.size(), 1u);
    EXPECT_EQ(steps[0].problem, "");
}

TEST_F(StartPlanTest, Plan_RequirementRegisteredLater_ComesFirst) {
    add("needsB", {}, {&mB});
    add("offersB", {&mB}, {});
    const auto steps = plan();
    EXPECT_THAT(order(steps), ElementsAre(1u, 0u));
    EXPECT_THAT(stepOf(steps, 0).providers, ElementsAre(1u));
}

TEST_F(StartPlanTest, Plan_Independent_KeepsOrderOfRegistration) {
    add("first", {&mA}, {});
    add("second", {&mB}, {});
    EXPECT_THAT(order(plan()), ElementsAre(0u, 1u));
}

TEST_F(StartPlanTest, Plan_HostOffersToo_NoProviderIsNeeded) {
    mHost.push_back(&mB);
    add("needsB", {}, {&mB});
    add("offersB", {&mB}, {&mA});
    const auto steps = plan();
    EXPECT_THAT(stepOf(steps, 0).providers, IsEmpty());
    EXPECT_EQ(stepOf(steps, 0).problem, "");
}

TEST_F(StartPlanTest, Plan_NullFields_AreMetByAnything) {
    mHost.push_back(&mA);
    VekMgmtSpiInterface_1 wanted{nullptr, "IfA", nullptr};
    add("needsAnyA", {}, {&wanted});
    EXPECT_EQ(plan()[0].problem, "");
}

TEST_F(StartPlanTest, Plan_OtherVersion_IsMissing) {
    mHost.push_back(&mA);
    VekMgmtSpiInterface_1 wanted{"CompA", "IfA", "2"};
    add("needsNewer", {}, {&wanted});
    EXPECT_EQ(plan()[0].problem, "requires CompA/IfA version 2, which nobody offers");
}

TEST_F(StartPlanTest, Plan_SeveralMissing_NamesAll) {
    VekMgmtSpiInterface_1 any{nullptr, "IfX", nullptr};
    add("needsTwo", {}, {&mA, &any});
    EXPECT_EQ(plan()[0].problem, "requires CompA/IfA version 1, which nobody offers; "
                                 "requires any/IfX version any, which nobody offers");
}

TEST_F(StartPlanTest, Plan_OwnInterfaceRequired_IsNoCycle) {
    add("selfSufficient", {&mA}, {&mA});
    const auto steps = plan();
    EXPECT_EQ(steps[0].problem, "");
    EXPECT_THAT(steps[0].providers, IsEmpty());
}

TEST_F(StartPlanTest, Plan_CycleOfTwo_IsReportedOnBothAndOnlyThere) {
    add("one", {&mA}, {&mB});
    add("two", {&mB}, {&mA});
    add("bystander", {&mC}, {});
    const auto steps = plan();
    ASSERT_EQ(steps.size(), 3u);
    EXPECT_EQ(stepOf(steps, 0).problem,
              "is part of a dependency cycle: one requires two requires one");
    EXPECT_EQ(stepOf(steps, 1).problem, stepOf(steps, 0).problem);
    EXPECT_EQ(stepOf(steps, 2).problem, "");
}

TEST_F(StartPlanTest, Plan_LeadsIntoCycle_IsNotPartOfIt) {
    add("outside", {}, {&mA});
    add("one", {&mA}, {&mB});
    add("two", {&mB}, {&mA});
    const auto steps = plan();
    EXPECT_EQ(stepOf(steps, 0).problem, "");
    EXPECT_THAT(stepOf(steps, 0).providers, ElementsAre(1u));
    EXPECT_THAT(stepOf(steps, 1).problem, HasSubstr("one requires two requires one"));
    EXPECT_THAT(order(steps), ElementsAre(2u, 1u, 0u));
}

TEST_F(StartPlanTest, Plan_CycleOfThree_NamesAllThree) {
    add("one", {&mA}, {&mB});
    add("two", {&mB}, {&mC});
    add("three", {&mC}, {&mA});
    for (const StartStep& step : plan()) {
        EXPECT_THAT(step.problem, HasSubstr("one requires two requires three requires one"));
    }
}

}
}
