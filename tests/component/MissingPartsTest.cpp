// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// A component that has not found everything in its host: what it still serves, and how the host
// repairs that.

#include "Names.h"
#include "Network.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

using namespace Scripted;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// The verdict on a transaction, which comes with OrvOk.
bool verdictOn(const Host& host, unsigned long txHandle) {
    bool result = true;
    EXPECT_EQ(host.resource().validate(txHandle, &result), OrvOk);
    return result;
}

}

/// A host in which nothing can be validated, because one of two things is missing that `start` does
/// not need.
class NoVerdict : public testing::TestWithParam<Part> {
protected:
    NoVerdict() {
        describeNetwork(host);
        host.without(GetParam()).start();
    }

    void expectFalseWithoutAWord(unsigned long txHandle) {
        host.forget();
        EXPECT_FALSE(verdictOn(host, txHandle));
        EXPECT_THAT(host.messages(), IsEmpty());
        EXPECT_THAT(host.logs(), IsEmpty());
    }

    Host host;
};

TEST_P(NoVerdict, TransactionThatWroteNothing_IsRefusedWithoutAWord) {
    expectFalseWithoutAWord(1);
}

TEST_P(NoVerdict, TransactionWithoutReferences_IsRefusedWithoutAWord) {
    EXPECT_EQ(host.client().set(1, unit("7"), "label", strings({"y"})), OrvOk);
    expectFalseWithoutAWord(1);
}

TEST_P(NoVerdict, TransactionWithReferencesThatKeepTheRules_IsRefusedWithoutAWord) {
    EXPECT_EQ(host.client().set(1, unit("7"), "cells", refs({cell("1")})), OrvOk);
    EXPECT_EQ(host.client().set(1, unit("7"), "site", refs({site("1")})), OrvOk);
    expectFalseWithoutAWord(1);
}

TEST_P(NoVerdict, StartedAgainWithThePartThere_TransactionsAreJudged) {
    EXPECT_EQ(host.with(GetParam()).startComponent(), OrvOk);
    EXPECT_EQ(host.client().set(1, unit("7"), "cells", refs({cell("1")})), OrvOk);
    EXPECT_TRUE(verdictOn(host, 1));
    EXPECT_EQ(host.client().set(2, unit("7"), "site", refs({site("1"), site("1")})), OrvOk);
    EXPECT_FALSE(verdictOn(host, 2));
    EXPECT_EQ(host.messages().size(), 1U);
}

INSTANTIATE_TEST_SUITE_P(Parts, NoVerdict,
                         testing::Values(Part::ModelRepository, Part::ThreadContext));

TEST(NoModel, WritesOfReferencesAndDeletions_AreServedAndLogged) {
    Host host;
    describeNetwork(host);
    host.without(Part::ModelRepository).start();
    EXPECT_EQ(host.client().set(1, unit("7"), "cells", refs({cell("1")})), OrvOk);
    EXPECT_THAT(host.world().references(cellInside("1"), "unit"), IsEmpty());
    const std::string text = "VekOamSpiModelRepository_4T pointer is null.";
    EXPECT_THAT(host.logs(), Contains("log 3 updateBackPointersForModify: " + text));
    EXPECT_EQ(host.client().remove(1, unit("8")), OrvOk);
    EXPECT_THAT(host.logs(), Contains("log 3 updateBackPointersForDelete: " + text));
}

// The bookkeeping has a router of its own, which `start` does without.
TEST(NoRouterForTheBookkeeping, WritesReachTheOtherRouterAndCannotBeJudged) {
    Host host;
    describeNetwork(host);
    host.without(Part::VekRouter3).start();
    host.logLevel(8);
    EXPECT_EQ(host.client().set(1, unit("7"), "cells", refs({cell("1")})), OrvOk);
    EXPECT_THAT(host.logs(), Contains("trace 0 updateBackPointersForModify: Failed to retrieve "
                                      "cells value from ManagedElement=1,Unit=7, return code = "
                                      "-1"));
    EXPECT_TRUE(verdictOn(host, 1)) << "nothing was recorded";
    EXPECT_EQ(host.client().create(1, kRoot, "Unit", "unitId", "9", {{"cells", refs({cell("1")})}}),
              OrvOk);
    EXPECT_THAT(host.world().references(cellInside("1"), "unit"), IsEmpty());
    EXPECT_FALSE(verdictOn(host, 1));
    EXPECT_EQ(host.client().remove(1, unit("7")), OrvOk);
    EXPECT_THAT(host.logs(), Contains("trace 0 updateBackpointers: Error code -1 received when "
                                      "reading attribute cells in ManagedElement=1,Unit=7."));
    EXPECT_THAT(host.calls("VekRouter3."), IsEmpty());
}

/// A first `start` that fails at the last of the three routers, with the others started by then.
class FailedStart : public testing::Test {
protected:
    FailedStart() {
        describeNetwork(host);
        host.without(Part::Router3_1).load();
        EXPECT_EQ(host.init(), OrvOk);
        EXPECT_EQ(host.startComponent(), OrvFailure);
        host.forget();
    }

    Host host;
};

// The transaction table would have been the last thing to be looked up.
TEST_F(FailedStart, WhatMustJoinATransaction_IsAFailureAndReachesNobody) {
    EXPECT_EQ(host.client().set(1, unit("7"), "label", strings({"y"})), OrvFailure);
    EXPECT_THAT(host.calls(), IsEmpty());
    EXPECT_THAT(host.logs(), Contains("log 3 getTxData: Transaction 1 cannot be joined without the "
                                      "host's transaction table"));
    EXPECT_TRUE(host.client().exists(1, unit("7")).thing);
    EXPECT_EQ(host.client1().set(1, unit("7"), "label", strings({"y"})), OrvOk);
}

TEST_F(FailedStart, Stop_LetsGoOfWhatHasBeenStarted) {
    EXPECT_TRUE(verdictOn(host, 1));
    EXPECT_EQ(host.stopComponent(), OrvOk);
    EXPECT_EQ(host.client().exists(1, unit("7")).code, OrvNotActive);
    EXPECT_EQ(host.client1().set(1, unit("7"), "label", strings({"y"})), OrvNotActive);
    EXPECT_FALSE(verdictOn(host, 1));
    host.forget();
    EXPECT_EQ(host.with(Part::Router3_1).startComponent(), OrvOk);
    EXPECT_THAT(host.calls("Portal1."),
                ElementsAre(kAskRouter1, kAskRouter3, kAskRouter3_1, kAskTransaction));
    EXPECT_EQ(host.client3_1().set(1, unit("7"), {{"label", strings({"y"})}}), OrvOk);
}

TEST_F(FailedStart, StartedAgainWithTheRouterThere_EverythingIsServed) {
    EXPECT_EQ(host.with(Part::Router3_1).startComponent(), OrvOk);
    EXPECT_THAT(host.calls("Portal1."), ElementsAre(kAskRouter3_1, kAskTransaction));
    EXPECT_EQ(host.client3_1().set(1, unit("7"), {{"cells", refs({cell("1")})}}), OrvOk);
    EXPECT_THAT(host.world().references(cellInside("1"), "unit"), ElementsAre(unitInside("7")));
    EXPECT_TRUE(verdictOn(host, 1));
}
