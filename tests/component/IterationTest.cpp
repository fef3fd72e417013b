// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Iterators of version 3. What version 1 does differently is with version 1.

#include "Host.h"

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
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

class Iteration : public testing::Test {
protected:
    Iteration() {
        host.mo("ManagedElement=1");
        host.mo("ManagedElement=1,Unit=a");
        host.mo("ManagedElement=1,Unit=b");
        host.start();
    }

    Client3 client() const { return host.client(); }

    /// An iterator over the two units.
    unsigned long long openUnits(unsigned long txHandle = 1) const {
        const auto iterator = client().open(txHandle, "ManagedElement=paris", "Unit");
        EXPECT_EQ(iterator.code, OrvOk);
        return iterator.thing;
    }

    /// All names up to the end.
    std::vector<std::string> namesOf(unsigned long long iterator) const {
        std::vector<std::string> names;
        for (auto step = client().next(iterator); step.code == OrvOk && step.thing != "(null)";
             step = client().next(iterator)) {
            names.push_back(step.thing);
        }
        return names;
    }

    Host host;
};

TEST_F(Iteration, Children_ComeUntouchedUntilTheNull) {
    const auto iterator = openUnits();
    EXPECT_EQ(client().next(iterator).thing, "a");
    EXPECT_EQ(client().next(iterator).thing, "b");
    const auto end = client().next(iterator);
    EXPECT_EQ(end.code, OrvOk);
    EXPECT_EQ(end.thing, "(null)");
}

TEST_F(Iteration, Calls_RouterFirstThenTheJoinThenTheRoutersHandle) {
    const auto iterator = openUnits();
    client().next(iterator);
    client().finalize(iterator);
    const std::string handle = std::to_string(0x1122334400000001ULL);
    EXPECT_THAT(host.calls(), ElementsAre("Router3.newMoIterator(1, 'ManagedElement=1', 'Unit')",
                                          "Transaction.join(1, OrvOamSpiTransactionalResource)",
                                          "Router3.nextMo(" + handle + ")",
                                          "Router3.finalizeMoIterator(" + handle + ")"));
}

TEST_F(Iteration, Handle_IsNotTheRouters) {
    EXPECT_NE(openUnits(), 0x1122334400000001ULL);
}

TEST_F(Iteration, EmptyDn_EachNameIsTheIdentity) {
    host.mo("ManagedElement=other");
    const auto iterator = client().open(1, "", "ManagedElement");
    EXPECT_THAT(host.calls("Router3."),
                ElementsAre("Router3.newMoIterator(1, '', 'ManagedElement')"));
    EXPECT_THAT(namesOf(iterator.thing), ElementsAre("paris", "paris"));
}

TEST_F(Iteration, EmptyDn_TheIdentityIsThatOfTheMoment) {
    host.mo("ManagedElement=other");
    const auto iterator = client().open(1, "", "ManagedElement");
    host.identity("rome", "backup");
    EXPECT_EQ(client().next(iterator.thing).thing, "rome");
    host.identity("", "backup");
    EXPECT_EQ(client().next(iterator.thing).thing, "backup");
}

TEST_F(Iteration, EmptyDn_AnyClassShowsTheIdentity) {
    host.mo("Plant=north");
    EXPECT_THAT(namesOf(client().open(1, "", "Plant").thing), ElementsAre("paris"));
}

TEST_F(Iteration, EmptyDn_TheEndStaysNull) {
    const auto iterator = client().open(1, "", "Nothing");
    const auto end = client().next(iterator.thing);
    EXPECT_EQ(end.code, OrvOk);
    EXPECT_EQ(end.thing, "(null)");
}

TEST_F(Iteration, EmptyDn_AFailedStepShowsNoIdentity) {
    const auto iterator = client().open(1, "", "ManagedElement");
    host.when("Router3.nextMo").returns(-5);
    const auto step = client().next(iterator.thing);
    EXPECT_EQ(step.code, -5);
    EXPECT_EQ(step.thing, "1");
}

TEST_F(Iteration, NonEmptyDn_NamesThatLookLikeTheRootStayUntouched) {
    host.mo("Plant=1,ManagedElement=1");
    EXPECT_THAT(namesOf(client().open(1, "Plant=1", "ManagedElement").thing), ElementsAre("1"));
}

