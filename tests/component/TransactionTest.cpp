// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// When the component joins a transaction, what it keeps for it, and what its phases do.

#include "Host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

using namespace Scripted;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

std::string joined(unsigned long txHandle) {
    return "Transaction.join(" + std::to_string(txHandle) + ", OrvOamSpiTransactionalResource)";
}

}

/// An iterator is the one thing of the read side that the component keeps.
class Transactions : public testing::Test {
protected:
    Transactions() {
        host.mo("P=1");
        host.mo("P=1,B=1");
        host.start();
    }

    Answer<unsigned long long> open(unsigned long txHandle) const {
        return host.client().open(txHandle, "P=1", "B");
    }

    Host host;
};

TEST_F(Transactions, TouchedTwice_JoinOnce) {
    EXPECT_EQ(open(5).code, OrvOk);
    EXPECT_EQ(open(5).code, OrvOk);
    EXPECT_THAT(host.calls("Transaction."), ElementsAre(joined(5)));
}

TEST_F(Transactions, TwoHandles_JoinTwiceWithTheSameResource) {
    open(5);
    open(6);
    const auto calls = host.callRecords("Transaction.");
    ASSERT_EQ(calls.size(), 2U);
    EXPECT_EQ(calls[0].text(), joined(5));
    EXPECT_EQ(calls[1].text(), joined(6));
    EXPECT_EQ(calls[0].arguments[1].address, host.record().interfaceArray[3]);
    EXPECT_EQ(calls[1].arguments[1].address, host.record().interfaceArray[3]);
}

TEST_F(Transactions, TwoVersions_ShareOneEntry) {
    open(5);
    EXPECT_EQ(host.client1().open(5, "P=1", "B").code, OrvOk);
    EXPECT_THAT(host.calls("Transaction."), ElementsAre(joined(5)));
}

TEST_F(Transactions, TouchedByVersion3_1First_TheOthersShareTheEntry) {
    EXPECT_EQ(host.client3_1().set(5, "P=1", {}), OrvOk);
    EXPECT_THAT(host.calls("Transaction."), ElementsAre(joined(5)));
    open(5);
    EXPECT_EQ(host.client1().open(5, "P=1", "B").code, OrvOk);
    EXPECT_THAT(host.calls("Transaction."), ElementsAre(joined(5)));
}

TEST_F(Transactions, HandleZero_IsAHandleLikeAnyOther) {
    const auto iterator = open(0);
    open(0);
    EXPECT_THAT(host.calls("Transaction."), ElementsAre(joined(0)));
    EXPECT_EQ(host.client().next(iterator.thing).thing, "1");
    EXPECT_EQ(host.resource().finish(0), OrvOk);
    EXPECT_EQ(host.client().next(iterator.thing).code, OrvNotActive);
}

TEST_F(Transactions, LargestHandle_IsPassedWhole) {
    const auto largest = std::numeric_limits<unsigned long>::max();
    open(largest);
    EXPECT_THAT(host.calls("Transaction."), ElementsAre(joined(largest)));
}

TEST_F(Transactions, JoinRefused_TheOperationGoesOnAndIsNotRepeated) {
    host.when("Transaction.join").fails(-5);
    const auto iterator = open(5);
    EXPECT_EQ(iterator.code, OrvOk);
    EXPECT_EQ(host.client().next(iterator.thing).thing, "1");
    open(5);
    EXPECT_THAT(host.calls("Transaction."), ElementsAre(joined(5)));
}

TEST_F(Transactions, JoinThrows_IsAFailureAndTheNextTouchDoesNotJoin) {
    host.when("Transaction.join").once().throws(std::runtime_error("host"));
    EXPECT_EQ(open(5).code, OrvFailure);
    const auto iterator = open(5);
    EXPECT_EQ(iterator.code, OrvOk);
    EXPECT_EQ(host.client().next(iterator.thing).thing, "1");
    EXPECT_THAT(host.calls("Transaction."), ElementsAre(joined(5)));
    EXPECT_EQ(host.resource().finish(5), OrvOk);
    open(5);
    EXPECT_THAT(host.calls("Transaction."), ElementsAre(joined(5), joined(5)));
}

TEST_F(Transactions, JoinThrows_OtherTransactionsAreServed) {
    host.when("Transaction.join").once().throws(std::runtime_error("host"));
    EXPECT_EQ(open(5).code, OrvFailure);
    EXPECT_EQ(open(6).code, OrvOk);
}

TEST_F(Transactions, HostCallsTheResourceBackFromJoin_NothingBlocks) {
    OrvReturnT inner = -1;
    host.when("Transaction.join").runs([&] { inner = host.resource().join(5); });
    EXPECT_EQ(open(5).code, OrvOk);
    EXPECT_EQ(inner, OrvOk);
}

TEST_F(Transactions, AfterFinish_TheNextTouchJoinsAgain) {
    open(5);
    EXPECT_EQ(host.resource().finish(5), OrvOk);
    open(5);
    EXPECT_THAT(host.calls("Transaction."), ElementsAre(joined(5), joined(5)));
}

TEST_F(Transactions, AfterStopAndStart_TheNextTouchJoinsAgain) {
    open(5);
    ASSERT_EQ(host.stopComponent(), OrvOk);
    ASSERT_EQ(host.startComponent(), OrvOk);
    open(5);
    EXPECT_THAT(host.calls("Transaction."), ElementsAre(joined(5), joined(5)));
}

