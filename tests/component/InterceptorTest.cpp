// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Interceptors as another component brings them: found through the portal, asked in the router's
// place.

#include "Host.h"
#include "Names.h"
#include "Portal.h"
#include "Records.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <list>
#include <stdexcept>
#include <string>
#include <vector>

using namespace Scripted;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;

namespace {

const std::string kUnit = "ManagedElement=paris,Unit=7";
const std::string kUnitInside = "ManagedElement=1,Unit=7";
const std::string kRoot = "ManagedElement=paris";
const std::string kPath = "ManagedElement,Unit";

}

class Interceptors : public testing::Test {
protected:
    Interceptors() {
        host.mo("ManagedElement=1").with("label", strings({"root"}));
        host.mo(kUnitInside).with("label", strings({"x"})).with("to", refs({kUnitInside}));
        host.start();
    }

    Client3 client() const { return host.client(); }

    Host host;
};

// The repository.

TEST_F(Interceptors, Repository_IsTheFifthInterface) {
    Interceptor& one = host.bareInterceptor("one");
    one.initialize();
    EXPECT_EQ(one.repository(), host.record().interfaceArray[4]);
}

TEST_F(Interceptors, Repository_Unfilled_KnowsNobody) {
    Interceptor& one = host.bareInterceptor("one");
    one.initialize();
    EXPECT_EQ(one.getInterceptor(kPath), nullptr);
    EXPECT_EQ(one.getInterceptor(""), nullptr);
}

TEST_F(Interceptors, Register_TwiceUnderOnePath_TheFirstStays) {
    Interceptor& one = host.interceptor(kPath);
    Interceptor& two = host.bareInterceptor("two");
    two.initialize();
    EXPECT_EQ(two.registerClass(kPath), OrvAlreadyExist);
    EXPECT_EQ(one.getInterceptor(kPath), one.address());
    EXPECT_EQ(one.registerClass(kPath), OrvAlreadyExist);
}

TEST_F(Interceptors, Register_OneUnderTwoPaths_ServesBoth) {
    Interceptor& one = host.interceptor(kPath);
    EXPECT_EQ(one.registerClass("ManagedElement"), OrvOk);
    EXPECT_EQ(one.getInterceptor("ManagedElement"), one.address());
    EXPECT_EQ(one.getInterceptor(kPath), one.address());
}

TEST_F(Interceptors, Deregister_ThePathIsFreeAgain) {
    Interceptor& one = host.interceptor(kPath);
    one.deregisterClass(kPath);
    EXPECT_EQ(one.getInterceptor(kPath), nullptr);
    EXPECT_EQ(one.registerClass(kPath), OrvOk);
}

TEST_F(Interceptors, Deregister_UnknownPath_ChangesNothing) {
    Interceptor& one = host.interceptor(kPath);
    one.deregisterClass("ManagedElement");
    one.deregisterClass(kPath + ",Cell");
    EXPECT_EQ(one.getInterceptor(kPath), one.address());
}

TEST_F(Interceptors, Paths_AreComparedAsAWhole) {
    Interceptor& one = host.interceptor("A,B");
    for (const std::string path : {"A", "A,B,C", "a,b", "A, B", "A,B ", " A,B", "A,B,", ""}) {
        EXPECT_EQ(one.getInterceptor(path), nullptr) << path;
    }
    EXPECT_EQ(one.registerClass("A,B,C"), OrvOk);
}

TEST_F(Interceptors, EmptyPath_IsAPathLikeAnyOther) {
    Interceptor& one = host.interceptor("");
    EXPECT_EQ(one.getInterceptor(""), one.address());
    EXPECT_EQ(one.getInterceptor(kPath), nullptr);
    one.deregisterClass("");
    EXPECT_EQ(one.getInterceptor(""), nullptr);
}

TEST_F(Interceptors, LeftRegisteredAtTheEnd_AreNotDeleted) {
    Interceptor& one = host.interceptor(kPath);
    ASSERT_EQ(host.stopComponent(), OrvOk);
    host.terminate();
    EXPECT_EQ(one.getInterceptor(kPath), one.address());
}

