// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The reads of version 3: existsMo, countMoChildren, getMoAttribute, getMoAttributes.

#include "Host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

using namespace Scripted;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {

const std::string kUnit = "ManagedElement=paris,Unit=7";
const std::string kUnitInside = "ManagedElement=1,Unit=7";
const std::string kForeign = "ManagedElement=rome,Unit=7"; ///< cannot be translated

}

class Reads : public testing::Test {
protected:
    Reads() {
        host.mo("ManagedElement=1");
        host.mo(kUnitInside).with("label", strings({"x"})).with("to", refs({kUnitInside}));
        host.start();
    }

    Client3 client() const { return host.client(); }

    Host host;
};

/// The component is loaded and has never been started.
class ReadsBeforeStart : public testing::Test {
protected:
    ReadsBeforeStart() {
        host.load();
        EXPECT_EQ(host.init(), OrvOk);
        host.forget();
    }

    Host host;
};

TEST_F(ReadsBeforeStart, ExistsMo_IsNotActive) {
    const auto answer = host.client().exists(1, kUnit);
    EXPECT_EQ(answer.code, OrvNotActive);
    EXPECT_FALSE(answer.thing);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(ReadsBeforeStart, CountMoChildren_IsNotActive) {
    EXPECT_EQ(host.client().count(1, kUnit, "A").code, OrvNotActive);
    EXPECT_EQ(host.client().count(1, "", "A").code, OrvNotActive);
}

TEST_F(ReadsBeforeStart, GetMoAttribute_IsAFailure) {
    EXPECT_EQ(host.client().get(1, kUnit, "label").code, OrvFailure);
    EXPECT_EQ(host.client().get(1, kForeign, "label").code, OrvFailure);
}

TEST_F(ReadsBeforeStart, GetMoAttributes_IsNotActive) {
    EXPECT_EQ(host.client().getMany(1, kUnit, {"label"}).code, OrvNotActive);
    EXPECT_EQ(host.client().getMany(1, kForeign, {"label"}).code, OrvNotActive);
}

TEST_F(ReadsBeforeStart, GetMoAttributes_NullResult_IsNotActiveToo) {
    const char* names[] = {"label", nullptr};
    EXPECT_EQ(host.client().table->getMoAttributes(1, kUnit.c_str(), names, nullptr), OrvNotActive);
}

TEST_F(Reads, ExistsMo_AsksTheRouterForTheInternalDn) {
    const auto answer = client().exists(3, kUnit);
    EXPECT_EQ(answer.code, OrvOk);
    EXPECT_TRUE(answer.thing);
    EXPECT_FALSE(client().exists(3, "ManagedElement=paris,Unit=8").thing);
    EXPECT_THAT(host.calls(), ElementsAre("Router3.existsMo(3, 'ManagedElement=1,Unit=7')",
                                          "Router3.existsMo(3, 'ManagedElement=1,Unit=8')"));
}

TEST_F(Reads, ExistsMo_ForeignDn_DoesNotExistAndNobodyIsAsked) {
    EXPECT_EQ(client().exists(3, kForeign).code, OrvNotExist);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(Reads, ExistsMo_EmptyDn_DoesNotExist) {
    EXPECT_EQ(client().exists(3, "").code, OrvNotExist);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(Reads, ExistsMo_InternalIdentityFromAClient_DoesNotExist) {
    EXPECT_EQ(client().exists(3, kUnitInside).code, OrvNotExist);
}

TEST_F(Reads, ExistsMo_NoPreferredIdentity_TheFallbackCounts) {
    host.identity("", "lyon");
    EXPECT_TRUE(client().exists(3, "ManagedElement=lyon,Unit=7").thing);
    EXPECT_EQ(client().exists(3, kUnit).code, OrvNotExist);
}

TEST_F(Reads, ExistsMo_OtherRootClass_PassesUnchanged) {
    client().exists(3, "Plant=paris,Unit=7");
    EXPECT_THAT(host.calls(), ElementsAre("Router3.existsMo(3, 'Plant=paris,Unit=7')"));
}

TEST_F(Reads, ExistsMo_ResultPointer_IsTheClients) {
    bool exists = false;
    const void* seen = nullptr;
    host.when("Router3.existsMo").answers<bool>([&](bool& out) {
        seen = &out;
        return OrvOk;
    });
    EXPECT_EQ(client().table->existsMo(1, kUnit.c_str(), &exists), OrvOk);
    EXPECT_EQ(seen, &exists);
}

TEST_F(Reads, CountMoChildren_AsksTheRouterWithTheClassAsItCame) {
    host.mo("ManagedElement=1,Unit=8");
    const auto answer = client().count(3, "ManagedElement=paris", "Unit");
    EXPECT_EQ(answer.code, OrvOk);
    EXPECT_EQ(answer.thing, 2U);
    EXPECT_EQ(client().count(3, "ManagedElement=paris", "").code, OrvOk);
    EXPECT_THAT(host.calls(), ElementsAre("Router3.countMoChildren(3, 'ManagedElement=1', 'Unit')",
                                          "Router3.countMoChildren(3, 'ManagedElement=1', '')"));
}

TEST_F(Reads, CountMoChildren_EmptyDn_CountsTheTopLevel) {
    const auto answer = client().count(3, "", "ManagedElement");
    EXPECT_EQ(answer.code, OrvOk);
    EXPECT_EQ(answer.thing, 1U);
    EXPECT_THAT(host.calls(), ElementsAre("Router3.countMoChildren(3, '', 'ManagedElement')"));
}

TEST_F(Reads, CountMoChildren_ForeignDn_DoesNotExist) {
    EXPECT_EQ(client().count(3, kForeign, "A").code, OrvNotExist);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(Reads, GetMoAttribute_AsksTheRouterOnceAndIsReleasedOnce) {
    {
        const Read read = client().get(3, kUnit, "label");
        EXPECT_EQ(read.code, OrvOk);
        EXPECT_EQ(read.value(), strings({"x"}));
        EXPECT_THAT(host.calls(),
                    ElementsAre("Router3.getMoAttribute(3, 'ManagedElement=1,Unit=7', 'label')"));
    }
    EXPECT_THAT(host.calls("Producer."),
                ElementsAre("Producer.release('ManagedElement=1,Unit=7.label')"));
}

TEST_F(Reads, GetMoAttribute_NullResult_IsAFailureAndNobodyIsAsked) {
    EXPECT_EQ(client().table->getMoAttribute(3, kUnit.c_str(), "label", nullptr), OrvFailure);
    EXPECT_EQ(client().table->getMoAttribute(3, kForeign.c_str(), "label", nullptr), OrvFailure);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(Reads, GetMoAttribute_ForeignOrEmptyDn_DoesNotExist) {
    EXPECT_EQ(client().get(3, kForeign, "label").code, OrvNotExist);
    EXPECT_EQ(client().get(3, "", "label").code, OrvNotExist);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(Reads, GetMoAttribute_RouterRefuses_ResultStaysAsTheRouterLeftIt) {
    host.when("Router3.getMoAttribute").returns(-5);
    const Read read = client().get(3, kUnit, "to");
    EXPECT_EQ(read.code, -5);
    EXPECT_EQ(read.value(), refs({kUnitInside}));
    EXPECT_THAT(host.calls("Producer."), IsEmpty());
}

TEST_F(Reads, GetMoAttribute_RouterRefusesUntouched_ResultStaysTheClients) {
    host.when("Router3.getMoAttribute").fails(-5);
    OrvMoAttributeValueContainer_3 mine = {9, 0, nullptr};
    OrvMoAttributeValueResult_3 result = {nullptr, &mine};
    EXPECT_EQ(client().table->getMoAttribute(3, kUnit.c_str(), "to", &result), -5);
    EXPECT_EQ(result.container, &mine);
    EXPECT_EQ(result.release, nullptr);
}

TEST_F(Reads, GetMoAttribute_RouterThrowsAfterAnswering_ResultKeepsWhatTheRouterWrote) {
    OrvMoAttributeValueContainer_3 routers = {9, 0, nullptr};
    host.when("Router3.getMoAttribute")
        .answers<OrvMoAttributeValueResult_3>([&](OrvMoAttributeValueResult_3& out) -> OrvReturnT {
            out.container = &routers;
            throw std::runtime_error("late");
        });
    OrvMoAttributeValueResult_3 result = {nullptr, nullptr};
    EXPECT_EQ(client().table->getMoAttribute(3, kUnit.c_str(), "to", &result), OrvFailure);
    EXPECT_EQ(result.container, &routers);
}

TEST_F(Reads, GetMoAttribute_Level8_TracesItsArguments) {
    host.logLevel(8);
    client().get(3, kUnit, "label");
    EXPECT_EQ(host.logs().at(0),
              "trace 9 getMoAttribute:  >> txHandle: 3, dn: " + kUnit + ", attr: label");
}

TEST_F(Reads, GetMoAttribute_Level8_TheRepositoryTracesTheInternalPath) {
    host.logLevel(8);
    client().get(3, kUnit, "label");
    EXPECT_THAT(host.logs(), Contains("trace 9 getInterceptor:  >> mocPath: ManagedElement,Unit "));
}

TEST_F(Reads, GetMoAttributes_AsksTheRouterOnceWithTheClientsNames) {
    const char* names[] = {"label", "to", nullptr};
    ReadMany read;
    read.code = client().table->getMoAttributes(3, kUnit.c_str(), names, &read.record);
    EXPECT_EQ(read.code, OrvOk);
    EXPECT_THAT(read.values(), ElementsAre(strings({"x"}), refs({kUnit})));
    EXPECT_THAT(host.calls(), ElementsAre("Router3.getMoAttributes(3, 'ManagedElement=1,Unit=7', "
                                          "['label', 'to'])"));
    EXPECT_EQ(host.callRecords().at(0).arguments.at(2).address, names);
}

TEST_F(Reads, GetMoAttributes_ForeignOrEmptyDn_DoesNotExist) {
    EXPECT_EQ(client().getMany(3, kForeign, {"label"}).code, OrvNotExist);
    EXPECT_EQ(client().getMany(3, "", {"label"}).code, OrvNotExist);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(Reads, GetMoAttributes_RouterRefuses_ResultStaysAsTheRouterLeftIt) {
    host.when("Router3.getMoAttributes").returns(-5);
    const ReadMany read = client().getMany(3, kUnit, {"to"});
    EXPECT_EQ(read.code, -5);
    EXPECT_THAT(read.values(), ElementsAre(refs({kUnitInside})));
    EXPECT_THAT(host.calls("Producer."), IsEmpty());
}

TEST_F(Reads, GetMoAttributes_NullResult_TheRouterIsNotAsked) {
    const char* names[] = {"label", nullptr};
    EXPECT_EQ(client().table->getMoAttributes(3, kUnit.c_str(), names, nullptr), OrvFailure);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(Reads, GetMoAttribute_ResultRecord_ReachesTheRouterAsTheClientLeftIt) {
    OrvMoAttributeValueContainer_3 mine = {9, 0, nullptr};
    OrvMoAttributeValueResult_3 result = {[](OrvMoAttributeValueContainer_3*) {}, &mine};
    const auto release = result.release;
    host.when("Router3.getMoAttribute")
        .answers<OrvMoAttributeValueResult_3>([&](OrvMoAttributeValueResult_3& out) {
            EXPECT_EQ(&out, &result);
            EXPECT_EQ(out.container, &mine);
            EXPECT_EQ(out.release, release);
            return -5;
        });
    EXPECT_EQ(client().table->getMoAttribute(3, kUnit.c_str(), "to", &result), -5);
}

TEST_F(Reads, GetMoAttributes_ResultRecord_ReachesTheRouterAsTheClientLeftIt) {
    OrvMoAttributeValueContainer_3* mine[] = {nullptr};
    OrvMoAttributeValuesResult_3 result = {[](OrvMoAttributeValueContainer_3**) {}, mine};
    const auto release = result.release;
    const char* names[] = {"to", nullptr};
    host.when("Router3.getMoAttributes")
        .answers<OrvMoAttributeValuesResult_3>([&](OrvMoAttributeValuesResult_3& out) {
            EXPECT_EQ(&out, &result);
            EXPECT_EQ(out.containers, mine);
            EXPECT_EQ(out.release, release);
            return -5;
        });
    EXPECT_EQ(client().table->getMoAttributes(3, kUnit.c_str(), names, &result), -5);
}

TEST_F(Reads, ModelRepositoryAndThreadContext_AreNeverAsked) {
    client().exists(1, kUnit);
    client().count(1, kUnit, "A");
    client().get(1, kUnit, "to");
    client().getMany(1, kUnit, {"to"});
    EXPECT_THAT(host.calls("Model."), IsEmpty());
    EXPECT_THAT(host.calls("ThreadContext."), IsEmpty());
    EXPECT_THAT(host.calls("VekRouter3."), IsEmpty());
}