TEST_F(Transactions, ReadsOnly_NeverJoin) {
    host.mo("P=1").with("label", strings({"x"})).with("to", refs({"P=1,B=1"}));
    host.client().exists(5, "P=1");
    host.client().count(5, "P=1", "B");
    host.client().get(5, "P=1", "to");
    host.client().getMany(5, "P=1", {"label", "to"});
    EXPECT_THAT(host.calls("Transaction."), IsEmpty());
}

TEST_F(Transactions, FinishOfOne_LeavesTheIteratorsOfTheOthers) {
    const auto first = open(5);
    const auto second = open(5);
    const auto other = open(6);
    EXPECT_EQ(host.resource().finish(5), OrvOk);
    EXPECT_EQ(host.client().next(first.thing).code, OrvNotActive);
    EXPECT_EQ(host.client().next(second.thing).code, OrvNotActive);
    EXPECT_EQ(host.client().next(other.thing).thing, "1");
}

/// A slot of the resource that takes nothing but the handle.
struct Phase {
    std::string name;
    OrvReturnT (*OrvOamSpiTransactionalResource_2::*slot)(unsigned long);
};

void PrintTo(const Phase& phase, std::ostream* out) {
    *out << phase.name;
}

class AnyPhase : public Transactions, public testing::WithParamInterface<Phase> {
protected:
    OrvReturnT run(unsigned long txHandle) const {
        return (host.resource().*GetParam().slot)(txHandle);
    }
};

TEST_P(AnyPhase, UnknownHandle_IsOkAndCallsNobody) {
    EXPECT_EQ(run(99), OrvOk);
    EXPECT_EQ(run(0), OrvOk);
    EXPECT_EQ(run(99), OrvOk);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_P(AnyPhase, Level8_TracesTheHandle) {
    host.logLevel(8);
    EXPECT_EQ(run(99), OrvOk);
    EXPECT_EQ(host.logs().at(0), "trace 9 " + GetParam().name + ":  >> txHandle: 99");
    EXPECT_EQ(host.logs().at(1), "trace2 ExtCm 14 " + GetParam().name + ":  >> txHandle: 99");
    EXPECT_THAT(host.logs().back(), StartsWith("trace2 ExtCm 14 " + GetParam().name + ":  << "));
}

TEST_P(AnyPhase, Stopped_IsOk) {
    ASSERT_EQ(host.stopComponent(), OrvOk);
    EXPECT_EQ(run(99), OrvOk);
}

INSTANTIATE_TEST_SUITE_P(
    Phases, AnyPhase,
    testing::Values(Phase{"join", &OrvOamSpiTransactionalResource_2::join},
                    Phase{"prepare", &OrvOamSpiTransactionalResource_2::prepare},
                    Phase{"commit", &OrvOamSpiTransactionalResource_2::commit},
                    Phase{"abort", &OrvOamSpiTransactionalResource_2::abort},
                    Phase{"finish", &OrvOamSpiTransactionalResource_2::finish}));

TEST_F(Transactions, PrepareCommitAbort_DropNothing) {
    const auto iterator = open(5);
    host.forget();
    EXPECT_EQ(host.resource().prepare(5), OrvOk);
    EXPECT_EQ(host.resource().commit(5), OrvOk);
    EXPECT_EQ(host.resource().abort(5), OrvOk);
    EXPECT_THAT(host.calls(), IsEmpty());
    EXPECT_EQ(host.client().next(iterator.thing).thing, "1");
    open(5);
    EXPECT_THAT(host.calls("Transaction."), IsEmpty());
}

TEST_F(Transactions, FinishTwice_IsOkTwice) {
    open(5);
    EXPECT_EQ(host.resource().finish(5), OrvOk);
    EXPECT_EQ(host.resource().finish(5), OrvOk);
}

TEST_F(Transactions, Finish_CallsNobodyAndDoesNotFinalizeIterators) {
    open(5);
    host.forget();
    EXPECT_EQ(host.resource().finish(5), OrvOk);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(Transactions, ValidateWithNothingRecorded_IsTrueAndReadsNothing) {
    bool result = false;
    EXPECT_EQ(host.resource().validate(5, &result), OrvOk);
    EXPECT_TRUE(result);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(Transactions, ValidateTwice_IsTheSame) {
    bool result = false;
    EXPECT_EQ(host.resource().validate(5, &result), OrvOk);
    EXPECT_EQ(host.resource().validate(5, &result), OrvOk);
    EXPECT_TRUE(result);
}

TEST_F(Transactions, ValidateStopped_NoVerdictIsFalse) {
    ASSERT_EQ(host.stopComponent(), OrvOk);
    bool result = true;
    EXPECT_EQ(host.resource().validate(5, &result), OrvOk);
    EXPECT_FALSE(result);
}

class ValidateWithout : public testing::TestWithParam<Part> {};

TEST_P(ValidateWithout, NoVerdictIsFalse) {
    Host host;
    host.without(GetParam()).start();
    bool result = true;
    EXPECT_EQ(host.resource().validate(5, &result), OrvOk);
    EXPECT_FALSE(result);
}

INSTANTIATE_TEST_SUITE_P(Interfaces, ValidateWithout,
                         testing::Values(Part::ModelRepository, Part::ThreadContext));

TEST_F(Transactions, Level8_ValidateTracesTheHandleFirst) {
    host.logLevel(8);
    bool result = false;
    EXPECT_EQ(host.resource().validate(7, &result), OrvOk);
    EXPECT_EQ(host.logs().at(0), "trace 9 validate:  >> txHandle: 7");
    EXPECT_THAT(host.logs().back(), StartsWith("trace2 ExtCm 14 validate:  << "));
}
