// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Version 1 where something goes wrong halfway, or where there is nothing to convert.

#include "Network.h"
#include "Records.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

using namespace Scripted;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const std::string kJoin = "Transaction.join(1, OrvOamSpiTransactionalResource)";

}

class Version1Edges : public Network {
protected:
    Records1 records;
};

TEST_F(Version1Edges, ResultOfARead_IsTheRoutersToFillUnlessItIsNull) {
    const void* seen = this;
    host.when("Router1.getMoAttribute")
        .answers<OrvMoAttributeValueContainer*>([&](OrvMoAttributeValueContainer*& out) {
            seen = &out;
            return OrvReturnT{-43};
        });
    OrvMoAttributeValueContainer* result = nullptr;
    EXPECT_EQ(host.client1().table->getMoAttribute(1, unit("7").c_str(), "label", &result), -43);
    EXPECT_EQ(seen, &result);
    host.forget();
    EXPECT_EQ(host.client1().table->getMoAttribute(1, unit("7").c_str(), "label", nullptr),
              OrvFailure);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(Version1Edges, ReferenceWithoutValues_HasAnEmptyBlockOfItsOwn) {
    auto* container = records.container(refs({}).withArray());
    host.when("Router1.getMoAttribute")
        .answers<OrvMoAttributeValueContainer*>([&](OrvMoAttributeValueContainer*& out) {
            out = container;
            return OrvOk;
        });
    const auto got = host.client1().get(1, unit("7"), "cells");
    ASSERT_NE(got.thing, nullptr);
    EXPECT_NE(got.thing, container);
    EXPECT_EQ(got.thing->count, 0U);
    EXPECT_NE(got.thing->values, container->values);
    EXPECT_NE(got.thing->values, nullptr);
}

TEST_F(Version1Edges, SetOfAReferenceWithoutValues_IsANewContainerToo) {
    const auto* container = records.container(refs({}));
    EXPECT_EQ(host.client1().table->setMoAttribute(1, unit("7").c_str(), "cells", container),
              OrvOk);
    const Argument seen = host.callRecords("Router1.").at(0).arguments.at(3);
    EXPECT_EQ(seen.value, refs({}));
    EXPECT_NE(seen.slots, nullptr);
    EXPECT_NE(seen.address, container);
    EXPECT_THAT(host.calls("Transaction."), ElementsAre(kJoin));
}

TEST_F(Version1Edges, ActionThrows_TheClientsResultIsUntouched) {
    OrvMoAttributeValueContainer mine = {0, 0, nullptr};
    OrvMoAttributeValueContainer* none[] = {nullptr};
    OrvMoAttributeValueContainer* result = &mine;
    host.when("Router1.action").throws(std::runtime_error("router"));
    EXPECT_EQ(host.client1().table->action(1, unit("7").c_str(), "go", none, &result), OrvFailure);
    EXPECT_EQ(result, &mine);
}

TEST_F(Version1Edges, ActionsResultCannotBeConverted_TheClientHasTheRouters) {
    auto* container = records.container(refs({cellInside("1")}));
    host.when("Router1.action")
        .answers<OrvMoAttributeValueContainer*>([&](OrvMoAttributeValueContainer*& out) {
            out = container;
            return OrvOk;
        });
    host.when("Transaction.join").throws(std::runtime_error("host"));
    const auto got = host.client1().action(1, unit("7"), "go");
    EXPECT_EQ(got.code, OrvFailure);
    EXPECT_EQ(got.thing, container);
}

TEST_F(Version1Edges, ParameterCannotBeConverted_TheRouterIsNotCalled) {
    host.when("Transaction.join").throws(std::runtime_error("host"));
    EXPECT_EQ(host.client1().action(1, unit("7"), "go", {refs({cell("1")})}).code, OrvFailure);
    EXPECT_THAT(host.calls("Router1."), IsEmpty());
}

TEST_F(Version1Edges, StructInAnAction_GoesInInternalAndComesOutExternal) {
    const auto got = host.client1().action(
        1, unit("7"), "go", {andEmptyStruct(structs({{member("to", refs({cell("1")}))}}))});
    EXPECT_EQ(readValue(got.thing), andEmptyStruct(structs({{member("to", refs({cell("1")}))}})));
    EXPECT_EQ(host.calls().back(), "Router1.action(1, 'ManagedElement=1,Unit=7', 'go', "
                                   "[Struct[{to: MoRef['ManagedElement=1,Cell=1']}, null]])");
}
