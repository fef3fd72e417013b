// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// What the component keeps for a transaction goes when that transaction is finished: not with
// another of its phases, and not with the end of another transaction.

#include "Network.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

using namespace Scripted;
using testing::ElementsAre;
using testing::IsEmpty;

class Phases : public Network {
protected:
    /// Lets the component keep one thing of each kind for transaction 1.
    void keepOneOfEachKind() {
        ASSERT_EQ(client().set(1, unit("7"), "cells", refs({cell("9")})), OrvOk);
        ASSERT_EQ(client().set(1, unit("8"), "site", refs({site("1"), site("1")})), OrvOk);
        iterator = client().open(1, kRoot, "Unit").thing;
        host.mo(unitInside("8")).with("place", refs({cellInside("1")}));
        copied = host.client1().get(1, unit("8"), "place").thing;
        host.forget();
    }

    void expectAllKept() {
        EXPECT_EQ(readValue(copied), refs({cell("1")}));
        EXPECT_EQ(client().next(iterator).thing, "7");
        bool result = true;
        EXPECT_EQ(host.resource().validate(1, &result), OrvOk);
        EXPECT_FALSE(result) << "the recorded sites are too many";
        EXPECT_EQ(client().create(1, kRoot, "Cell", "cellId", "9"), OrvOk);
        EXPECT_THAT(host.world().references(cellInside("9"), "unit"), ElementsAre(unitInside("7")));
        EXPECT_THAT(host.calls("Transaction."), IsEmpty()) << "still joined";
    }

    unsigned long long iterator = 0;
    OrvMoAttributeValueContainer* copied = nullptr;
};

TEST_F(Phases, AllButFinish_KeepEverything) {
    keepOneOfEachKind();
    const OrvOamSpiTransactionalResource_2& resource = host.resource();
    EXPECT_EQ(resource.join(1), OrvOk);
    EXPECT_EQ(resource.prepare(1), OrvOk);
    EXPECT_EQ(resource.commit(1), OrvOk);
    EXPECT_EQ(resource.abort(1), OrvOk);
    EXPECT_THAT(host.calls(), IsEmpty());
    expectAllKept();
}

TEST_F(Phases, Validate_KeepsEverything) {
    keepOneOfEachKind();
    bool result = true;
    EXPECT_EQ(host.resource().validate(1, &result), OrvOk);
    EXPECT_FALSE(result);
    expectAllKept();
}

TEST_F(Phases, FinishOfAnother_KnownOrNot_KeepsEverything) {
    keepOneOfEachKind();
    ASSERT_EQ(client().set(2, unit("7"), "label", strings({"y"})), OrvOk);
    host.forget();
    EXPECT_EQ(host.resource().finish(2), OrvOk);
    EXPECT_EQ(host.resource().finish(99), OrvOk);
    expectAllKept();
}

TEST_F(Phases, Finish_DropsEverything) {
    keepOneOfEachKind();
    EXPECT_EQ(host.resource().finish(1), OrvOk);
    EXPECT_THAT(host.calls(), IsEmpty());
    EXPECT_EQ(client().next(iterator).code, OrvNotActive);
    EXPECT_TRUE(validate(1));
    EXPECT_EQ(client().create(1, kRoot, "Cell", "cellId", "9"), OrvOk);
    EXPECT_THAT(host.world().references(cellInside("9"), "unit"), IsEmpty());
    EXPECT_EQ(host.calls("Transaction.").size(), 1U) << "a transaction of its own";
}
