// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "UniDirValidator.h"

#include "LogCapture.h"
#include "OrvException.h"
#include "Portal.h"
#include "Records.h"
#include "Stage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using OrvExtCmRouterService::UniDirValidator;
using Scripted::Part;
using Scripted::refs;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr unsigned int everything = 8;

/// A validator in front of a scripted host whose class Foo has the unidirectional reference peer to
/// one or two Bar, and a bidirectional association with Baz.
class UniDirValidatorTest : public testing::Test {
protected:
    static constexpr unsigned long tx = 7;

    UniDirValidatorTest() {
        Orv::LoggingWrapper::instance()->setLevel(everything);
        stage.model.moc("Top").contains("Foo").contains("Bar").contains("Baz");
        stage.model.uniDir("Foo", "first", "Baz")
            .uniDir("Foo", "peer", "Bar", 1, 2)
            .uniDir("Foo", "peer", "Baz", 0, 1);
        stage.model.biDir({"Foo", "bazs"}, {"Baz", "foos"});
        Orv::Portal::instance()->attach(&Scripted::orvPortalLookup);
    }

    ~UniDirValidatorTest() override { Orv::Portal::instance()->detach(); }

    void start() {
        validator.start();
        stage.script.forgetCalls();
        log.forget();
    }

    void set(const std::string& dn, const std::string& attribute, const Scripted::Value& value) {
        Scripted::Records records;
        validator.setMoRef(tx, dn, attribute, records.container(value));
    }

    /// The code of a validation that must leave its verdict alone.
    OrvReturnT validateWithoutVerdict() {
        bool result = true;
        const OrvReturnT code = validator.validate(tx, &result);
        EXPECT_TRUE(result);
        result = false;
        EXPECT_EQ(code, validator.validate(tx, &result));
        EXPECT_FALSE(result);
        return code;
    }

    bool verdict() {
        bool result = false;
        const OrvReturnT code = validator.validate(tx, &result);
        EXPECT_EQ(result ? OrvOk : OrvValidationFailed, code);
        return result;
    }

    std::vector<std::string> callNames() const {
        std::vector<std::string> names;
        for (const Scripted::Call& call : stage.script.calls()) {
            names.push_back(call.name);
        }
        return names;
    }

    Scripted::LogCapture log;
    Scripted::Stage stage;
    UniDirValidator validator;
};

