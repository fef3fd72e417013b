// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RouterScene.h"

#include <gmock/gmock.h>

#include <map>

namespace OrvHost {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// Up to two participants that record their calls and return what the test sets. Their tables are
/// plain functions, so their data is static.
struct Script {
    std::vector<std::string> calls;
    std::map<std::string, OrvReturnT> answers; ///< "one.prepare": 0 if not there
    bool oneIsContent = true;
    bool throwAtPrepare = false;
    std::function<void(const std::string&)> onCall;
};

Script* theScript = nullptr;

OrvReturnT note(const std::string& call) {
    theScript->calls.push_back(call);
    if (theScript->onCall) {
        theScript->onCall(call);
    }
    return theScript->answers[call];
}

OrvOamSpiTransactionalResource_2 makeOne() {
    return {orvSpiOfferedBy(OrvOamSpiTransactionalResource_2_ExtCmId, "One"),
            [](unsigned long) { return note("one.join"); },
            [](unsigned long) {
                if (theScript->throwAtPrepare) {
                    throw std::runtime_error("broken");
                }
                return note("one.prepare");
            },
            [](unsigned long) { return note("one.commit"); },
            [](unsigned long) { return note("one.abort"); },
            [](unsigned long) { return note("one.finish"); },
            [](unsigned long, bool* result) {
                *result = theScript->oneIsContent;
                return note("one.validate");
            }};
}

OrvOamSpiTransactionalResource_2 makeTwo() {
    return {orvSpiOfferedBy(OrvOamSpiTransactionalResource_2_ExtCmId, "Two"),
            [](unsigned long) { return note("two.join"); },
            [](unsigned long) { return note("two.prepare"); },
            [](unsigned long) { return note("two.commit"); },
            [](unsigned long) { return note("two.abort"); },
            [](unsigned long) { return note("two.finish"); },
            [](unsigned long, bool* result) {
                *result = true;
                return note("two.validate");
            }};
}

class TransactionServiceTest : public testing::Test {
protected:
    TransactionServiceTest() {
        theScript = &script;
        tx = service.begin();
    }
    ~TransactionServiceTest() override { service.abortAll(); }

    void joinBoth() {
        EXPECT_EQ(table.join(tx, &one), OrvOk);
        EXPECT_EQ(table.join(tx, &two), OrvOk);
        script.calls.clear();
    }