TEST_F(Interceptors, StopAndStart_KeepTheRegistrations) {
    host.interceptor(kPath);
    ASSERT_EQ(host.stopComponent(), OrvOk);
    ASSERT_EQ(host.startComponent(), OrvOk);
    client().get(1, kUnit, "label");
    EXPECT_THAT(host.calls("Interceptor."),
                ElementsAre("Interceptor.getMoAttribute('ManagedElement,Unit', 1, "
                            "'ManagedElement=1,Unit=7', 'label')"));
}

TEST_F(Interceptors, Register_Level8_TracesTheInterceptorAndARefusal) {
    Interceptor& one = host.interceptor(kPath);
    host.logLevel(8);
    EXPECT_EQ(one.registerClass(kPath), OrvAlreadyExist);
    EXPECT_THAT(host.logs(),
                Contains(MatchesRegex(
                    "trace 9 registerClass:  >> interceptor: .*, mocPath: ManagedElement,Unit ")));
    EXPECT_THAT(host.logs(), Contains("trace 0 registerClass: Interceptor with mocPath "
                                      "ManagedElement,Unit is already registered"));
}

TEST_F(Interceptors, NoneRegistered_Level8_TheLookupIsTracedAllTheSame) {
    host.logLevel(8);
    client().get(1, kUnit, "label");
    EXPECT_THAT(host.logs(), Contains("trace 9 getInterceptor:  >> mocPath: ManagedElement,Unit "));
}

TEST_F(Interceptors, Find_Level8_TracesThePathAndTheInterceptor) {
    Interceptor& one = host.interceptor(kPath);
    host.logLevel(8);
    one.getInterceptor(kPath);
    EXPECT_THAT(host.logs(), Contains("trace 9 getInterceptor:  >> mocPath: ManagedElement,Unit "));
    EXPECT_THAT(host.logs(),
                Contains(MatchesRegex("trace 0 getInterceptor: Found interceptor: 0x.*")));
    host.forget();
    one.getInterceptor("other");
    EXPECT_THAT(host.logs(), Not(Contains(testing::HasSubstr("Found interceptor"))));
}

TEST_F(Interceptors, Deregister_Level8_HasNoMessageInBetween) {
    Interceptor& one = host.interceptor(kPath);
    host.logLevel(8);
    one.deregisterClass(kPath);
    EXPECT_THAT(host.logs(), Not(Contains(StartsWith("trace 0 "))));
}

// The base.

TEST_F(Interceptors, Initialize_LooksUpInOrder) {
    Orv::Portal::instance()->attach(&orvPortalLookup); // an empty cache
    Interceptor& one = host.bareInterceptor("one");
    EXPECT_EQ(one.router3(), nullptr);
    EXPECT_EQ(one.router3_1(), nullptr);
    EXPECT_EQ(one.repository(), nullptr);
    one.initialize();
    EXPECT_THAT(host.calls(), ElementsAre(kLookUpRouter3, kLookUpRouter3_1, kLookUpInterceptors));
    EXPECT_EQ(one.router3(), router3Table());
    EXPECT_EQ(one.router3_1(), router3_1Table());
    EXPECT_THAT(host.logs(), IsEmpty());
}

TEST_F(Interceptors, Initialize_ValidCache_TheFirstAnswerStandsForBothIdentities) {
    Interceptor& one = host.bareInterceptor("one");
    one.initialize();
    EXPECT_EQ(one.router3(), vekRouter3Table()); // cached when the component was started
    EXPECT_THAT(host.calls(), ElementsAre(kLookUpRouter3_1, kLookUpInterceptors));
}

TEST_F(Interceptors, Initialize_Twice_AsksForTheRepositoryAgainOnly) {
    Interceptor& one = host.bareInterceptor("one");
    one.initialize();
    host.forget();
    one.initialize();
    EXPECT_THAT(host.calls(), ElementsAre(kLookUpInterceptors));
}

