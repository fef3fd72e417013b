// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "LogCapture.h"
#include "LoggingWrapper.h"
#include "OrvException.h"
#include "Portal.h"
#include "Records.h"
#include "Stage.h"
#include "UniDirStorage.h"
#include "UniDirValidator.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <limits>
#include <list>
#include <map>
#include <set>
#include <string>
#include <vector>

// Where the record of unidirectional references and its judgement end: records at odd places, ends
// at the far end of a list, and what happens around a call of the host.

namespace {

using OrvExtCmRouterService::UniDirStorage;
using OrvExtCmRouterService::UniDirValidator;
using Scripted::refs;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

using Texts = std::vector<std::string>;

constexpr unsigned long tx = 7;

class UniDirEdges : public testing::Test {
protected:
    UniDirEdges() {
        // Handles grow in the order of naming, which is not that of the alphabet.
        for (const char* const name : {"Foo", "Zed", "Bar", "Eel"}) {
            stage.model.moc(name);
        }
        Orv::LoggingWrapper::instance()->setLevel(8);
        Orv::Portal::instance()->attach(&Scripted::orvPortalLookup);
    }
    ~UniDirEdges() override { Orv::Portal::instance()->detach(); }

    unsigned long long mocOf(const std::string& name) const {
        return stage.model.mocFromDn(name + "=1").value();
    }

    unsigned long long associationOf(const std::string& name) const {
        return stage.model.firstUniDir(mocOf(name)).value();
    }

    void record(const std::string& dn, const std::string& attribute, const Texts& references,
                const std::string& moc = "Foo") {
        Scripted::Records records;
        storage.setUniDirRef(tx, dn, mocOf(moc), attribute, associationOf(moc),
                             records.container(refs(references)));
    }

    bool judge() {
        return storage.validate(*Scripted::modelRepositoryTable(), *Scripted::threadContextTable(),
                                tx);
    }

    Texts endsOf(const std::string& moc, const std::string& attribute) {
        std::set<UniDirStorage::AssocEnd> ends;
        UniDirStorage::UniDir(attribute, associationOf(moc), {})
            .getAssocEnds(*Scripted::modelRepositoryTable(), ends);
        Texts texts;
        for (const UniDirStorage::AssocEnd& end : ends) {
            texts.push_back(end.name + " " + std::to_string(end.min) + ".." +
                            std::to_string(end.max));
        }
        return texts;
    }

