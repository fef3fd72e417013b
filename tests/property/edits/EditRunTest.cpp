// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Plans that end in the middle: what the caller learns of it.

#include "EditWorld.h"
#include "client/ClientSession.h"
#include "client/edits/EditPlan.h"

#include <gtest/gtest.h>

namespace EditTests {
namespace {

constexpr const char* kArea = "ManagedElement=east,Area=9";

class EditRunTest : public testing::Test {
protected:
    EditRunTest() { mSession.begin("t"); }
    ~EditRunTest() override { mSession.abort(*mSession.transactions().current()); }

    static PlannedCall create(const std::string& dn) { return {PlannedCall::Kind::Create, dn, {}}; }

    void run(const EditPlan& plan, const CancellationToken* token = nullptr) {
        mSession.write([&](unsigned long txHandle) {
            runPlan(plan, mWorld.model(), mWorld.clients(), txHandle, token);
        });
    }

    std::size_t writes() { return mSession.transactions().current()->writes; }

    EditWorld mWorld;
    ClientSession mSession{mWorld.host(), mWorld.clients()};
};

TEST_F(EditRunTest, Refused_InTheMiddle_NamesTheCallAndCountsAsAWrite) {
    try {
        run({{create(kArea), create(kArea), create("ManagedElement=east,Area=8")}});
        FAIL() << "nothing was refused";
    } catch (const PlanRefusedError& error) {
        EXPECT_EQ(error.done(), 1U);
        EXPECT_EQ(error.call().kind, PlannedCall::Kind::Create);
        EXPECT_EQ(error.call().dn, kArea);
        EXPECT_EQ(error.code(), OrvAlreadyExist);
    }
    EXPECT_EQ(writes(), 1U);
}

TEST_F(EditRunTest, Refused_AtTheFirstCall_CountsAsNoWrite) {
    const EditPlan plan{{{PlannedCall::Kind::Delete, kArea, {}}}};
    EXPECT_THROW(run(plan), OperationError);
    EXPECT_EQ(writes(), 0U);
}

TEST_F(EditRunTest, Cancelled_SaysHowManyCallsWereMade) {
    CancellationToken token;
    token.cancel();
    try {
        run({{create(kArea)}}, &token);
        FAIL() << "nothing was cancelled";
    } catch (const PlanCancelledError& error) {
        EXPECT_EQ(error.done(), 0U);
    }
    EXPECT_EQ(writes(), 0U);
}

}
}