TEST_F(Interceptors, Initialize_NoRouter3_1_TheOtherTwoFieldsAreSet) {
    host.without(Part::Router3_1);
    Interceptor& one = host.bareInterceptor("one");
    one.initialize();
    EXPECT_NE(one.router3(), nullptr);
    EXPECT_EQ(one.router3_1(), nullptr);
    EXPECT_NE(one.repository(), nullptr);
    ASSERT_EQ(host.logRecords().size(), 2U);
    for (const auto& record : host.logRecords()) {
        EXPECT_EQ(record.text, "Interface VekOamSpiManagedObject not found");
        EXPECT_EQ(record.level, 4);
    }
}

TEST_F(Interceptors, Initialize_NoRouter3_LogsItsInterface) {
    Orv::Portal::instance()->attach(&orvPortalLookup);
    host.without(Part::Router3);
    Interceptor& one = host.bareInterceptor("one");
    one.initialize();
    EXPECT_EQ(one.router3(), nullptr);
    EXPECT_NE(one.router3_1(), nullptr);
    ASSERT_EQ(host.logRecords().size(), 2U);
    EXPECT_EQ(host.logRecords()[0].text, "Interface OrvOamSpiManagedObject not found");
}

TEST(InterceptorBase, Initialize_BeforeTheComponentIsRegistered_LogsAndReturns) {
    Host host;
    host.load();
    Interceptor& one = host.bareInterceptor("one");
    one.initialize();
    EXPECT_EQ(one.repository(), nullptr);
    EXPECT_NE(one.router3(), nullptr);
    EXPECT_THAT(host.logs(),
                ElementsAre("log 4 initialize: Interface ExtCmInterceptorRepositoryI not found",
                            "trace2 ExtCm 4 initialize: Interface ExtCmInterceptorRepositoryI not "
                            "found"));
}

TEST(InterceptorBase, Initialize_NoHostAttached_LogsThreeAndReturns) {
    Host host;
    host.load();
    Orv::Portal::instance()->detach();
    Interceptor& one = host.bareInterceptor("one");
    one.initialize();
    EXPECT_EQ(one.router3(), nullptr);
    EXPECT_EQ(one.router3_1(), nullptr);
    EXPECT_EQ(one.repository(), nullptr);
    EXPECT_EQ(host.logRecords().size(), 6U);
}

TEST_F(Interceptors, Initialize_RepositoryLookupFailsButLeavesAPointer_ThePointerStays) {
    host.when("OrvPortal.lookup").on("ExtCmInterceptorRepositoryI").returns(-5);
    Interceptor& one = host.bareInterceptor("one");
    one.initialize();
    EXPECT_EQ(one.repository(), host.record().interfaceArray[4]);
    EXPECT_THAT(host.logs(),
                Contains("log 4 initialize: Interface ExtCmInterceptorRepositoryI not found"));
}

/// Every default of the base, with the call that it must become.
class Defaults : public Interceptors {
protected:
    Defaults() : one(host.bareInterceptor("one")) {
        Orv::Portal::instance()->attach(&orvPortalLookup);
        one.initialize();
        host.forget();
    }

    /// The one call that was made; its code was \p code, what the router answered.
    void expectCall(const std::string& name, const std::string& text, OrvReturnT code) {
        EXPECT_EQ(code, -42) << name;
        EXPECT_THAT(host.calls(), ElementsAre(name + text));
        host.forget();
    }

    Interceptor& one;
};