TEST_F(UniDirValidatorTest, Start_LooksUpTheRepositoryThenTheThreadContext) {
    validator.start();
    EXPECT_THAT(stage.script.texts(),
                ElementsAre(testing::AllOf(StartsWith("OrvPortal.lookup"),
                                           testing::HasSubstr("VekOamSpiModelRepositoryService"),
                                           testing::HasSubstr("VekOamSpiModelRepository"),
                                           testing::HasSubstr("4")),
                            testing::AllOf(StartsWith("OrvPortal.lookup"),
                                           testing::HasSubstr("VekMgmtSpiThreadContextService"),
                                           testing::HasSubstr("VekMgmtSpiThreadContext"),
                                           testing::HasSubstr("2"))));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(UniDirValidatorTest, Start_WithoutARepository_LogsAndGoesOn) {
    stage.missing = {Part::ModelRepository};
    validator.start();
    EXPECT_THAT(log.lines(),
                ElementsAre("log 4 getInterface: Interface VekOamSpiModelRepository not found",
                            "trace2 Common 4 getInterface: Interface VekOamSpiModelRepository not "
                            "found"));
    EXPECT_EQ(2U, stage.script.calls("OrvPortal").size());
}

TEST_F(UniDirValidatorTest, SetMoRef_Stopped_TracesAndAsksNothing) {
    set("Top=1,Foo=1", "peer", refs({}));
    EXPECT_THAT(log.lines(), ElementsAre("trace 0 setMoRef: Service is stopped",
                                         "trace2 ExtCm 14 setMoRef: Service is stopped"));
    EXPECT_THAT(stage.script.calls(), IsEmpty());
}

TEST_F(UniDirValidatorTest, DeleteMo_Stopped_LogsAtLevel6) {
    validator.deleteMo(tx, "Top=1");
    EXPECT_THAT(log.lines(), ElementsAre("log 6 deleteMo: Service is stopped",
                                         "trace2 ExtCm 6 deleteMo: Service is stopped"));
}

TEST_F(UniDirValidatorTest, DeleteMo_StoppedAtLevel5_SaysNothing) {
    Orv::LoggingWrapper::instance()->setLevel(5);
    validator.deleteMo(tx, "Top=1");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(UniDirValidatorTest, Validate_Stopped_HasNoVerdict) {
    EXPECT_EQ(OrvNotActive, validateWithoutVerdict());
    EXPECT_THAT(log.lines(), Contains("trace 0 validate: Service is stopped").Times(2));
    EXPECT_THAT(log.lines(), Not(Contains(testing::HasSubstr("Validate tx"))));
}

TEST_F(UniDirValidatorTest, Validate_WithoutAThreadContext_HasNoVerdict) {
    stage.missing = {Part::ThreadContext};
    start();
    set("Top=1,Foo=1", "peer", refs({}));
    EXPECT_EQ(OrvNotActive, validateWithoutVerdict());
    EXPECT_THAT(stage.script.calls("Model.getUniDirEnd"), testing::SizeIs(2)) << "it was recorded";
}

TEST_F(UniDirValidatorTest, SetMoRef_UnknownClass_LogsTheCode) {
    start();
    set("Nowhere=1", "peer", refs({}));
    EXPECT_THAT(log.lines(),
                ElementsAre("log 4 setMoRef: Failed to look up MOC. dn: Nowhere=1, rc: -2",
                            "trace2 ExtCm 4 setMoRef: Failed to look up MOC. dn: Nowhere=1, rc: "
                            "-2"));
    EXPECT_THAT(callNames(), ElementsAre("Model.getMocFromDn"));
    EXPECT_EQ("Model.getMocFromDn('Nowhere=1', 1)", stage.script.texts().front());
}

TEST_F(UniDirValidatorTest, SetMoRef_ZeroHandleWithOk_IsAFailedLookup) {
    start();
    stage.script.when("Model.getMocFromDn")
        .answers<unsigned long long>([](unsigned long long& moc) {
            moc = 0;
            return OrvOk;
        });
    set("Top=1,Foo=1", "peer", refs({}));
    EXPECT_THAT(log.lines(),
                Contains("log 4 setMoRef: Failed to look up MOC. dn: Top=1,Foo=1, rc: 0"));
    EXPECT_TRUE(verdict());
}

TEST_F(UniDirValidatorTest, SetMoRef_BiDirectionalReference_IsNotRecorded) {
    start();
    set("Top=1,Foo=1", "bazs", refs({"Top=1,Bar=1"}));
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_TRUE(verdict());
    EXPECT_THAT(stage.messages(), IsEmpty());
}

TEST_F(UniDirValidatorTest, SetMoRef_ClassWithoutAssociations_IsNotRecorded) {
    start();
    set("Top=1,Bar=1", "peer", refs({}));
    EXPECT_THAT(callNames(), ElementsAre("Model.getMocFromDn", "Model.getFirstUniDirAssociation"));
    EXPECT_TRUE(verdict());
}

TEST_F(UniDirValidatorTest, SetMoRef_WalksUntilTheNameMatches) {
    start();
    set("Top=1,Foo=1", "peer", refs({}));
    EXPECT_THAT(callNames(), ElementsAre("Model.getMocFromDn", "Model.getFirstUniDirAssociation",
                                         "Model.getUniDirEnd", "Model.getEndStringProperty",
                                         "Model.getNextUniDirAssociation", "Model.getUniDirEnd",
                                         "Model.getEndStringProperty"));
}

TEST_F(UniDirValidatorTest, IsUniDir_GivesTheFirstAssociationOfTheClass) {
    start();
    const auto moc = stage.model.mocFromDn("Top=1,Foo=1").value();
    unsigned long long association = 0;
    EXPECT_TRUE(validator.isUniDir(moc, "peer", &association));
    EXPECT_EQ(stage.model.firstUniDir(moc).value(), association);
}

TEST_F(UniDirValidatorTest, Validate_AttributeOfALaterAssociation_SeesAllEndsOfItsName) {
    start();
    set("Top=1,Foo=1", "peer", refs({"Top=1,Bar=1", "Top=1,Baz=1", "Top=1,Baz=2"}));
    EXPECT_FALSE(verdict());
    EXPECT_THAT(stage.messages(),
                ElementsAre("Attribute peer in Top=1,Foo=1 contains 2 Baz which is not within "
                            "cardinality range (0..1)."));
}

/// A call that fails in setMoRef, and the text of the exception.
struct LookupFailure {
    const char* call;
    const char* text;
};

class UniDirValidatorLookupFailure : public UniDirValidatorTest,
                                     public testing::WithParamInterface<LookupFailure> {};

TEST_P(UniDirValidatorLookupFailure, SetMoRef_LogsTheExceptionAndRecordsNothing) {
    start();
    stage.script.when(GetParam().call).fails(-17);
    set("Top=1,Foo=1", "peer", refs({}));
    const std::string text = "Got exception [" + std::string(GetParam().text) + "] return code -17";
    EXPECT_THAT(log.lines(),
                ElementsAre("log 4 setMoRef: " + text, "trace2 ExtCm 4 setMoRef: " + text));
    log.forget();
    EXPECT_TRUE(verdict());
}

INSTANTIATE_TEST_SUITE_P(
    EveryCall, UniDirValidatorLookupFailure,
    testing::Values(
        LookupFailure{"Model.getFirstUniDirAssociation", "Failed to look up association handle"},
        LookupFailure{"Model.getUniDirEnd", "Failed to look up association end handle."},
        LookupFailure{"Model.getEndStringProperty", "Failed to look up association end name."},
        LookupFailure{"Model.getNextUniDirAssociation", "Failed to look up next association"}));

TEST_F(UniDirValidatorTest, SetMoRef_NullName_MatchesNothing) {
    start();
    stage.script.when("Model.getEndStringProperty").answers<const char*>([](const char*& name) {
        name = nullptr;
        return OrvOk;
    });
    set("Top=1,Foo=1", "peer", refs({}));
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_TRUE(verdict());
}

TEST_F(UniDirValidatorTest, SetMoRef_MalformedDnThatTheModelTakes_IsLogged) {
    start();
    const auto foo = stage.model.mocFromDn("Top=1,Foo=1").value();
    stage.script.when("Model.getMocFromDn")
        .answers<unsigned long long>([foo](unsigned long long& moc) {
            moc = foo;
            return OrvOk;
        });
    set("Top=1,Foo", "peer", refs({}));
    EXPECT_THAT(log.lines(), Contains("log 4 setMoRef: Got exception [Dn::Dn: got malformed dnPart "
                                      "[Foo] dn [Top=1,Foo]] return code -1"));
    EXPECT_TRUE(verdict());
}

TEST_F(UniDirValidatorTest, DeleteMo_MalformedDn_IsLoggedAndChangesNothing) {
    start();
    set("Top=1,Foo=1", "peer", refs({}));
    validator.deleteMo(tx, "Top=1,Foo");
    EXPECT_THAT(log.lines(), Contains("log 4 deleteMo: Got exception [Dn::Dn: got malformed dnPart "
                                      "[Foo] dn [Top=1,Foo]] return code -1"));
    EXPECT_FALSE(verdict());
}

TEST_F(UniDirValidatorTest, DeleteMo_Parent_TakesTheRecordsAlong) {
    start();
    set("Top=1,Foo=1", "peer", refs({}));
    validator.deleteMo(tx, "Top=1");
    EXPECT_TRUE(verdict());
}

TEST_F(UniDirValidatorTest, Validate_Violation_TracesVerdictAndCode) {
    start();
    set("Top=1,Foo=1", "peer", refs({}));
    EXPECT_FALSE(verdict());
    const std::string message = "Attribute peer in Top=1,Foo=1 contains 0 Bar which is not within "
                                "cardinality range (1..2).";
    EXPECT_THAT(stage.messages(), ElementsAre(message));
    EXPECT_EQ("ThreadContext.addMessage(1, '" + message + "')",
              stage.script.texts("ThreadContext").front());
    EXPECT_THAT(
        log.lines(),
        ElementsAre("trace 0 addMessage: Adding message to thread context: [" + message + "]",
                    "trace2 ExtCm 14 addMessage: Adding message to thread context: [" + message +
                        "]",
                    "trace 0 validate: dn Top=1,Foo=1 result: 0",
                    "trace2 ExtCm 14 validate: dn Top=1,Foo=1 result: 0",
                    "trace 0 validate: Validate tx: 7 result: 0 return code: -9",
                    "trace2 ExtCm 14 validate: Validate tx: 7 result: 0 return code: -9"));
}

TEST_F(UniDirValidatorTest, Validate_NothingRecorded_IsTrue) {
    start();
    EXPECT_TRUE(verdict());
    EXPECT_THAT(log.lines(),
                ElementsAre("trace 0 validate: Validate tx: 7 result: 1 return code: 0",
                            "trace2 ExtCm 14 validate: Validate tx: 7 result: 1 return code: 0"));
    EXPECT_THAT(stage.script.calls(), IsEmpty());
}

TEST_F(UniDirValidatorTest, Validate_Twice_AddsTheMessageTwice) {
    start();
    set("Top=1,Foo=1", "peer", refs({}));
    EXPECT_FALSE(verdict());
    EXPECT_FALSE(verdict());
    EXPECT_EQ(2U, stage.messages().size());
}

TEST_F(UniDirValidatorTest, Validate_RefusedMessage_IsLoggedAtLevel4) {
    start();
    stage.script.when("ThreadContext.addMessage").fails(-1);
    set("Top=1,Foo=1", "peer", refs({}));
    EXPECT_FALSE(verdict());
    EXPECT_THAT(log.lines(),
                Contains("log 4 addMessage: Failed to add message to thread context. Message: "
                         "[Attribute peer in Top=1,Foo=1 contains 0 Bar which is not within "
                         "cardinality range (1..2).]"));
}

TEST_F(UniDirValidatorTest, Validate_FailingModel_GivesItsCodeAndNoVerdict) {
    start();
    set("Top=1,Foo=1", "peer", refs({}));
    stage.script.when("Model.getEndMoc").fails(-17);
    EXPECT_EQ(-17, validateWithoutVerdict());
    EXPECT_THAT(
        log.lines(),
        Contains("log 4 validate: Got exception [Could not get moc] return code -17").Times(2));
    EXPECT_THAT(log.lines(),
                Contains("trace 0 validate: Validate tx: 7 result: 1 return code: -17"));
}

// Without a verdict the flag is the caller's, who may not have set it at all.
TEST_F(UniDirValidatorTest, Validate_FailingModel_TracesWhateverByteTheFlagHolds) {
    start();
    set("Top=1,Foo=1", "peer", refs({}));
    stage.script.when("Model.getEndMoc").fails(-17);
    for (const unsigned char before : std::vector<unsigned char>{2, 42, 255}) {
        unsigned char byte = before;
        EXPECT_EQ(-17, validator.validate(tx, reinterpret_cast<bool*>(&byte)));
        EXPECT_EQ(before, byte);
        const std::string text =
            "Validate tx: 7 result: " + std::to_string(int{before}) + " return code: -17";
        EXPECT_THAT(log.lines(), Contains("trace 0 validate: " + text));
        EXPECT_THAT(log.lines(), Contains("trace2 ExtCm 14 validate: " + text));
    }
}

TEST_F(UniDirValidatorTest, Finish_DropsTheRecordsAndTracesAnUnknownTransaction) {
    start();
    set("Top=1,Foo=1", "peer", refs({}));
    validator.finish(tx);
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_TRUE(verdict());
    log.forget();
    validator.finish(tx);
    EXPECT_THAT(log.lines(), ElementsAre("trace 0 finish: Could not find transaction 7\n",
                                         "trace2 ExtCm 14 finish: Could not find transaction 7\n"));
}

TEST_F(UniDirValidatorTest, Stop_ForgetsEverythingAndMayComeTwice) {
    start();
    set("Top=1,Foo=1", "peer", refs({}));
    validator.stop();
    validator.stop();
    validator.finish(tx);
    EXPECT_THAT(log.lines(), Contains("trace 0 finish: Could not find transaction 7\n"));
    EXPECT_EQ(OrvNotActive, validateWithoutVerdict());
    validator.start();
    EXPECT_TRUE(verdict());
}

TEST_F(UniDirValidatorTest, Validate_WithoutARepository_HasNoVerdict) {
    stage.missing = {Part::ModelRepository};
    start();
    set("Top=1,Foo=1", "peer", refs({}));
    EXPECT_THAT(log.lines(), Contains("trace 0 setMoRef: Service is stopped"));
    EXPECT_EQ(OrvNotActive, validateWithoutVerdict());
    EXPECT_THAT(stage.script.calls(), IsEmpty());
}

// The root of a transaction is there before its DN is parsed, and goes when it is finished.
TEST_F(UniDirValidatorTest, SetMoRef_MalformedDn_LeavesATransactionToFinish) {
    start();
    const auto foo = stage.model.mocFromDn("Top=1,Foo=1").value();
    stage.script.when("Model.getMocFromDn")
        .answers<unsigned long long>([foo](unsigned long long& moc) {
            moc = foo;
            return OrvOk;
        });
    set("Top=1,Foo", "peer", refs({}));
    log.forget();
    validator.finish(tx);
    EXPECT_THAT(log.lines(), IsEmpty());
    validator.finish(tx);
    EXPECT_THAT(log.lines(), Contains("trace 0 finish: Could not find transaction 7\n"));
}

// Only the failures of this subsystem end here; the lock is free after any other, too.
TEST_F(UniDirValidatorTest, OtherExceptions_PassAndLeaveTheLockFree) {
    start();
    set("Top=1,Foo=1", "peer", refs({}));
    stage.script.when("Model.getUniDirEnd").throws(std::runtime_error("no"));
    EXPECT_THROW(set("Top=1,Foo=1", "peer", refs({})), std::runtime_error);
    bool result = false;
    EXPECT_THROW(validator.validate(tx, &result), std::runtime_error);
    EXPECT_THAT(log.lines(), IsEmpty());
    const auto other = std::async(std::launch::async, [&] { validator.finish(tx); });
    EXPECT_EQ(std::future_status::ready, other.wait_for(std::chrono::seconds(20)));
}

// While one transaction is judged under the lock, the model is asked for another without it.
TEST_F(UniDirValidatorTest, SetMoRef_AsksTheModelWithoutTheLock) {
    start();
    set("Top=1,Foo=1", "peer", refs({}));
    std::promise<void> asked;
    std::future<void> other;
    stage.script.when("Model.getFirstUniDirAssociation").runs([&] { asked.set_value(); });
    stage.script.when("ThreadContext.addMessage").runs([&] {
        other = std::async(std::launch::async, [&] {
            Scripted::Records records;
            validator.setMoRef(8, "Top=1,Foo=1", "peer", records.container(refs({})));
        });
        EXPECT_EQ(std::future_status::ready, asked.get_future().wait_for(std::chrono::seconds(20)));
    });
    EXPECT_FALSE(verdict());
    other.get();
}

}
