// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Entry, registration, start and stop.

#include "Host.h"
#include "Names.h"
#include "Portal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

using namespace Scripted;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace {

const std::string kNoRouterLog = "log 3 start: Could not lookup cmrouterservice";
const std::string kNoRouterTrace = "trace2 ExtCm 3 start: Could not lookup cmrouterservice";

std::vector<std::string> identities(VekMgmtSpiInterface_1** array) {
    std::vector<std::string> texts;
    for (; *array != nullptr; ++array) {
        texts.push_back(arg(**array).text);
    }
    return texts;
}

/// The classes whose function \p function wrote an entry trace, in order.
std::vector<std::string> entered(const Host& host, const std::string& function) {
    std::vector<std::string> files;
    for (const Orv::LogRecord& record : host.logRecords()) {
        if (record.form == Orv::LogRecord::Form::Trace && record.kind == 9 &&
            record.function == function) {
            files.push_back(record.file);
        }
    }
    return files;
}

}

TEST(Init, BothPortals_RegistersThroughVersion3) {
    Host host;
    host.load();
    EXPECT_EQ(host.init(), OrvOk);
    EXPECT_THAT(host.calls(),
                ElementsAre("Accessor.getPortal('1')", "Accessor.getPortal('3')",
                            "Portal3.registerComponent('OrvOamSpiExtCmRouterService')"));
}

TEST(Init, Portal1Only_RegistersThroughItAndTerminateLeavesItRegistered) {
    Host host;
    host.without(Part::Portal3).load();
    EXPECT_EQ(host.init(), OrvOk);
    EXPECT_THAT(host.calls(),
                ElementsAre("Accessor.getPortal('1')", "Accessor.getPortal('3')",
                            "Portal1.registerComponent('OrvOamSpiExtCmRouterService')"));
    host.forget();
    host.terminate();
    EXPECT_THAT(host.calls(), IsEmpty());
    EXPECT_NE(host.registered(), nullptr);
}

TEST(Init, Portal3Only_IsRefusedAndNothingIsRegistered) {
    Host host;
    host.without(Part::Portal1).load();
    EXPECT_EQ(host.init(), OrvFailure);
    EXPECT_THAT(host.calls(), ElementsAre("Accessor.getPortal('1')", "Accessor.getPortal('3')"));
    EXPECT_EQ(host.registered(), nullptr);
}