TEST_F(Defaults, EachForwardsItsArgumentsAndTheRoutersCode) {
    for (const std::string name :
         {"getMoAttribute", "getMoAttributes", "setMoAttribute", "newMoIterator", "nextMo",
          "createMo", "deleteMo", "action", "finalizeMoIterator", "existsMo", "countMoChildren"}) {
        host.when("Router3." + name).fails(-42);
    }
    host.when("Router3_1.setMoAttributes").fails(-42);
    Records records;
    const char* names[] = {"a", "b", nullptr};
    OrvMoAttributeValueResult_3 result = {nullptr, nullptr};
    OrvMoAttributeValuesResult_3 results = {nullptr, nullptr};
    unsigned long long iterator = 0;
    unsigned long long count = 0;
    bool exists = false;
    char* text = nullptr;

    expectCall("Router3.getMoAttribute", "(1, 'D=1', 'a')",
               one.getMoAttribute(1, "D=1", "a", &result));
    expectCall("Router3.getMoAttributes", "(2, 'D=2', ['a', 'b'])",
               one.getMoAttributes(2, "D=2", names, &results));
    expectCall("Router3.setMoAttribute", "(3, 'D=3', 'a', MoRef['X=1'])",
               one.setMoAttribute(3, "D=3", "a", records.container(refs({"X=1"}))));
    expectCall("Router3_1.setMoAttributes", "(4, 'D=4', {a: String['x']})",
               one.setMoAttributes(4, "D=4", records.named({{"a", strings({"x"})}})));
    expectCall("Router3.newMoIterator", "(5, 'D=5', 'C')",
               one.newMoIterator(5, "D=5", "C", &iterator));
    expectCall("Router3.nextMo", "(18446744073709551615)", one.nextMo(~0ULL, &text));
    expectCall("Router3.createMo", "(6, 'D=6', 'C', 'id', '1', {a: String['x']})",
               one.createMo(6, "D=6", "C", "id", "1", records.named({{"a", strings({"x"})}})));
    expectCall("Router3.deleteMo", "(7, 'D=7')", one.deleteMo(7, "D=7"));
    expectCall("Router3.action", "(8, 'D=8', 'go', {p: String['x']})",
               one.action(8, "D=8", "go", records.named({{"p", strings({"x"})}}), &result));
    expectCall("Router3.finalizeMoIterator", "(18446744073709551614)",
               one.finalizeMoIterator(~1ULL));
    expectCall("Router3.existsMo", "(9, 'D=9')", one.existsMo(9, "D=9", &exists));
    expectCall("Router3.countMoChildren", "(10, 'D=10', 'C')",
               one.countMoChildren(10, "D=10", "C", &count));
}

TEST_F(Defaults, PointersAreTheCallersOwn) {
    Records records;
    auto* value = records.container(strings({"x"}));
    auto** named = records.named({{"a", strings({"x"})}});
    const char* dn = "D=1";
    one.setMoAttribute(1, dn, "a", value);
    one.setMoAttributes(1, dn, named);
    one.createMo(1, dn, "C", "id", "1", nullptr);
    const auto calls = host.callRecords();
    EXPECT_EQ(calls.at(0).arguments.at(1).address, dn);
    EXPECT_EQ(calls.at(0).arguments.at(3).address, value);
    EXPECT_EQ(calls.at(1).arguments.at(2).address, named);
    EXPECT_EQ(calls.at(2).arguments.at(5).address, nullptr);
}

TEST_F(Defaults, ResultsAreTheRouters) {
    OrvMoAttributeValueResult_3 result = {nullptr, nullptr};
    EXPECT_EQ(one.getMoAttribute(1, kUnitInside.c_str(), "to", &result), OrvOk);
    EXPECT_EQ(readValue(result.container), refs({kUnitInside}));
    result.release(result.container);
}

// Operations.

TEST_F(Interceptors, GetMoAttribute_TheInterceptorIsAskedInTheRoutersPlace) {
    host.interceptor(kPath);
    host.when("Interceptor.getMoAttribute")
        .answers<OrvMoAttributeValueResult_3>([&](OrvMoAttributeValueResult_3& out) {
            host.results().give("interceptor", refs({kUnitInside}), out);
            return OrvOk;
        });
    {
        const Read read = client().get(3, kUnit, "to");
        EXPECT_EQ(read.value(), refs({kUnit}));
    }
    EXPECT_THAT(host.calls(), ElementsAre("Interceptor.getMoAttribute('ManagedElement,Unit', 3, "
                                          "'ManagedElement=1,Unit=7', 'to')",
                                          "Producer.release('interceptor')"));
}

TEST_F(Interceptors, GetMoAttributes_TheInterceptorIsAskedInTheRoutersPlace) {
    host.interceptor(kPath);
    host.when("Interceptor.getMoAttributes")
        .answers<OrvMoAttributeValuesResult_3>([&](OrvMoAttributeValuesResult_3& out) {
            host.results().giveAll("interceptor", {refs({kUnitInside}), strings({"y"})}, out);
            return OrvOk;
        });
    {
        const ReadMany read = client().getMany(3, kUnit, {"to", "label"});
        EXPECT_THAT(read.values(), ElementsAre(refs({kUnit}), strings({"y"})));
    }
    EXPECT_THAT(host.calls(), ElementsAre("Interceptor.getMoAttributes('ManagedElement,Unit', 3, "
                                          "'ManagedElement=1,Unit=7', ['to', 'label'])",
                                          "Producer.releaseAll('interceptor')"));
}

