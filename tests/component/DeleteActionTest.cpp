// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// deleteMo and action of version 3.

#include "Network.h"
#include "Records.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

using namespace Scripted;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {

const std::string kJoin = "Transaction.join(1, OrvOamSpiTransactionalResource)";
const std::string kDelete = "Router3.deleteMo(1, 'ManagedElement=1,Unit=7')";

}

class Delete : public Network {
protected:
    void refer(const std::string& unitName, const std::string& cellName) {
        ASSERT_EQ(client().set(1, unit(unitName), "cells", refs({cell(cellName)})), OrvOk);
        host.forget();
    }
};

TEST_F(Delete, NotStarted_IsNotActive) {
    ASSERT_EQ(host.stopComponent(), OrvOk);
    EXPECT_EQ(client().remove(1, unit("7")), OrvNotActive);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(Delete, ForeignOrEmptyDn_DoesNotExistAndDoesNotJoin) {
    EXPECT_EQ(client().remove(1, kForeignDn), OrvNotExist);
    EXPECT_EQ(client().remove(1, ""), OrvNotExist);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(Delete, Referring_TheFarSideIsCleanedBeforeTheRouterDeletes) {
    refer("7", "1");
    EXPECT_EQ(client().remove(1, unit("7")), OrvOk);
    EXPECT_THAT(milestones(),
                ElementsAre("Model.getFirstBiDirAssociation('Unit')",
                            "VekRouter3.getMoAttribute(1, 'ManagedElement=1,Unit=7', 'cells')",
                            "VekRouter3.existsMo(1, 'ManagedElement=1,Cell=1')",
                            "VekRouter3.getMoAttribute(1, 'ManagedElement=1,Cell=1', 'unit')",
                            "VekRouter3.setMoAttribute(1, 'ManagedElement=1,Cell=1', 'unit', "
                            "MoRef[])",
                            "Producer.release('ManagedElement=1,Cell=1.unit')",
                            "Producer.release('ManagedElement=1,Unit=7.cells')", kDelete));
}

TEST_F(Delete, FirstTouch_JoinsBeforeTheBookkeeping) {
    EXPECT_EQ(client().remove(1, unit("7")), OrvOk);
    EXPECT_EQ(host.calls().front(), kJoin);
    EXPECT_EQ(host.calls().back(), kDelete);
}

TEST_F(Delete, Missing_TheBookkeepingRunsBeforeTheRouterAnswers) {
    EXPECT_EQ(client().remove(1, unit("99")), OrvNotExist);
    EXPECT_THAT(dnsLookedUp(), Contains("'ManagedElement=1,Unit=99'"));
    EXPECT_EQ(host.calls().back(), "Router3.deleteMo(1, 'ManagedElement=1,Unit=99')");
}

TEST_F(Delete, RouterRefuses_TheBookkeepingStays) {
    refer("7", "1");
    host.when("Router3.deleteMo").fails(-42);
    EXPECT_EQ(client().remove(1, unit("7")), -42);
    EXPECT_THAT(host.world().references(cellInside("1"), "unit"), IsEmpty());
    EXPECT_TRUE(host.world().exists(unitInside("7")));
}

TEST_F(Delete, BookkeepingFails_TheDeleteGoesOn) {
    host.when("Model.getMocFromDn").fails(-42);
    EXPECT_EQ(client().remove(1, unit("7")), OrvOk);
    EXPECT_FALSE(host.world().exists(unitInside("7")));
}

TEST_F(Delete, BookkeepingThrows_IsAFailureAndTheRouterIsNotCalled) {
    host.when("Model.getMocFromDn").throws(std::runtime_error("model"));
    EXPECT_EQ(client().remove(1, unit("7")), OrvFailure);
    EXPECT_THAT(host.calls("Router3."), IsEmpty());
    EXPECT_TRUE(host.world().exists(unitInside("7")));
}

TEST_F(Delete, WaitingAdditionsOfTheMo_AreDropped) {
    refer("7", "9");
    EXPECT_EQ(client().remove(1, unit("7")), OrvOk);
    EXPECT_EQ(client().create(1, kRoot, "Cell", "cellId", "9"), OrvOk);
    EXPECT_THAT(host.world().references(cellInside("9"), "unit"), IsEmpty());
}

TEST_F(Delete, RecordedReferencesOfTheMo_AreNotJudged) {
    ASSERT_EQ(client().set(1, unit("7"), "site", refs({site("1"), site("1")})), OrvOk);
    EXPECT_FALSE(validate(1));
    EXPECT_EQ(client().remove(1, unit("7")), OrvOk);
    EXPECT_TRUE(validate(1));
}

TEST_F(Delete, Interceptor_IsNotAsked) {
    host.interceptor("ManagedElement,Unit");
    EXPECT_EQ(client().remove(1, unit("7")), OrvOk);
    EXPECT_THAT(host.calls("Interceptor."), IsEmpty());
    EXPECT_THAT(host.calls("Router3.deleteMo"), ElementsAre(kDelete));
}

class Action : public Network {
protected:
    /// The router's action answers with \p container and \p release.
    void answer(OrvMoAttributeValueContainer_3* container,
                void (*release)(OrvMoAttributeValueContainer_3*), OrvReturnT code = OrvOk) {
        host.when("Router3.action")
            .answers<OrvMoAttributeValueResult_3>([=](OrvMoAttributeValueResult_3& out) {
                out = {release, container};
                return code;
            });
    }

    /// The router's action answers with \p value, which must be released.
    void answer(const Value& value) {
        host.when("Router3.action")
            .answers<OrvMoAttributeValueResult_3>([=, this](OrvMoAttributeValueResult_3& out) {
                host.results().give("action", value, out);
                return OrvOk;
            });
    }

    static void doNothing(OrvMoAttributeValueContainer_3*) {}

    Records records;
};

TEST_F(Action, NotStarted_IsNotActive) {
    ASSERT_EQ(host.stopComponent(), OrvOk);
    EXPECT_EQ(client().action(1, unit("7"), "go").code, OrvNotActive);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(Action, ForeignOrEmptyDn_DoesNotExistAndDoesNotJoin) {
    EXPECT_EQ(client().action(1, kForeignDn, "go").code, OrvNotExist);
    EXPECT_EQ(client().action(1, "", "go").code, OrvNotExist);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(Action, Parameters_ReachTheRouterInternalAndNothingIsRecorded) {
    EXPECT_EQ(
        client()
            .action(1, unit("7"), "go", {{"cells", refs({cell("1")})}, {"mode", strings({"fast"})}})
            .code,
        OrvOk);
    EXPECT_THAT(host.calls(),
                ElementsAre(kJoin, "Router3.action(1, 'ManagedElement=1,Unit=7', 'go', "
                                   "{cells: MoRef['ManagedElement=1,Cell=1'], mode: "
                                   "String['fast']})"));
}

TEST_F(Action, NoParameters_TheRouterGetsANewEmptyArray) {
    OrvMoNamedAttributeValueContainer_3* empty[] = {nullptr};
    OrvMoAttributeValueResult_3 result = {nullptr, nullptr};
    EXPECT_EQ(client().table->action(1, unit("7").c_str(), "go", empty, &result), OrvOk);
    const Argument seen = host.callRecords("Router3.").at(0).arguments.at(3);
    EXPECT_NE(seen.address, nullptr);
    EXPECT_NE(seen.address, static_cast<const void*>(empty));
    EXPECT_THAT(seen.named, IsEmpty());
}

TEST_F(Action, Result_IsWrappedExternalAndReleasedOnce) {
    answer(refs({cellInside("1")}));
    {
        const Read got = client().action(1, unit("7"), "go");
        EXPECT_EQ(got.value(), refs({cell("1")}));
    }
    EXPECT_THAT(host.calls("Producer."), ElementsAre("Producer.release('action')"));
}

TEST_F(Action, ResultWithoutDns_IsWrappedOnTheProducersArray) {
    auto* container = records.container(strings({"done"}));
    answer(container, nullptr);
    const Read got = client().action(1, unit("7"), "go");
    EXPECT_NE(got.record.container, container);
    EXPECT_EQ(got.record.container->values, container->values);
    EXPECT_NE(got.record.release, nullptr);
}

TEST_F(Action, ResultWithoutValues_KeepsTheRoutersContainerAndRelease) {
    auto* container = records.container(refs({}));
    answer(container, &doNothing);
    const Read got = client().action(1, unit("7"), "go");
    EXPECT_EQ(got.record.container, container);
    EXPECT_EQ(got.record.release, &doNothing);
}

TEST_F(Action, ResultWithoutContainer_KeepsTheRoutersRelease) {
    answer(nullptr, &doNothing);
    const Read got = client().action(1, unit("7"), "go");
    EXPECT_EQ(got.code, OrvOk);
    EXPECT_EQ(got.record.container, nullptr);
    EXPECT_EQ(got.record.release, &doNothing);
}

TEST_F(Action, RouterRefuses_TheResultStaysAsTheRouterLeftIt) {
    auto* container = records.container(refs({cellInside("1")}));
    answer(container, &doNothing, -42);
    const Read got = client().action(1, unit("7"), "go");
    EXPECT_EQ(got.code, -42);
    EXPECT_EQ(got.record.container, container);
    EXPECT_EQ(got.record.release, &doNothing);
    EXPECT_EQ(got.value(), refs({cellInside("1")}));
}

TEST_F(Action, RootIdByName_HasNoSpecialCase) {
    answer(strings({"1"}));
    EXPECT_EQ(client().action(1, kRoot, "managedElementId").value(), strings({"1"}));
}

TEST_F(Action, RouterThrows_IsAFailure) {
    host.when("Router3.action").throws(std::runtime_error("router"));
    EXPECT_EQ(client().action(1, unit("7"), "go", {{"cells", refs({cell("1")})}}).code, OrvFailure);
}

TEST_F(Action, Interceptor_IsNotAsked) {
    host.interceptor("ManagedElement,Unit");
    EXPECT_EQ(client().action(1, unit("7"), "go").code, OrvOk);
    EXPECT_THAT(host.calls("Interceptor."), IsEmpty());
    EXPECT_EQ(host.calls("Router3.action").size(), 1U);
}