TEST_F(Iteration, ForeignDn_DoesNotExistAndNothingHappens) {
    const auto iterator = client().open(1, "ManagedElement=rome", "Unit");
    EXPECT_EQ(iterator.code, OrvNotExist);
    EXPECT_EQ(iterator.thing, 0U);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(Iteration, ForeignDn_Level8_TheExitTraceNamesTheCode) {
    host.logLevel(8);
    client().open(1, "ManagedElement=rome", "Unit");
    EXPECT_THAT(host.logs(),
                ElementsAre("trace 9 newMoIterator:  >> newMoIterator  dn: ManagedElement=rome, "
                            "class: Unit",
                            "trace2 ExtCm 14 newMoIterator:  >> newMoIterator  dn: "
                            "ManagedElement=rome, class: Unit",
                            "trace 10 newMoIterator:  << Error: OrvNotExist",
                            "trace2 ExtCm 14 newMoIterator:  << Error: OrvNotExist"));
}

TEST_F(Iteration, RouterRefuses_NothingIsJoinedAndNoHandleIsMade) {
    host.when("Router3.newMoIterator").returns(-5);
    const auto iterator = client().open(1, "ManagedElement=paris", "Unit");
    EXPECT_EQ(iterator.code, -5);
    EXPECT_EQ(iterator.thing, 0x1122334400000001ULL); // as the router left it
    EXPECT_THAT(host.calls("Transaction."), IsEmpty());
    EXPECT_EQ(client().next(iterator.thing).code, OrvNotActive);
}

TEST_F(Iteration, JoinThrows_TheClientsHandleKeepsWhatTheRouterWrote) {
    host.when("Transaction.join").throws(std::runtime_error("host"));
    const auto iterator = client().open(1, "ManagedElement=paris", "Unit");
    EXPECT_EQ(iterator.code, OrvFailure);
    EXPECT_EQ(iterator.thing, 0x1122334400000001ULL);
    EXPECT_EQ(client().next(iterator.thing).code, OrvNotActive);
}

TEST_F(Iteration, NextMo_MadeUpHandles_AreNotActiveAndTheResultIsUntouched) {
    const auto living = openUnits();
    host.forget();
    for (const unsigned long long handle :
         {0ULL, 1ULL, 8ULL, living + 1, living - 8, 0x1122334400000001ULL, ~0ULL}) {
        const auto step = client().next(handle);
        EXPECT_EQ(step.code, OrvNotActive) << handle;
        EXPECT_EQ(step.thing, "(untouched)") << handle;
    }
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(Iteration, NextMo_HandleOfVersion1_IsNotActive) {
    const auto old = host.client1().open(1, "ManagedElement=paris", "Unit");
    ASSERT_EQ(old.code, OrvOk);
    EXPECT_EQ(client().next(reinterpret_cast<unsigned long long>(old.thing)).code, OrvNotActive);
}

TEST_F(Iteration, NextMo_UnknownHandle_WritesNoExitTrace) {
    host.logLevel(8);
    client().next(4711);
    EXPECT_THAT(host.logs(), Contains(StartsWith("trace 9 nextMo:  >> ")));
    EXPECT_THAT(host.logs(), Not(Contains(StartsWith("trace 10 "))));
}

TEST_F(Iteration, NextMo_Level8_TheExitTraceShowsTheCode) {
    const auto iterator = openUnits();
    host.logLevel(8).forget();
    client().next(iterator);
    EXPECT_EQ(host.logs().back(), "trace2 ExtCm 14 nextMo:  << ret: OrvOk");
}

TEST_F(Iteration, NextMo_RouterFails_ItsCodeComesBack) {
    const auto iterator = openUnits();
    host.when("Router3.nextMo").fails(-5);
    EXPECT_EQ(client().next(iterator).code, -5);
}

TEST_F(Iteration, NextMo_RouterThrows_IsAFailureAndTheIteratorLives) {
    const auto iterator = openUnits();
    host.when("Router3.nextMo").once().throws(std::runtime_error("router"));
    EXPECT_EQ(client().next(iterator).code, OrvFailure);
    EXPECT_THAT(namesOf(iterator), ElementsAre("a", "b"));
}

TEST_F(Iteration, NextMo_RouterThrowsAfterItsAnswer_TheResultIsUntouched) {
    const auto iterator = openUnits();
    host.when("Router3.nextMo").throwsAfterwards(std::runtime_error("router"));
    const auto step = client().next(iterator);
    EXPECT_EQ(step.code, OrvFailure);
    EXPECT_EQ(step.thing, "(untouched)");
}

TEST_F(Iteration, Finalize_MadeUpHandles_AreOkAndNobodyIsCalled) {
    openUnits();
    host.forget();
    for (const unsigned long long handle : {0ULL, 1ULL, 0x1122334400000001ULL, ~0ULL}) {
        EXPECT_EQ(client().finalize(handle), OrvOk) << handle;
    }
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(Iteration, Finalize_RouterRefuses_IsOk) {
    const auto iterator = openUnits();
    host.when("Router3.finalizeMoIterator").fails(-5);
    EXPECT_EQ(client().finalize(iterator), OrvOk);
}

TEST_F(Iteration, Finalize_RouterThrows_IsAFailure) {
    const auto iterator = openUnits();
    host.when("Router3.finalizeMoIterator").throws(std::runtime_error("router"));
    EXPECT_EQ(client().finalize(iterator), OrvFailure);
}

TEST_F(Iteration, Finalized_NextMoStillReachesTheRouter) {
    const auto iterator = openUnits();
    ASSERT_EQ(client().finalize(iterator), OrvOk);
    host.forget();
    host.when("Router3.nextMo").fails(-42);
    EXPECT_EQ(client().next(iterator).code, -42);
    EXPECT_THAT(host.calls("Router3.nextMo"), SizeIs(1));
}

TEST_F(Iteration, FinalizedTwice_TheRouterIsCalledTwice) {
    const auto iterator = openUnits();
    EXPECT_EQ(client().finalize(iterator), OrvOk);
    EXPECT_EQ(client().finalize(iterator), OrvOk);
    EXPECT_THAT(host.calls("Router3.finalizeMoIterator"), SizeIs(2));
}

TEST_F(Iteration, TransactionFinished_NextMoIsNotActiveAndFinalizeOk) {
    const auto iterator = openUnits();
    ASSERT_EQ(host.resource().finish(1), OrvOk);
    host.forget();
    const auto step = client().next(iterator);
    EXPECT_EQ(step.code, OrvNotActive);
    EXPECT_EQ(step.thing, "(untouched)");
    EXPECT_EQ(client().finalize(iterator), OrvOk);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(Iteration, Stopped_FinalizeIsOkAndNobodyIsCalled) {
    const auto iterator = openUnits();
    ASSERT_EQ(host.stopComponent(), OrvOk);
    host.forget();
    EXPECT_EQ(client().finalize(iterator), OrvOk);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(Iteration, SeveralAtOnce_KeepTheirPlaces) {
    const auto first = openUnits(1);
    const auto second = openUnits(1);
    const auto third = openUnits(2);
    EXPECT_EQ(client().next(first).thing, "a");
    EXPECT_EQ(client().next(second).thing, "a");
    EXPECT_EQ(client().next(first).thing, "b");
    EXPECT_THAT(namesOf(third), ElementsAre("a", "b"));
    EXPECT_THAT(namesOf(second), ElementsAre("b"));
}

TEST_F(Iteration, Thousands_AllDieWithTheirTransaction) {
    constexpr int kIterators = 5000;
    std::vector<unsigned long long> iterators;
    iterators.reserve(kIterators);
    for (int i = 0; i < kIterators; ++i) {
        iterators.push_back(openUnits(i % 2 == 0 ? 1 : 2));
    }
    ASSERT_EQ(host.resource().finish(1), OrvOk);
    for (std::size_t i = 0; i < iterators.size(); ++i) {
        EXPECT_EQ(client().next(iterators[i]).code, i % 2 == 0 ? OrvNotActive : OrvOk);
    }
}

// Nobody looks whether the service is started before the DN is translated.
TEST_F(Iteration, Stopped_AForeignDnDoesNotExist) {
    ASSERT_EQ(host.stopComponent(), OrvOk);
    EXPECT_EQ(client().open(1, "ManagedElement=rome", "Unit").code, OrvNotExist);
}

TEST_F(Iteration, RouterAtWork_OtherThreadsAreServed) {
    const auto theirs = openUnits(2);
    std::list<std::future<void>> others;
    const auto useTheirs = [&] {
        others.push_back(std::async(std::launch::async, [&] {
            client().next(theirs);
            EXPECT_EQ(client().finalize(theirs), OrvOk);
        }));
        EXPECT_EQ(others.back().wait_for(std::chrono::seconds(30)), std::future_status::ready);
    };
    const std::string mineAtTheRouter = std::to_string(0x1122334400000002ULL);
    host.when("Router3.newMoIterator").runs(useTheirs);
    host.when("Router3.nextMo").on(mineAtTheRouter).runs(useTheirs);
    host.when("Router3.finalizeMoIterator").on(mineAtTheRouter).runs(useTheirs);
    const auto mine = openUnits(1);
    EXPECT_EQ(client().next(mine).thing, "a");
    EXPECT_EQ(client().finalize(mine), OrvOk);
    EXPECT_EQ(others.size(), 3U);
}