TEST_F(Interceptors, NothingOverridden_TheRouterAnswersThroughTheBase) {
    host.interceptor(kPath);
    EXPECT_EQ(client().get(3, kUnit, "to").value(), refs({kUnit}));
    EXPECT_THAT(host.calls("VekRouter3."),
                ElementsAre("VekRouter3.getMoAttribute(3, 'ManagedElement=1,Unit=7', 'to')"));
    EXPECT_THAT(host.calls("Router3."), IsEmpty());
}

TEST_F(Interceptors, Refusal_ComesBackUnwrapped) {
    OrvMoAttributeValueContainer_3 kept = {OrvMoAttributeTypeMoRef_3, 0, nullptr};
    OrvMoAttributeValueContainer_3* many[] = {&kept, nullptr};
    host.interceptor(kPath);
    host.when("Interceptor.getMoAttribute")
        .answers<OrvMoAttributeValueResult_3>([&](OrvMoAttributeValueResult_3& out) {
            out = {nullptr, &kept};
            return -42;
        });
    host.when("Interceptor.getMoAttributes")
        .answers<OrvMoAttributeValuesResult_3>([&](OrvMoAttributeValuesResult_3& out) {
            out = {nullptr, many};
            return -43;
        });
    const Read read = client().get(3, kUnit, "to");
    EXPECT_EQ(read.code, -42);
    EXPECT_EQ(read.record.container, &kept);
    EXPECT_EQ(read.record.release, nullptr);
    const ReadMany readMany = client().getMany(3, kUnit, {"to"});
    EXPECT_EQ(readMany.code, -43);
    EXPECT_EQ(readMany.record.containers, many);
    EXPECT_THAT(host.calls("Router3."), IsEmpty());
}

TEST_F(Interceptors, RegisteredForAnotherPath_TheRouterIsAsked) {
    host.interceptor("ManagedElement");
    host.interceptor("Unit");
    host.interceptor("ManagedElement,Unit,Cell");
    client().get(3, kUnit, "label");
    client().getMany(3, kUnit, {"label"});
    EXPECT_THAT(host.calls("Interceptor."), IsEmpty());
    client().get(3, "ManagedElement=paris", "label");
    EXPECT_THAT(host.calls("Interceptor."),
                ElementsAre("Interceptor.getMoAttribute('ManagedElement', 3, 'ManagedElement=1', "
                            "'label')"));
}

TEST_F(Interceptors, StepWithNamingAttribute_CountsAsItsClass) {
    host.interceptor(kPath);
    host.mo("ManagedElement=1,Unit.label=7").with("a", strings({"x"}));
    client().get(3, "ManagedElement=paris,Unit.label=7", "a");
    EXPECT_EQ(host.calls("Interceptor.").size(), 1U);
}

TEST_F(Interceptors, Deregistered_TheRouterIsAskedAgain) {
    Interceptor& one = host.interceptor(kPath);
    one.deregisterClass(kPath);
    host.forget();
    client().get(3, kUnit, "label");
    EXPECT_THAT(host.calls("Interceptor."), IsEmpty());
    EXPECT_THAT(host.calls("Router3.getMoAttribute"), testing::SizeIs(1));
}