    Script script;
    OrvOamSpiTransactionalResource_2 one = makeOne();
    OrvOamSpiTransactionalResource_2 two = makeTwo();
    ThreadContext context;
    TransactionService service{context};
    OrvOamSpiTransaction_1& table = *service.getTransactionInterface();
    unsigned long tx = 0;
};

TEST_F(TransactionServiceTest, Interfaces_HaveTheirIdentities) {
    EXPECT_STREQ(table.identity.componentName, "OrvOamSpiTransactionService");
    EXPECT_STREQ(table.identity.interfaceName, "OrvOamSpiTransaction");
    EXPECT_STREQ(table.identity.interfaceVersion, "1");
    const auto& master = service.getMasterInterface()->identity;
    EXPECT_STREQ(master.componentName, "OrvOamSpiTransactionService");
    EXPECT_STREQ(master.interfaceName, "OrvOamSpiTransactionMaster");
    EXPECT_STREQ(master.interfaceVersion, "1");
}

TEST_F(TransactionServiceTest, Commit_AllContent_RunsThePhasesInOrder) {
    joinBoth();
    const TransactionOutcome outcome = service.commit(tx);
    EXPECT_TRUE(outcome.accepted);
    EXPECT_EQ(outcome.code, OrvOk);
    EXPECT_EQ(outcome.reason, "");
    EXPECT_THAT(script.calls,
                ElementsAre("one.validate", "two.validate", "one.prepare", "two.prepare",
                            "one.commit", "two.commit", "one.finish", "two.finish"));
    EXPECT_EQ(service.openCount(), 0U);
}

TEST_F(TransactionServiceTest, Join_CallsTheJoinSlotAndNothingElse) {
    EXPECT_EQ(table.join(tx, &one), OrvOk);
    EXPECT_THAT(script.calls, ElementsAre("one.join"));
}

TEST_F(TransactionServiceTest, Join_Twice_IsEnrolledOnce) {
    joinBoth();
    EXPECT_EQ(table.join(tx, &one), OrvOk);
    service.commit(tx);
    EXPECT_EQ(std::count(script.calls.begin(), script.calls.end(), "one.commit"), 1);
    EXPECT_EQ(std::count(script.calls.begin(), script.calls.end(), "one.join"), 0);
}

TEST_F(TransactionServiceTest, Join_Refused_IsNotEnrolled) {
    script.answers["one.join"] = -5;
    EXPECT_EQ(table.join(tx, &one), -5);
    script.calls.clear();
    EXPECT_TRUE(service.commit(tx).accepted);
    EXPECT_THAT(script.calls, ElementsAre());
}

TEST_F(TransactionServiceTest, Join_UnknownTransactionOrNoResource_IsRefused) {
    EXPECT_EQ(table.join(tx + 1, &one), OrvNotActive);
    EXPECT_EQ(table.join(tx, nullptr), OrvInvalidArgument);
    service.abort(tx);
    EXPECT_EQ(table.join(tx, &one), OrvNotActive);
}

TEST_F(TransactionServiceTest, Join_DuringValidate_IsValidatedToo) {
    EXPECT_EQ(table.join(tx, &one), OrvOk);
    script.calls.clear();
    script.onCall = [&](const std::string& call) {
        if (call == "one.validate") {
            EXPECT_EQ(table.join(tx, &two), OrvOk);
        }
    };
    EXPECT_TRUE(service.commit(tx).accepted);
    EXPECT_THAT(script.calls,
                ElementsAre("one.validate", "two.join", "two.validate", "one.prepare",
                            "two.prepare", "one.commit", "two.commit", "one.finish", "two.finish"));
}

TEST_F(TransactionServiceTest, Join_DuringPrepare_IsRefused) {
    EXPECT_EQ(table.join(tx, &one), OrvOk);
    OrvReturnT code = OrvOk;
    script.onCall = [&](const std::string& call) {
        if (call == "one.prepare") {
            code = table.join(tx, &two);
        }
    };
    EXPECT_TRUE(service.commit(tx).accepted);
    EXPECT_EQ(code, OrvHostWrongState);
}

TEST_F(TransactionServiceTest, Commit_FalseVerdict_AsksAllAndAborts) {
    joinBoth();
    script.oneIsContent = false;
    script.onCall = [&](const std::string& call) {
        if (call == "one.validate") {
            context.addMessage(1, "too few");
        }
    };
    context.addMessage(1, "older");
    const TransactionOutcome outcome = service.commit(tx);
    EXPECT_FALSE(outcome.accepted);
    EXPECT_EQ(outcome.code, OrvValidationFailed);
    EXPECT_EQ(outcome.reason, "One found the transaction invalid");
    ASSERT_EQ(outcome.messages.size(), 1U);
    EXPECT_EQ(outcome.messages[0].text, "too few");
    EXPECT_EQ(context.size(), 1U);
    EXPECT_THAT(script.calls, ElementsAre("one.validate", "two.validate", "one.abort", "two.abort",
                                          "one.finish", "two.finish"));
}

TEST_F(TransactionServiceTest, Commit_Refused_IsShownBeforeTheAbortWithItsMessages) {
    joinBoth();
    script.oneIsContent = false;
    script.onCall = [&](const std::string& call) { context.addMessage(1, call); };
    std::vector<std::string> shown;
    const TransactionOutcome outcome = service.commit(tx, [&](const TransactionOutcome& refused) {
        EXPECT_FALSE(refused.accepted);
        EXPECT_EQ(refused.messages.size(), 2U);
        shown = script.calls;
    });
    EXPECT_THAT(shown, ElementsAre("one.validate", "two.validate"));
    EXPECT_EQ(outcome.messages.size(), script.calls.size());
}

TEST_F(TransactionServiceTest, Commit_Accepted_IsNotShown) {
    joinBoth();
    EXPECT_TRUE(service.commit(tx, [](const TransactionOutcome&) { ADD_FAILURE(); }).accepted);
}

TEST_F(TransactionServiceTest, Commit_CodeAtValidate_Aborts) {
    joinBoth();
    script.answers["two.validate"] = -42;
    const TransactionOutcome outcome = service.commit(tx);
    EXPECT_EQ(outcome.code, OrvValidationFailed);
    EXPECT_THAT(outcome.reason, HasSubstr("Two answered -42"));
    EXPECT_THAT(script.calls, ElementsAre("one.validate", "two.validate", "one.abort", "two.abort",
                                          "one.finish", "two.finish"));
}

TEST_F(TransactionServiceTest, Commit_RefusedAtPrepare_AbortsAll) {
    joinBoth();
    script.answers["one.prepare"] = -42;
    const TransactionOutcome outcome = service.commit(tx);
    EXPECT_FALSE(outcome.accepted);
    EXPECT_EQ(outcome.code, -42);
    EXPECT_THAT(script.calls, ElementsAre("one.validate", "two.validate", "one.prepare",
                                          "one.abort", "two.abort", "one.finish", "two.finish"));
}

TEST_F(TransactionServiceTest, Commit_ParticipantThrows_CountsAsFailure) {
    joinBoth();
    script.throwAtPrepare = true;
    const TransactionOutcome outcome = service.commit(tx);
    EXPECT_EQ(outcome.code, OrvFailure);
    EXPECT_EQ(service.openCount(), 0U);
}

TEST_F(TransactionServiceTest, Commit_FirstRefusesToCommit_AbortsAll) {
    joinBoth();
    script.answers["one.commit"] = -42;
    const TransactionOutcome outcome = service.commit(tx);
    EXPECT_FALSE(outcome.accepted);
    EXPECT_EQ(outcome.code, -42);
    EXPECT_EQ(std::count(script.calls.begin(), script.calls.end(), "two.commit"), 0);
    EXPECT_EQ(std::count(script.calls.begin(), script.calls.end(), "two.abort"), 1);
}

TEST_F(TransactionServiceTest, Commit_LaterOneFailsToCommit_IsReportedAndStaysCommitted) {
    joinBoth();
    script.answers["two.commit"] = -42;
    const TransactionOutcome outcome = service.commit(tx);
    EXPECT_TRUE(outcome.accepted);
    EXPECT_EQ(outcome.code, OrvOk);
    EXPECT_THAT(outcome.reason, HasSubstr("Two answered -42"));
    EXPECT_EQ(std::count(script.calls.begin(), script.calls.end(), "one.abort"), 0);
}

TEST_F(TransactionServiceTest, Validate_LeavesTheTransactionOpen) {
    joinBoth();
    script.oneIsContent = false;
    EXPECT_FALSE(service.validate(tx).accepted);
    script.oneIsContent = true;
    EXPECT_TRUE(service.validate(tx).accepted);
    EXPECT_TRUE(service.commit(tx).accepted);
}

TEST_F(TransactionServiceTest, Abort_CallsAbortThenFinish) {
    joinBoth();
    script.answers["one.abort"] = -1;
    EXPECT_TRUE(service.abort(tx).accepted);
    EXPECT_THAT(script.calls, ElementsAre("one.abort", "two.abort", "one.finish", "two.finish"));
}

TEST_F(TransactionServiceTest, Operations_UnknownHandle_AreNotActive) {
    EXPECT_EQ(service.validate(tx + 1).code, OrvNotActive);
    EXPECT_EQ(service.commit(tx + 1).code, OrvNotActive);
    EXPECT_EQ(service.abort(0).code, OrvNotActive);
    service.commit(tx);
    const TransactionOutcome again = service.commit(tx);
    EXPECT_FALSE(again.accepted);
    EXPECT_EQ(again.code, OrvNotActive);
    EXPECT_THAT(again.reason, HasSubstr("no transaction"));
}

TEST_F(TransactionServiceTest, Commit_FromInsideAPhase_IsRefused) {
    joinBoth();
    TransactionOutcome inner;
    script.onCall = [&](const std::string& call) {
        if (call == "one.validate") {
            inner = service.commit(tx);
        }
    };
    EXPECT_TRUE(service.commit(tx).accepted);
    EXPECT_EQ(inner.code, OrvHostWrongState);
}

TEST_F(TransactionServiceTest, Begin_OneInEachRefuses_ThrowsAndLeavesNothing) {
    service.enrolInEach(&one);
    service.enrolInEach(&two);
    script.answers["two.join"] = -42;
    const HostError error = errorOf([&] { service.begin(); });
    EXPECT_EQ(error.code(), -42);
    EXPECT_THAT(error.what(), HasSubstr("Two"));
    EXPECT_THAT(script.calls, ElementsAre("one.join", "two.join", "one.abort", "one.finish"));
    EXPECT_EQ(service.openCount(), 1U);
}

TEST_F(TransactionServiceTest, AbortAll_EndsEveryOpenTransaction) {
    joinBoth();
    service.begin();
    EXPECT_EQ(service.openCount(), 2U);
    service.abortAll();
    EXPECT_EQ(service.openCount(), 0U);
    EXPECT_THAT(script.calls, ElementsAre("one.abort", "two.abort", "one.finish", "two.finish"));
}

TEST_F(TransactionServiceTest, MasterTable_DrivesATransaction) {
    OrvHostTransactionMaster_1& master = *service.getMasterInterface();
    unsigned long handle = 0;
    ASSERT_EQ(master.begin(&handle), OrvOk);
    EXPECT_EQ(table.join(handle, &one), OrvOk);
    script.oneIsContent = false;
    bool verdict = true;
    EXPECT_EQ(master.validate(handle, &verdict), OrvOk);
    EXPECT_FALSE(verdict);
    const auto messages = context.take();
    ASSERT_FALSE(messages.empty());
    EXPECT_EQ(messages.back().text, "One found the transaction invalid");
    EXPECT_EQ(master.commit(handle), OrvValidationFailed);
    EXPECT_EQ(master.commit(handle), OrvNotActive);
    EXPECT_EQ(master.validate(handle, &verdict), OrvNotActive);
    ASSERT_EQ(master.begin(&handle), OrvOk);
    EXPECT_EQ(master.abort(handle), OrvOk);
    ASSERT_EQ(master.begin(&handle), OrvOk);
    EXPECT_EQ(master.commit(handle), OrvOk);
}

/// The router as a participant.
class RouterTransactionTest : public RouterScene {
protected:
    OrvReturnT setLabel(unsigned long handle, const char* text) {
        OrvMoAttributeValue_3 slot{};
        slot.string = text;
        const OrvMoAttributeValueContainer_3 value{OrvMoAttributeTypeString_3, 1, &slot};
        return v3.setMoAttribute(handle, "Network=1,Node=a", "label", &value);
    }
    AttributeValue committedLabel() { return store.begin(99999)->get("Network=1,Node=a", "label"); }
};

TEST_F(RouterTransactionTest, Commit_MakesWritesVisible_AbortDoesNot) {
    EXPECT_EQ(setLabel(tx, "aborted"), OrvOk);
    EXPECT_TRUE(service.abort(tx).accepted);
    EXPECT_EQ(committedLabel(), text("first"));
    tx = service.begin();
    EXPECT_EQ(setLabel(tx, "committed"), OrvOk);
    EXPECT_EQ(committedLabel(), text("first"));
    EXPECT_TRUE(commit().accepted);
    EXPECT_EQ(committedLabel(), text("committed"));
}

TEST_F(RouterTransactionTest, Commit_MissingMandatoryAttribute_IsRefusedWithAMessage) {
    ASSERT_EQ(v3.createMo(tx, "Network=1,Node=a", "Card", "slot", "1", nullptr), OrvOk);
    const TransactionOutcome outcome = commit();
    EXPECT_EQ(outcome.code, OrvValidationFailed);
    EXPECT_EQ(outcome.reason, "OrvOamSpiCmRouterService found the transaction invalid");
    ASSERT_EQ(outcome.messages.size(), 2U);
    EXPECT_EQ(outcome.messages[0].kind, ThreadContext::Verdict);
    EXPECT_EQ(outcome.messages[0].text, "Network=1,Node=a,Card=1: the mandatory attribute 'kind' "
                                        "of class 'Card' has no value");
    EXPECT_EQ(store.size(), 3U);
}

TEST_F(RouterTransactionTest, Commit_AfterAConflict_IsRefusedEvenIfTheCodeWasIgnored) {
    const unsigned long other = service.begin();
    EXPECT_EQ(setLabel(other, "other"), OrvOk);
    EXPECT_EQ(setLabel(tx, "mine"), OrvHostWriteConflict);
    EXPECT_THAT(lastMessage(),
                HasSubstr("is being changed by transaction " + std::to_string(other)));
    EXPECT_EQ(v3.createMo(tx, "", "Network", "id", "2", nullptr), OrvOk);
    EXPECT_TRUE(service.commit(other).accepted);
    const TransactionOutcome outcome = commit();
    EXPECT_FALSE(outcome.accepted);
    ASSERT_EQ(outcome.messages.size(), 1U);
    EXPECT_THAT(outcome.messages[0].text, HasSubstr("is being changed by transaction"));
    EXPECT_EQ(committedLabel(), text("other"));
    EXPECT_EQ(store.size(), 3U);
}

TEST_F(RouterTransactionTest, Resource_UnknownHandles_DoNoHarm) {
    OrvOamSpiTransactionalResource_2& resource = *router.getResource();
    bool result = true;
    EXPECT_EQ(resource.join(tx), OrvAlreadyExist);
    EXPECT_EQ(resource.prepare(999), OrvNotActive);
    EXPECT_EQ(resource.commit(999), OrvNotActive);
    EXPECT_EQ(resource.abort(999), OrvNotActive);
    EXPECT_EQ(resource.validate(999, &result), OrvNotActive);
    EXPECT_EQ(resource.finish(999), OrvOk);
    EXPECT_EQ(setLabel(tx, "still there"), OrvOk);
}

}
}
