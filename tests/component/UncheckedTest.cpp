// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// What the component passes on as it came, so that router or interceptor decide: one attribute is
// checked, and that one in the operations that set attributes only.

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
const std::string kNetworkId = "networkManagedElementId";
const Value kBad = strings({"a,b"});

}

class Unchecked : public Network {
protected:
    OrvReturnT setMany(const NamedValues& attributes) const {
        return host.client3_1().set(1, unit("7"), attributes);
    }
};

TEST_F(Unchecked, BadIdOfANewMo_ReachesTheRouter) {
    EXPECT_EQ(client().create(1, kRoot, "Site", "siteId", "9", {{kNetworkId, kBad}}), OrvOk);
    EXPECT_EQ(client().create(1, kRoot, "Site", kNetworkId, "a=b"), OrvOk);
    EXPECT_EQ(client().create(1, kRoot, "", "", ""), OrvOk);
    EXPECT_EQ(host.client1().create(1, kRoot, "Site", kNetworkId, "c=d"), OrvOk);
    EXPECT_THAT(host.calls("Router"),
                ElementsAre("Router3.createMo(1, 'ManagedElement=1', 'Site', 'siteId', '9', "
                            "{networkManagedElementId: String['a,b']})",
                            "Router3.createMo(1, 'ManagedElement=1', 'Site', "
                            "'networkManagedElementId', 'a=b', {})",
                            "Router3.createMo(1, 'ManagedElement=1', '', '', '', {})",
                            "Router1.createMo(1, 'ManagedElement=1', 'Site', "
                            "'networkManagedElementId', 'c=d')"));
}

TEST_F(Unchecked, BadIdAsAParameter_ReachesTheRouter) {
    EXPECT_EQ(client().action(1, unit("7"), kNetworkId, {{kNetworkId, kBad}}).code, OrvOk);
    EXPECT_THAT(host.calls("Router3."),
                ElementsAre("Router3.action(1, 'ManagedElement=1,Unit=7', "
                            "'networkManagedElementId', {networkManagedElementId: "
                            "String['a,b']})"));
}

TEST_F(Unchecked, OtherNames_ReachTheRouterInEveryVersion) {
    for (const std::string name :
         {"NetworkManagedElementId", "networkManagedElementId2", "managedElementId", ""}) {
        EXPECT_EQ(client().set(1, unit("7"), name, kBad), OrvOk);
        EXPECT_EQ(setMany({{name, kBad}}), OrvOk);
        EXPECT_EQ(host.client1().set(1, unit("7"), name, kBad), OrvOk);
    }
}

TEST_F(Unchecked, ValuesAfterTheFirst_ReachTheRouterInEveryVersion) {
    const Value value = strings({"a", "b,c"});
    EXPECT_EQ(client().set(1, unit("7"), kNetworkId, value), OrvOk);
    EXPECT_EQ(setMany({{kNetworkId, value}}), OrvOk);
    EXPECT_EQ(host.client1().set(1, unit("7"), kNetworkId, value), OrvOk);
}

TEST_F(Unchecked, UnknownAttribute_IsLeftToTheRouter) {
    host.when("Router3_1.setMoAttributes").fails(-4711);
    EXPECT_EQ(setMany({{"noSuchAttribute", refs({cell("1")})}}), -4711);
}

TEST_F(Unchecked, BadIdOnAnyDn_IsRefusedIn3_1And1) {
    for (const std::string& dn : {kRoot, std::string("Plant=1"), unit("99")}) {
        EXPECT_EQ(host.client3_1().set(1, dn, {{kNetworkId, kBad}}), OrvInvalidArgument);
        EXPECT_EQ(host.client1().set(1, dn, kNetworkId, kBad), OrvInvalidArgument);
    }
    EXPECT_THAT(host.calls(), ElementsAre(kJoin)) << "joined by version 3_1";
}

TEST_F(Unchecked, JoinThrows_NothingElseHappensInAnyWrite) {
    host.when("Transaction.join").throws(std::runtime_error("host"));
    EXPECT_EQ(client().create(1, kRoot, "Cell", "cellId", "9"), OrvFailure);
    EXPECT_EQ(client().remove(2, unit("7")), OrvFailure);
    EXPECT_EQ(client().action(3, unit("7"), "go").code, OrvFailure);
    EXPECT_EQ(host.client3_1().set(4, unit("7"), {{"cells", refs({cell("1")})}}), OrvFailure);
    EXPECT_EQ(host.client1().set(5, unit("7"), "cells", refs({cell("1")})), OrvFailure);
    EXPECT_EQ(host.calls().size(), 5U);
    EXPECT_EQ(host.calls("Transaction.").size(), 5U);
}

TEST_F(Unchecked, SeveralSteps_TheClassPathOfVersion3_1IsThatOfTheOthers) {
    const std::string part = unit("7") + ",Part=1";
    host.mo(unitInside("7") + ",Part=1").with("label", strings({"x"}));
    host.interceptor("ManagedElement,Unit,Part");
    EXPECT_EQ(client().get(1, part, "label").code, OrvOk);
    EXPECT_EQ(client().set(1, part, "label", strings({"y"})), OrvOk);
    EXPECT_EQ(host.client3_1().set(1, part, {{"label", strings({"z"})}}), OrvOk);
    EXPECT_EQ(host.calls("Interceptor.").size(), 3U);
}

TEST_F(Unchecked, InterceptorOf3_1_GetsAnArrayOfTheComponentsToo) {
    Records records;
    auto** attributes = records.named({{"cells", refs({cell("1")})}, {"label", strings({"y"})}});
    host.interceptor("ManagedElement,Unit");
    host.when("Interceptor.setMoAttributes").fails(-42);
    EXPECT_EQ(host.client3_1().table->setMoAttributes(1, unit("7").c_str(), attributes), -42);
    const Argument seen = host.callRecords("Interceptor.").at(0).arguments.at(3);
    EXPECT_EQ(textOf(seen.named), "{cells: MoRef['ManagedElement=1,Cell=1'], label: String['y']}");
    EXPECT_NE(seen.address, static_cast<const void*>(attributes));
}

// A creation that the router refuses leaves both records as they were.

TEST_F(Unchecked, CreationRefused_WhatWaitsGoesOnWaitingAndNothingIsJudged) {
    ASSERT_EQ(client().set(1, unit("7"), "cells", refs({cell("9")})), OrvOk);
    host.when("Router3.createMo").once().fails(-42);
    EXPECT_EQ(client().create(1, kRoot, "Cell", "cellId", "9"), -42);
    EXPECT_EQ(client().create(1, kRoot, "Cell", "cellId", "9"), OrvOk);
    EXPECT_THAT(host.world().references(cellInside("9"), "unit"), ElementsAre(unitInside("7")));

    host.when("Router3.createMo").fails(-42);
    EXPECT_EQ(client().create(2, kRoot, "Unit", "unitId", "9",
                              {{"cells", refs({cell("1"), cell("2"), cell("3")})},
                               {"site", refs({site("1"), site("1")})}}),
              -42);
    host.forget();
    EXPECT_TRUE(validate(2));
    EXPECT_THAT(host.calls(), IsEmpty());
}