TEST(Init, NoPortal_IsRefused) {
    Host host;
    host.without(Part::Portal1).without(Part::Portal3).load();
    EXPECT_EQ(host.init(), OrvFailure);
    host.forget();
    host.terminate();
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST(Init, NoAccessor_IsRefused) {
    Host host;
    host.load();
    EXPECT_EQ(host.initWithoutAccessor(), OrvFailure);
    EXPECT_THAT(host.calls(), IsEmpty());
    EXPECT_EQ(host.init(), OrvOk);
}

TEST(Init, RefusedAfterASuccess_TheRecordIsUntouchedAndNothingRegisteredAgain) {
    Host host;
    host.load();
    ASSERT_EQ(host.init(), OrvOk);
    const OrvMgmtSpiComponent_1 before = host.record();
    host.forget();
    EXPECT_EQ(host.without(Part::Portal1).init(), OrvFailure);
    EXPECT_THAT(host.calls(), ElementsAre("Accessor.getPortal('1')", "Accessor.getPortal('3')"));
    EXPECT_EQ(host.record().interfaceArray, before.interfaceArray);
    EXPECT_EQ(host.record().dependencyArray, before.dependencyArray);
    EXPECT_EQ(host.record().emptyInterfaceArray, before.emptyInterfaceArray);
}

TEST(Init, RefusedThenPortal1Appears_Succeeds) {
    Host host;
    host.without(Part::Portal1).load();
    EXPECT_EQ(host.init(), OrvFailure);
    EXPECT_EQ(host.with(Part::Portal1).init(), OrvOk);
    EXPECT_EQ(host.startComponent(), OrvOk);
}

TEST(Init, Record_SaysWhoTheComponentIs) {
    Host host;
    host.load();
    ASSERT_EQ(host.init(), OrvOk);
    EXPECT_STREQ(host.record().componentName, "OrvOamSpiExtCmRouterService");
    EXPECT_STREQ(host.record().interfaceName, "OrvMgmtSpiComponent");
    EXPECT_STREQ(host.record().interfaceVersion, "1");
    EXPECT_NE(host.record().start, nullptr);
    EXPECT_NE(host.record().stop, nullptr);
    EXPECT_FALSE(host.record().componentFlag);
}

TEST(Init, Record_OffersFiveInterfacesInOrder) {
    Host host;
    host.load();
    ASSERT_EQ(host.init(), OrvOk);
    EXPECT_THAT(identities(host.record().interfaceArray),
                ElementsAre("'OrvOamSpiExtCmRouterService', 'OrvOamSpiManagedObject', '1'",
                            "'OrvOamSpiExtCmRouterService', 'OrvOamSpiManagedObject', '3'",
                            "'OrvOamSpiExtCmRouterService', 'VekOamSpiManagedObject', '3_1'",
                            "'OrvOamSpiExtCmRouterService', 'OrvOamSpiTransactionalResource', '2'",
                            "'OrvOamSpiExtCmRouterService', 'ExtCmInterceptorRepositoryI', '1'"));
}

TEST(Init, Record_OneTextNamesTheComponentEverywhere) {
    Host host;
    host.load();
    ASSERT_EQ(host.init(), OrvOk);
    for (VekMgmtSpiInterface_1** each = host.record().interfaceArray; *each != nullptr; ++each) {
        EXPECT_EQ((*each)->componentName, host.record().componentName);
    }
}

TEST(Init, Record_RequiresFiveInterfacesWithTheirNulls) {
    Host host;
    host.load();
    ASSERT_EQ(host.init(), OrvOk);
    EXPECT_THAT(identities(host.record().dependencyArray),
                ElementsAre("'OrvOamSpiTransactionService', 'OrvOamSpiTransactionMaster', '1'",
                            "'OrvOamSpiCmRouterService', 'OrvOamSpiManagedObject', '1'",
                            "'OrvOamSpiEventService', 'OrvOamSpiEventRouter', '1'",
                            "null, 'OrvMwSpiLog', '1'", "null, 'VekMwSpiTrace', null"));
    EXPECT_THAT(identities(host.record().emptyInterfaceArray), IsEmpty());
}

TEST(Init, Twice_RebuildsTheArraysWithoutDoubling) {
    Host host;
    host.load();
    ASSERT_EQ(host.init(), OrvOk);
    const auto offered = identities(host.record().interfaceArray);
    const auto required = identities(host.record().dependencyArray);
    const OrvMgmtSpiComponent_1* record = &host.record();
    EXPECT_EQ(host.init(), OrvOk);
    EXPECT_EQ(&host.record(), record);
    EXPECT_EQ(identities(host.record().interfaceArray), offered);
    EXPECT_EQ(identities(host.record().dependencyArray), required);
    EXPECT_THAT(identities(host.record().emptyInterfaceArray), IsEmpty());
    EXPECT_EQ(host.startComponent(), OrvOk);
}

TEST(Init, Arrays_EndRightAfterTheFifthEntry) {
    Host host;
    host.load();
    ASSERT_EQ(host.init(), OrvOk);
    ASSERT_EQ(host.init(), OrvOk);
    EXPECT_EQ(host.record().interfaceArray[5], nullptr);
    EXPECT_EQ(host.record().dependencyArray[5], nullptr);
    EXPECT_EQ(host.record().emptyInterfaceArray[0], nullptr);
}

TEST(Init, RegistrationRefused_ItsCodeComesBackAndInitializeDoesNotRun) {
    Host host;
    host.logLevel(8).when("Portal3.registerComponent").fails(-77);
    host.load();
    EXPECT_EQ(host.init(), -77);
    EXPECT_EQ(identities(host.record().interfaceArray).size(), 5U);
    EXPECT_EQ(identities(host.record().dependencyArray).size(), 5U);
    EXPECT_THAT(entered(host, "initialize"), IsEmpty());
}

TEST(Init, RegistrationRefusedByPortal1_ItsCodeComesBack) {
    Host host;
    host.without(Part::Portal3).when("Portal1.registerComponent").fails(7);
    host.load();
    EXPECT_EQ(host.init(), 7);
}

TEST(Init, Level8_InitializeTracesItsEntryAndExit) {
    Host host;
    host.logLevel(8).load();
    ASSERT_EQ(host.init("ignored"), OrvOk);
    EXPECT_THAT(host.logs(), Contains(StartsWith("trace 9 initialize:  >> ")));
    EXPECT_THAT(host.logs(), Contains(StartsWith("trace2 ExtCm 14 initialize:  >> ")));
    EXPECT_THAT(host.logs(), Contains(StartsWith("trace 10 initialize:  << ")));
    EXPECT_THAT(host.logs(), Contains(StartsWith("trace2 ExtCm 14 initialize:  << ")));
}

TEST(Init, HostThrows_TheExceptionPasses) {
    Host host;
    host.when("Accessor.getPortal").on("'3'").once().throws(std::runtime_error("no portal"));
    host.load();
    EXPECT_THROW(host.init(), std::runtime_error);
    host.when("Portal3.registerComponent").once().throws(std::runtime_error("not today"));
    EXPECT_THROW(host.init(), std::runtime_error);
    EXPECT_EQ(host.init(), OrvOk);
}

TEST(Terminate, BothPortals_UnregistersTheRecordThroughVersion3Once) {
    Host host;
    host.load();
    ASSERT_EQ(host.init(), OrvOk);
    const OrvMgmtSpiComponent_1* record = host.registered();
    host.forget();
    host.terminate();
    EXPECT_THAT(host.calls(),
                ElementsAre("Portal3.unregisterComponent('OrvOamSpiExtCmRouterService')"));
    EXPECT_EQ(host.callRecords().at(0).arguments.at(0).address, record);
    EXPECT_EQ(host.registered(), nullptr);
    host.forget();
    host.terminate();
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST(Terminate, UnregistrationRefused_IsNotTriedAgain) {
    Host host;
    host.when("Portal3.unregisterComponent").fails(-5);
    host.load();
    ASSERT_EQ(host.init(), OrvOk);
    host.terminate();
    host.forget();
    host.terminate();
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST(Terminate, AfterARefusedInit_UnregistersThroughTheStoredPortal3) {
    Host host;
    host.without(Part::Portal1).load();
    ASSERT_EQ(host.init(), OrvFailure);
    host.forget();
    host.terminate();
    EXPECT_THAT(host.calls(),
                ElementsAre("Portal3.unregisterComponent('OrvOamSpiExtCmRouterService')"));
    host.forget();
    host.terminate();
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST(Terminate, BeforeInit_DoesNothing) {
    Host host;
    host.load();
    host.terminate();
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST(Terminate, UnregistrationThrows_TheExceptionPasses) {
    Host host;
    host.when("Portal3.unregisterComponent").once().throws(std::runtime_error("stuck"));
    host.load();
    ASSERT_EQ(host.init(), OrvOk);
    EXPECT_THROW(host.terminate(), std::runtime_error);
}

TEST(Terminate, ThenInit_ServesAgain) {
    Host host;
    host.start();
    EXPECT_EQ(host.stopComponent(), OrvOk);
    host.terminate();
    EXPECT_EQ(host.init(), OrvOk);
    EXPECT_EQ(host.startComponent(), OrvOk);
    host.mo("A=1");
    EXPECT_TRUE(host.client().exists(1, "A=1").thing);
}

TEST(Start, AllThere_LooksUpInOrder) {
    Host host;
    host.load();
    ASSERT_EQ(host.init(), OrvOk);
    host.forget();
    EXPECT_EQ(host.startComponent(), OrvOk);
    EXPECT_THAT(host.calls(),
                ElementsAre(kLookUpVekRouter3, kLookUpModel, kLookUpThreadContext, kAskRouter1,
                            kAskRouter3, kAskRouter3_1, kAskTransaction));
    EXPECT_THAT(host.logs(), IsEmpty());
}

TEST(Start, AnyReason_IsTheSame) {
    Host host;
    host.load();
    ASSERT_EQ(host.init(), OrvOk);
    for (const auto reason : {OrvStateChangeReasonHostStart, OrvStateChangeReasonHostShutdown,
                              static_cast<OrvStateChangeReason>(4711)}) {
        EXPECT_EQ(host.startComponent(reason), OrvOk);
        EXPECT_EQ(host.record().stop(reason), OrvOk);
    }
}

TEST(Start, Twice_MakesNoSecondRouterLookup) {
    Host host;
    host.start();
    EXPECT_EQ(host.startComponent(), OrvOk);
    EXPECT_THAT(host.calls(), ElementsAre(kAskTransaction));
}

// Only the interfaces stay as they are: what looks up through Orv::Portal looks again.
TEST(Start, TwiceWithTheCacheEmptiedBetween_LooksUpAllButTheRoutersAgain) {
    Host host;
    host.start();
    Orv::Portal::instance()->attach(&orvPortalLookup);
    EXPECT_EQ(host.startComponent(), OrvOk);
    EXPECT_THAT(host.calls(), ElementsAre(kLookUpVekRouter3, kLookUpModel, kLookUpThreadContext,
                                          kAskTransaction));
}

TEST(Start, TwiceAndTheModelIsGone_TheValidatorsGoByTheLastAnswer) {
    Host host;
    host.start();
    bool verdict = false;
    EXPECT_EQ(host.resource().validate(5, &verdict), OrvOk);
    EXPECT_TRUE(verdict);
    Orv::Portal::instance()->attach(&orvPortalLookup);
    EXPECT_EQ(host.without(Part::ModelRepository).startComponent(), OrvOk);
    EXPECT_EQ(host.resource().validate(5, &verdict), OrvOk);
    EXPECT_FALSE(verdict);
}

TEST(Start, EachTime_TheTransactionTableIsLookedUpFromNull) {
    Host host;
    host.load();
    ASSERT_EQ(host.init(), OrvOk);
    std::vector<void*> before;
    host.when("Portal1.getInterface")
        .on("'OrvOamSpiTransaction'")
        .answers<void*>([&](void*& found) {
            before.push_back(found);
            found = transactionTable();
            return OrvOk;
        });
    ASSERT_EQ(host.startComponent(), OrvOk);
    ASSERT_EQ(host.startComponent(), OrvOk);
    EXPECT_THAT(before, ElementsAre(nullptr, nullptr));
    EXPECT_EQ(host.client().open(7, "", "A").code, OrvOk);
    EXPECT_THAT(host.calls("Transaction."),
                ElementsAre("Transaction.join(7, OrvOamSpiTransactionalResource)"));
}

TEST(Start, AfterStop_LooksTheRoutersUpAfresh) {
    Host host;
    host.start();
    ASSERT_EQ(host.stopComponent(), OrvOk);
    host.forget();
    EXPECT_EQ(host.startComponent(), OrvOk);
    EXPECT_THAT(host.calls(),
                ElementsAre(kAskRouter1, kAskRouter3, kAskRouter3_1, kAskTransaction));
}

struct MissingRouter {
    Part part;
    std::vector<std::string> asked;   ///< by the start that fails
    std::vector<std::string> retried; ///< by the next one, with the router there
};

void PrintTo(const MissingRouter& missing, std::ostream* out) {
    PrintTo(missing.part, out);
}

class StartWithoutRouter : public testing::TestWithParam<MissingRouter> {};

TEST_P(StartWithoutRouter, FailsAndTheNextStartRetriesExactlyTheRest) {
    Host host;
    host.without(GetParam().part).load();
    ASSERT_EQ(host.init(), OrvOk);
    host.forget();
    EXPECT_EQ(host.startComponent(), OrvFailure);
    EXPECT_EQ(host.calls("Portal1."), GetParam().asked);
    EXPECT_THAT(host.calls("OrvPortal."),
                ElementsAre(kLookUpVekRouter3, kLookUpModel, kLookUpThreadContext));
    EXPECT_THAT(host.logs(), ElementsAre(kNoRouterLog, kNoRouterTrace));
    bool verdict = false;
    EXPECT_EQ(host.resource().validate(5, &verdict), OrvOk);
    EXPECT_TRUE(verdict) << "the validators are started all the same";
    host.forget();
    EXPECT_EQ(host.with(GetParam().part).startComponent(), OrvOk);
    EXPECT_EQ(host.calls(), GetParam().retried);
    EXPECT_THAT(host.logs(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Versions, StartWithoutRouter,
    testing::Values(MissingRouter{Part::Router1,
                                  {kAskRouter1},
                                  {kAskRouter1, kAskRouter3, kAskRouter3_1, kAskTransaction}},
                    MissingRouter{Part::Router3,
                                  {kAskRouter1, kAskRouter3},
                                  {kAskRouter3, kAskRouter3_1, kAskTransaction}},
                    MissingRouter{Part::Router3_1,
                                  {kAskRouter1, kAskRouter3, kAskRouter3_1},
                                  {kAskRouter3_1, kAskTransaction}}));

TEST(Start, Router3Missing_Version1StaysStartedAndVersion3Not) {
    Host host;
    host.mo("A=1").with("label", strings({"x"}));
    host.without(Part::Router3).load();
    ASSERT_EQ(host.init(), OrvOk);
    ASSERT_EQ(host.startComponent(), OrvFailure);
    EXPECT_EQ(host.client1().get(1, "A=1", "label").code, OrvOk);
    EXPECT_EQ(host.client().exists(1, "A=1").code, OrvNotActive);
    EXPECT_EQ(host.client3_1().set(1, "A=1", {}), OrvNotActive);
}

TEST(Start, Router3_1Missing_Version3IsServed) {
    Host host;
    host.mo("A=1");
    host.without(Part::Router3_1).load();
    ASSERT_EQ(host.init(), OrvOk);
    ASSERT_EQ(host.startComponent(), OrvFailure);
    EXPECT_EQ(host.client().exists(1, "A=1").code, OrvOk);
    EXPECT_EQ(host.client3_1().set(1, "A=1", {}), OrvNotActive);
}

TEST(Start, RouterLookupFailsWithAnyCode_IsAFailure) {
    Host host;
    host.when("Portal1.getInterface").on("'3')").fails(5);
    host.load();
    ASSERT_EQ(host.init(), OrvOk);
    EXPECT_EQ(host.startComponent(), OrvFailure);
}

struct MissingInterface {
    Part part;
    std::string interfaceName;
    std::vector<std::string> lookups;
    std::size_t reports; ///< one for each object that looked
};

void PrintTo(const MissingInterface& missing, std::ostream* out) {
    PrintTo(missing.part, out);
}

class StartWithout : public testing::TestWithParam<MissingInterface> {};

TEST_P(StartWithout, LogsEachFailedLookupOnceAndGoesOn) {
    Host host;
    host.mo("A=1");
    host.without(GetParam().part).load();
    ASSERT_EQ(host.init(), OrvOk);
    host.forget();
    EXPECT_EQ(host.startComponent(), OrvOk);
    EXPECT_EQ(host.calls("OrvPortal."), GetParam().lookups);
    EXPECT_EQ(host.logRecords().size(), 2 * GetParam().reports);
    for (const Orv::LogRecord& record : host.logRecords()) {
        EXPECT_EQ(record.text, "Interface " + GetParam().interfaceName + " not found");
        EXPECT_EQ(record.level, 4);
        if (record.form == Orv::LogRecord::Form::TraceV2) {
            EXPECT_EQ(record.subsystem, Orv::Trace::Common);
            EXPECT_EQ(record.file, "src/common/inc/Portal");
        } else {
            EXPECT_EQ(record.form, Orv::LogRecord::Form::Log);
            EXPECT_EQ(record.flag, 1);
        }
    }
    EXPECT_TRUE(host.client().exists(1, "A=1").thing);
}

INSTANTIATE_TEST_SUITE_P(
    Interfaces, StartWithout,
    testing::Values(MissingInterface{Part::ModelRepository,
                                     "VekOamSpiModelRepository",
                                     {kLookUpVekRouter3, kLookUpModel, kLookUpModel,
                                      kLookUpThreadContext, kLookUpModel},
                                     3},
                    MissingInterface{Part::ThreadContext,
                                     "VekMgmtSpiThreadContext",
                                     {kLookUpVekRouter3, kLookUpModel, kLookUpThreadContext,
                                      kLookUpThreadContext},
                                     2},
                    MissingInterface{
                        Part::VekRouter3,
                        "VekOamSpiManagedObject",
                        {kLookUpVekRouter3, kLookUpModel, kLookUpThreadContext, kLookUpVekRouter3},
                        2}));

TEST(Start, TransactionTableMissing_IsOkAndReadsAreServed) {
    Host host;
    host.mo("A=1");
    host.without(Part::TransactionTable).load();
    ASSERT_EQ(host.init(), OrvOk);
    host.forget();
    EXPECT_EQ(host.startComponent(), OrvOk);
    EXPECT_THAT(host.calls("Portal1."),
                ElementsAre(kAskRouter1, kAskRouter3, kAskRouter3_1, kAskTransaction));
    EXPECT_THAT(host.logs(), IsEmpty());
    EXPECT_TRUE(host.client().exists(1, "A=1").thing);
}

TEST(Start, TransactionLookupFailsButLeavesATable_TheTableIsUsed) {
    Host host;
    host.when("Portal1.getInterface").on("'OrvOamSpiTransaction'").returns(-5);
    host.start();
    EXPECT_EQ(host.client().open(7, "", "A").code, OrvOk);
    EXPECT_THAT(host.calls("Transaction."),
                ElementsAre("Transaction.join(7, OrvOamSpiTransactionalResource)"));
}

TEST(Start, LookupThrows_IsAFailureAndMayBeTriedAgain) {
    Host host;
    host.when("Portal1.getInterface").once().throws(std::runtime_error("no"));
    host.load();
    ASSERT_EQ(host.init(), OrvOk);
    EXPECT_EQ(host.startComponent(), OrvFailure);
    EXPECT_EQ(host.startComponent(), OrvOk);
}

TEST(Start, LookupThrowsWhatIsNoStandardException_Passes) {
    Host host;
    host.when("Portal1.getInterface").once().throws(42);
    host.load();
    ASSERT_EQ(host.init(), OrvOk);
    EXPECT_THROW(host.startComponent(), int);
}

TEST(Start, BothPortals_LooksUpThroughVersion1Only) {
    Host host;
    host.load();
    ASSERT_EQ(host.init(), OrvOk);
    ASSERT_EQ(host.startComponent(), OrvOk);
    EXPECT_THAT(host.calls("Portal3.getInterface"), IsEmpty());
}

TEST(Start, Level8_TheThreeInterfacesTraceInOrder) {
    Host host;
    host.load();
    ASSERT_EQ(host.init(), OrvOk);
    host.logLevel(8);
    ASSERT_EQ(host.startComponent(), OrvOk);
    EXPECT_THAT(
        entered(host, "start"),
        ElementsAre("src/ext_cm/src/MoImpl", "src/ext_cm/src/MoImpl3", "src/ext_cm/src/MoImpl3_1"));
}

TEST(Stop, Started_CallsNobodyAndTheInterfacesAreNotActive) {
    Host host;
    host.mo("A=1");
    host.start();
    EXPECT_EQ(host.stopComponent(), OrvOk);
    EXPECT_EQ(host.client().exists(1, "A=1").code, OrvNotActive);
    EXPECT_EQ(host.client().count(1, "A=1", "B").code, OrvNotActive);
    EXPECT_EQ(host.client1().remove(1, "A=1"), OrvNotActive);
    EXPECT_EQ(host.client3_1().set(1, "A=1", {}), OrvNotActive);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST(Stop, NotStarted_IsOkAndChangesNothing) {
    Host host;
    host.load();
    ASSERT_EQ(host.init(), OrvOk);
    host.forget();
    EXPECT_EQ(host.stopComponent(), OrvOk);
    EXPECT_EQ(host.stopComponent(), OrvOk);
    EXPECT_THAT(host.calls(), IsEmpty());
    EXPECT_EQ(host.startComponent(), OrvOk);
}

TEST(Stop, TransactionsOpen_TheirMemoryGoesAndFinishFindsNothing) {
    Host host;
    host.start();
    const auto first = host.client().open(1, "", "A");
    const auto second = host.client().open(2, "", "A");
    const auto old = host.client1().open(2, "", "A");
    ASSERT_EQ(first.code, OrvOk);
    ASSERT_EQ(second.code, OrvOk);
    ASSERT_EQ(old.code, OrvOk);
    host.forget();
    EXPECT_EQ(host.stopComponent(), OrvOk);
    EXPECT_EQ(host.client().next(first.thing).code, OrvNotActive);
    EXPECT_EQ(host.client().next(second.thing).code, OrvNotActive);
    EXPECT_EQ(host.client1().next(old.thing).code, OrvNotActive);
    EXPECT_EQ(host.resource().finish(1), OrvOk);
    EXPECT_EQ(host.resource().finish(2), OrvOk);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST(Stop, Level8_TheThreeInterfacesTraceInOrder) {
    Host host;
    host.start();
    host.logLevel(8);
    ASSERT_EQ(host.stopComponent(), OrvOk);
    EXPECT_THAT(
        entered(host, "stop"),
        ElementsAre("src/ext_cm/src/MoImpl", "src/ext_cm/src/MoImpl3", "src/ext_cm/src/MoImpl3_1"));
}

// What was kept for the transactions goes with the service; a check for leaks sees if it does not.
TEST(Unload, StartedAndTransactionsOpen_CallsNobody) {
    Host host;
    host.start();
    ASSERT_EQ(host.client().open(1, "", "A").code, OrvOk);
    ASSERT_EQ(host.client1().open(2, "", "A").code, OrvOk);
    host.logLevel(8).forget();
    host.closeAsItIs();
    EXPECT_THAT(host.calls(), IsEmpty());
    EXPECT_THAT(host.logs(), IsEmpty()) << "a stop would have traced";
}

TEST(Unload, ThenLoaded_IsAFreshComponent) {
    Host host;
    host.start();
    const auto iterator = host.client().open(1, "", "A");
    ASSERT_EQ(iterator.code, OrvOk);
    host.unload();
    host.load();
    ASSERT_EQ(host.init(), OrvOk);
    EXPECT_EQ(host.client().exists(1, "A=1").code, OrvNotActive);
    ASSERT_EQ(host.startComponent(), OrvOk);
    host.forget();
    EXPECT_EQ(host.client().open(1, "", "A").code, OrvOk);
    EXPECT_THAT(host.calls("Transaction."),
                ElementsAre("Transaction.join(1, OrvOamSpiTransactionalResource)"));
}