    Scripted::LogCapture log;
    Scripted::Stage stage;
    UniDirStorage storage;
};

// ---------------------------------------------------------------------------------------------
// Records

TEST_F(UniDirEdges, RecordWithoutADn_IsNeitherListedNorJudged) {
    stage.model.uniDir("Foo", "peer", "Bar", 1, 2);
    record("", "peer", {});
    std::list<std::string> dns;
    storage.getDns(tx, dns);
    EXPECT_THAT(dns, IsEmpty());
    EXPECT_TRUE(judge());
    EXPECT_THAT(stage.messages(), IsEmpty());
}

TEST_F(UniDirEdges, SecondWrite_ReplacesTheAssociationToo) {
    stage.model.uniDir("Foo", "peer", "Bar", 1, 2).uniDir("Zed", "peer", "Eel", 1, 2);
    record("Foo=1", "peer", {"Eel=1"}, "Foo");
    record("Foo=1", "peer", {"Eel=1"}, "Zed");
    EXPECT_TRUE(judge());
    record("Foo=1", "peer", {"Eel=1"}, "Foo");
    EXPECT_FALSE(judge());
}

// A step is missed where the parent has a child of the last step's name.
TEST_F(UniDirEdges, DeleteMo_MissAtAnEarlierStep_DoesNotTakeANamesake) {
    stage.model.uniDir("Foo", "peer", "Bar", 1, 2);
    record("Foo=1", "peer", {});
    storage.deleteMo(tx, "Foo=2,Foo=1");
    storage.deleteMo(tx, "Foo=2,Bar=1");
    std::list<std::string> dns;
    storage.getDns(tx, dns);
    EXPECT_THAT(dns, ElementsAre("Foo=1"));
}

TEST_F(UniDirEdges, RecordedTexts_AreCopies) {
    stage.model.uniDir("Foo", "peer", "Bar", 1, 1);
    std::string reference = "Bar=1";
    OrvMoAttributeValue_3 slot{};
    slot.moRef = reference.data();
    const VekMoAttributeValueContainer_3 value{OrvMoAttributeTypeMoRef_3, 1, &slot};
    storage.setUniDirRef(tx, "Foo=1", mocOf("Foo"), "peer", associationOf("Foo"), &value);
    reference = "Eel=1";
    EXPECT_TRUE(judge());
}

TEST_F(UniDirEdges, SmallestAndLargestHandle_AreHandlesLikeAnyOther) {
    stage.model.uniDir("Foo", "peer", "Bar", 0, 1);
    Scripted::Records records;
    for (const unsigned long each : {0UL, std::numeric_limits<unsigned long>::max()}) {
        storage.setUniDirRef(each, "Foo=1", mocOf("Foo"), "peer", associationOf("Foo"),
                             records.container(refs({})));
        std::list<std::string> dns;
        storage.getDns(each, dns);
        EXPECT_THAT(dns, ElementsAre("Foo=1"));
        storage.finish(each);
        dns.clear();
        storage.getDns(each, dns);
        EXPECT_THAT(dns, IsEmpty());
    }
}

TEST_F(UniDirEdges, Clear_SaysNothing) {
    stage.model.uniDir("Foo", "peer", "Bar", 0, 1);
    record("Foo=1", "peer", {});
    storage.clear();
    storage.clear();
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(UniDirEdges, UnknownTransaction_IsTracedByFinishAlone) {
    std::list<std::string> dns;
    storage.getDns(tx, dns);
    storage.deleteMo(tx, "Foo=1");
    EXPECT_TRUE(judge());
    EXPECT_THAT(log.lines(), IsEmpty());
    storage.finish(tx);
    EXPECT_THAT(log.lines(), ElementsAre("trace 0 finish: Could not find transaction 7\n",
                                         "trace2 ExtCm 14 finish: Could not find transaction 7\n"));
}

// ---------------------------------------------------------------------------------------------
// The model's side

TEST_F(UniDirEdges, ThreeEndsOfTheName_AreAllFoundInTheOrderOfTheirHandles) {
    stage.model.uniDir("Foo", "peer", "Bar", 1, 2)
        .uniDir("Foo", "other", "Foo", 0, 9)
        .uniDir("Foo", "peer", "Zed", 3, 4)
        .uniDir("Foo", "peer", "Eel", 5, 6)
        .uniDir("Foo", "peer", "Zed", 7, 8);
    EXPECT_EQ(endsOf("Foo", "peer"), (Texts{"Zed 3..4", "Bar 1..2", "Eel 5..6"}));
}

TEST_F(UniDirEdges, EndOfAnotherName_IsAskedNothingMore) {
    stage.model.uniDir("Foo", "other", "Bar").uniDir("Foo", "peer", "Eel", 0, 1);
    for (const char* const question :
         {"Model.getEndMoc", "Model.getMocGeneralProperties", "Model.getEndIntProperty"}) {
        stage.script.when(question).once().runs(
            [&] { EXPECT_THAT(stage.script.texts("Model.getUniDirEnd"), testing::SizeIs(2)); });
    }
    EXPECT_EQ(endsOf("Foo", "peer"), Texts{"Eel 0..1"});
    EXPECT_THAT(stage.script.texts("Model.getEndMoc"), testing::SizeIs(1));
    EXPECT_THAT(stage.script.texts("Model.getEndIntProperty"),
                ElementsAre("Model.getEndIntProperty('peer@Eel', 0)",
                            "Model.getEndIntProperty('peer@Eel', 1)"));
}

TEST_F(UniDirEdges, NamelessEndAndNamelessClass_MatchNothingAndAreNamedByNothing) {
    stage.model.uniDir("Foo", "peer", "Bar", 1, 2);
    const auto nothing = [](const char*& text) {
        text = nullptr;
        return OrvOk;
    };
    stage.script.when("Model.getGeneralStringProperty").answers<const char*>(nothing);
    EXPECT_EQ(endsOf("Foo", "peer"), Texts{" 1..2"});
    stage.script.when("Model.getEndStringProperty").answers<const char*>(nothing);
    EXPECT_EQ(endsOf("Foo", "peer"), Texts());
}

// The model is asked before the text is taken apart.
TEST_F(UniDirEdges, ReferenceWithoutClassThatIsNoDn_IsAViolationAndNoFailure) {
    stage.model.uniDir("Foo", "peer", "Bar", 0, 2);
    record("Foo=1", "peer", {"Nowhere", "Bar=1"});
    EXPECT_FALSE(judge());
    EXPECT_THAT(stage.messages(),
                ElementsAre("Nowhere is not a valid type for attribute peer in Foo=1"));
}

TEST_F(UniDirEdges, ExceptionBehindAMessage_LeavesTheMessage) {
    stage.model.uniDir("Foo", "peer", "Bar", 0, 2);
    record("Foo=1", "peer", {"Nowhere=1", "Bar=1"});
    stage.script.when("Model.getMocFromDn").on("'Bar=1'").fails(-17);
    EXPECT_THROW(judge(), Orv::OrvException);
    EXPECT_THAT(stage.messages(),
                ElementsAre("Nowhere=1 is not a valid type for attribute peer in Foo=1"));
    EXPECT_THAT(stage.script.texts("Model.getUniDirEnd"), IsEmpty());
}

TEST_F(UniDirEdges, SeveralClassesRefused_GoByTheirHandlesAndTheMissingOnesFollow) {
    stage.model.uniDir("Foo", "peer", "Zed", 2, 2).uniDir("Foo", "peer", "Foo", 1, 1);
    record("Foo=1", "peer", {"Bar=1", "Eel=1", "Zed=1"});
    EXPECT_FALSE(judge());
    EXPECT_THAT(
        stage.messages(),
        ElementsAre("Attribute peer in Foo=1 contains 1 Zed which is not within cardinality "
                    "range (2..2).",
                    "Bar is not a valid type for attribute peer in Foo=1",
                    "Eel is not a valid type for attribute peer in Foo=1",
                    "Attribute peer in Foo=1 contains 0 Foo which is not within cardinality "
                    "range (1..1)."));
}

// A negative lower bound is a large one, and no number of references reaches it.
TEST_F(UniDirEdges, NegativeLowerBound_IsNeverReached) {
    stage.model.uniDir("Foo", "peer", "Bar", -1, -1);
    record("Foo=1", "peer", {"Bar=1"});
    EXPECT_FALSE(judge());
    record("Foo=1", "peer", {});
    EXPECT_FALSE(judge());
    const std::string range =
        " Bar which is not within cardinality range (18446744073709551615..18446744073709551615).";
    EXPECT_THAT(stage.messages(), ElementsAre("Attribute peer in Foo=1 contains 1" + range,
                                              "Attribute peer in Foo=1 contains 0" + range));
}

// ---------------------------------------------------------------------------------------------
// Traces and messages

/// A thread context that takes no message and notes what has been traced by then.
class RefusingContext {
public:
    explicit RefusingContext(const Scripted::LogCapture& log) {
        sLog = &log;
        sTracedBefore.clear();
    }

    static OrvReturnT addMessage(int kind, const char* text) {
        EXPECT_EQ(kind, 1);
        EXPECT_STREQ(text, "a text");
        sTracedBefore = sLog->lines();
        return 4;
    }

    VekMgmtSpiThreadContext_2 table{{}, &addMessage};
    static const Scripted::LogCapture* sLog;
    static Texts sTracedBefore;
};

const Scripted::LogCapture* RefusingContext::sLog = nullptr;
Texts RefusingContext::sTracedBefore;

TEST_F(UniDirEdges, Message_IsTracedBeforeTheClientGetsItAndLoggedWhenRefused) {
    RefusingContext context(log);
    UniDirStorage::UniDir("peer", 0, {}).addMessage(context.table, "a text");
    const Texts traced = {"trace 0 addMessage: Adding message to thread context: [a text]",
                          "trace2 ExtCm 14 addMessage: Adding message to thread context: [a text]"};
    EXPECT_EQ(RefusingContext::sTracedBefore, traced);
    const std::string refused = "Failed to add message to thread context. Message: [a text]";
    EXPECT_THAT(log.lines(), ElementsAre(traced[0], traced[1], "log 4 addMessage: " + refused,
                                         "trace2 ExtCm 4 addMessage: " + refused));
}

// ---------------------------------------------------------------------------------------------
// The validator

class UniDirValidatorEdges : public UniDirEdges {
protected:
    void start() {
        validator.start();
        stage.script.forgetCalls();
        log.forget();
    }

    void set(unsigned long txHandle, const std::string& dn, const std::string& attribute,
             const Texts& references) {
        Scripted::Records records;
        validator.setMoRef(txHandle, dn, attribute, records.container(refs(references)));
    }

    OrvReturnT verdict(unsigned long txHandle, bool& result) {
        return validator.validate(txHandle, &result);
    }

    /// True if \p other is done on another thread while a validation calls the thread context.
    template <class Other>
    bool isDoneDuringAValidation(Other other) {
        std::future<void> running;
        bool done = false;
        stage.script.when("ThreadContext.addMessage").once().runs([&] {
            running = std::async(std::launch::async, other);
            done = running.wait_for(std::chrono::milliseconds(100)) == std::future_status::ready;
        });
        bool result = true;
        EXPECT_EQ(verdict(tx, result), OrvValidationFailed);
        running.get();
        return done;
    }

    UniDirValidator validator;
};

TEST_F(UniDirValidatorEdges, IsUniDir_ThirdAssociationMatches_GivesTheFirst) {
    stage.model.uniDir("Foo", "one", "Bar")
        .uniDir("Foo", "two", "Bar")
        .uniDir("Foo", "peer", "Bar");
    start();
    unsigned long long association = 0;
    EXPECT_TRUE(validator.isUniDir(mocOf("Foo"), "peer", &association));
    EXPECT_EQ(association, associationOf("Foo"));
    EXPECT_THAT(stage.script.texts(), ElementsAre("Model.getFirstUniDirAssociation('Foo')",
                                                  "Model.getUniDirEnd('Foo.one->Bar')",
                                                  "Model.getEndStringProperty('one@Bar', 0)",
                                                  "Model.getNextUniDirAssociation('Foo.one->Bar')",
                                                  "Model.getUniDirEnd('Foo.two->Bar')",
                                                  "Model.getEndStringProperty('two@Bar', 0)",
                                                  "Model.getNextUniDirAssociation('Foo.two->Bar')",
                                                  "Model.getUniDirEnd('Foo.peer->Bar')",
                                                  "Model.getEndStringProperty('peer@Bar', 0)"));
}

TEST_F(UniDirValidatorEdges, IsUniDir_NoneMatches_HasStoredTheFirstAllTheSame) {
    stage.model.uniDir("Foo", "one", "Bar").uniDir("Foo", "two", "Bar");
    start();
    unsigned long long association = 4711;
    EXPECT_FALSE(validator.isUniDir(mocOf("Foo"), "Two", &association));
    EXPECT_EQ(association, associationOf("Foo"));
    association = 4711;
    EXPECT_FALSE(validator.isUniDir(mocOf("Bar"), "one", &association));
    EXPECT_EQ(association, 4711U);
}

TEST_F(UniDirValidatorEdges, IsUniDir_ModelFails_ThrowsItsCode) {
    stage.model.uniDir("Foo", "one", "Bar");
    start();
    stage.script.when("Model.getFirstUniDirAssociation").fails(-17);
    unsigned long long association = 4711;
    try {
        validator.isUniDir(mocOf("Foo"), "one", &association);
        FAIL() << "no exception";
    } catch (const Orv::OrvException& exception) {
        EXPECT_STREQ(exception.what(), "Failed to look up association handle");
        EXPECT_EQ(exception.returnCode(), -17);
    }
    EXPECT_EQ(association, 4711U);
}

// A failed lookup that leaves a handle, and a good one that leaves none, are failures both.
TEST_F(UniDirValidatorEdges, SetMoRef_FailureWithAHandle_IsAFailureToo) {
    stage.model.uniDir("Foo", "peer", "Bar", 1, 2);
    start();
    stage.script.when("Model.getMocFromDn").returns(3);
    set(tx, "Foo=1", "peer", {});
    EXPECT_THAT(log.lines(),
                ElementsAre("log 4 setMoRef: Failed to look up MOC. dn: Foo=1, rc: 3",
                            "trace2 ExtCm 4 setMoRef: Failed to look up MOC. dn: Foo=1, rc: 3"));
    EXPECT_THAT(stage.script.texts(), ElementsAre("Model.getMocFromDn('Foo=1', 1)"));
}

TEST_F(UniDirValidatorEdges, Validate_NoVerdict_TracesTheByteOfTheCaller) {
    stage.model.uniDir("Foo", "peer", "Bar", 1, 2);
    start();
    set(tx, "Foo=1", "peer", {});
    stage.script.when("Model.getEndMoc").fails(-17);
    for (const bool before : {false, true}) {
        log.forget();
        bool result = before;
        EXPECT_EQ(verdict(tx, result), -17);
        EXPECT_EQ(result, before);
        const std::string failure = "Got exception [Could not get moc] return code -17";
        const std::string end =
            "Validate tx: 7 result: " + std::to_string(before ? 1 : 0) + " return code: -17";
        EXPECT_THAT(log.lines(),
                    ElementsAre("log 4 validate: " + failure, "trace2 ExtCm 4 validate: " + failure,
                                "trace 0 validate: " + end, "trace2 ExtCm 14 validate: " + end));
    }
}

TEST_F(UniDirValidatorEdges, Validate_Valid_TracesEachAttribute) {
    stage.model.uniDir("Foo", "peer", "Bar", 0, 2);
    start();
    set(tx, "Foo=1", "peer", {});
    bool result = false;
    EXPECT_EQ(verdict(tx, result), OrvOk);
    EXPECT_TRUE(result);
    EXPECT_THAT(log.lines(), Contains("trace 0 validate: dn Foo=1 result: 1"));
}

TEST_F(UniDirValidatorEdges, Stop_SaysNothingAndDropsEveryTransaction) {
    stage.model.uniDir("Foo", "peer", "Bar", 1, 2);
    start();
    set(tx, "Foo=1", "peer", {});
    set(8, "Foo=1", "peer", {});
    log.forget();
    validator.stop();
    EXPECT_THAT(log.lines(), IsEmpty());
    validator.start();
    for (const unsigned long each : {tx, 8UL}) {
        bool result = false;
        EXPECT_EQ(verdict(each, result), OrvOk);
        EXPECT_TRUE(result);
    }
    EXPECT_THAT(stage.messages(), IsEmpty());
}

TEST_F(UniDirValidatorEdges, Start_KeepsWhatIsRecorded) {
    stage.model.uniDir("Foo", "peer", "Bar", 1, 2);
    start();
    set(tx, "Foo=1", "peer", {});
    validator.start();
    bool result = true;
    EXPECT_EQ(verdict(tx, result), OrvValidationFailed);
    EXPECT_FALSE(result);
}

// The lock is held over the whole of a validation: whoever records for another transaction waits.
TEST_F(UniDirValidatorEdges, Validate_HoldsTheLockThatARecordNeeds) {
    stage.model.uniDir("Foo", "peer", "Bar", 1, 2);
    start();
    set(tx, "Foo=1", "peer", {});
    EXPECT_FALSE(isDoneDuringAValidation([&] { set(8, "Foo=1", "peer", {}); }));
    EXPECT_FALSE(isDoneDuringAValidation([&] { validator.deleteMo(9, "Foo=1"); }));
    EXPECT_FALSE(isDoneDuringAValidation([&] { validator.finish(9); }));
    bool result = true;
    EXPECT_EQ(verdict(8, result), OrvValidationFailed) << "recorded in the end";
}

}