// From another thread: the one that runs could take a lock twice.
TEST_F(Interceptors, InterceptorOrRouterAtWork_TheRepositoryIsFree) {
    Interceptor& one = host.interceptor(kPath);
    std::list<std::future<void>> others;
    const auto useTheRepository = [&] {
        others.push_back(std::async(std::launch::async, [&] {
            EXPECT_EQ(one.getInterceptor(kPath), one.address());
            one.deregisterClass(kPath);
            EXPECT_EQ(one.registerClass(kPath), OrvOk);
        }));
        EXPECT_EQ(others.back().wait_for(std::chrono::seconds(30)), std::future_status::ready);
    };
    for (const std::string call : {"Interceptor.getMoAttribute", "Interceptor.getMoAttributes",
                                   "Router3.getMoAttribute", "Router3.getMoAttributes"}) {
        host.when(call).runs(useTheRepository);
    }
    for (const std::string& dn : {kUnit, kRoot}) {
        EXPECT_EQ(client().get(3, dn, "label").code, OrvOk);
        EXPECT_EQ(client().getMany(3, dn, {"label"}).code, OrvOk);
    }
    EXPECT_EQ(others.size(), 4U);
}

TEST_F(Interceptors, OtherReads_GoToTheRouterAllTheSame) {
    host.interceptor(kPath);
    host.interceptor("ManagedElement");
    host.interceptor("");
    EXPECT_TRUE(client().exists(3, kUnit).thing);
    EXPECT_EQ(client().count(3, "ManagedElement=paris", "Unit").thing, 1U);
    const auto iterator = client().open(3, "ManagedElement=paris", "Unit");
    EXPECT_EQ(client().next(iterator.thing).thing, "7");
    client().finalize(iterator.thing);
    // What the base of the interceptors passes on would reach the router under its other name.
    EXPECT_THAT(host.calls("VekRouter3."), IsEmpty());
    EXPECT_EQ(host.calls("Router3.").size(), 5U);
}

TEST_F(Interceptors, RootId_OfAnInterceptorIsMadeExternalToo) {
    host.interceptor("ManagedElement");
    host.when("Interceptor.getMoAttribute")
        .answers<OrvMoAttributeValueResult_3>([&](OrvMoAttributeValueResult_3& out) {
            host.results().give("interceptor", strings({"1"}), out);
            return OrvOk;
        });
    EXPECT_EQ(client().get(3, "ManagedElement=paris", "managedElementId").value(),
              strings({"paris"}));
}

TEST_F(Interceptors, ThrowsAStandardException_IsAFailureAndTheNextCallIsServed) {
    host.interceptor(kPath);
    host.when("Interceptor.getMoAttribute").once().throws(std::runtime_error("mine"));
    host.when("Interceptor.getMoAttributes").once().throws(std::out_of_range("mine"));
    EXPECT_EQ(client().get(3, kUnit, "label").code, OrvFailure);
    EXPECT_EQ(client().getMany(3, kUnit, {"label"}).code, OrvFailure);
    EXPECT_THAT(host.logs(), IsEmpty());
    EXPECT_EQ(client().get(3, kUnit, "label").value(), strings({"x"}));
    EXPECT_EQ(client().getMany(3, kUnit, {"label"}).code, OrvOk);
}

TEST_F(Interceptors, ThrowsAfterAnswering_TheClientsResultKeepsWhatItWrote) {
    OrvMoAttributeValueContainer_3 mine = {OrvMoAttributeTypeMoRef_3, 0, nullptr};
    host.interceptor(kPath);
    host.when("Interceptor.getMoAttribute")
        .answers<OrvMoAttributeValueResult_3>([&](OrvMoAttributeValueResult_3& out) -> OrvReturnT {
            out.container = &mine;
            throw std::runtime_error("late");
        });
    const Read read = client().get(3, kUnit, "label");
    EXPECT_EQ(read.code, OrvFailure);
    EXPECT_EQ(read.record.container, &mine);
}

TEST_F(Interceptors, ThrowsSomethingElse_Passes) {
    host.interceptor(kPath);
    host.when("Interceptor.getMoAttribute").once().throws(42);
    EXPECT_THROW(client().get(3, kUnit, "label"), int);
    EXPECT_EQ(client().get(3, kUnit, "label").code, OrvOk);
}

TEST_F(Interceptors, CallsTheComponentBack_IsServed) {
    host.interceptor(kPath);
    bool exists = false;
    host.when("Interceptor.getMoAttribute").runs([&] { exists = client().exists(3, kUnit).thing; });
    EXPECT_EQ(client().get(3, kUnit, "label").code, OrvOk);
    EXPECT_TRUE(exists);
}
