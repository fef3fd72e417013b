// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "BiDirScene.h"

#include <chrono>
#include <future>
#include <list>

namespace BiDirTests {
namespace {

using Messages = Lines;

class BiDirValidation : public Scene {
protected:
    /// X=1 holds \p references in `ys` and is on the work list of transaction 1.
    void written(const Lines& references) {
        stage.world.mo("X=1").with("ys", Scripted::refs(references));
        start();
        utils.addUpdatedBp(1, "X=1", "ys");
    }

    void expectValid() {
        EXPECT_EQ(validate(1), OrvOk);
        EXPECT_TRUE(valid);
        EXPECT_EQ(messages(), Messages());
    }

    void expectRefused(const Messages& expected, OrvReturnT code = OrvValidationFailed) {
        EXPECT_EQ(validate(1), code);
        EXPECT_FALSE(valid);
        EXPECT_EQ(messages(), expected);
    }
};

TEST_F(BiDirValidation, Start_LooksUpRepositoryThreadContextRouter) {
    validator.start();
    EXPECT_EQ(
        calls(),
        (Lines{"OrvPortal.lookup('VekOamSpiModelRepositoryService', "
               "'VekOamSpiModelRepository', '4')",
               "OrvPortal.lookup('VekMgmtSpiThreadContextService', "
               "'VekMgmtSpiThreadContext', '2')",
               "OrvPortal.lookup('VekOamSpiCmRouterService', 'VekOamSpiManagedObject', '3')"}));
    EXPECT_EQ(validator.modelRepository, Scripted::modelRepositoryTable());
    EXPECT_EQ(validator.threadContext, Scripted::threadContextTable());
    EXPECT_EQ(validator.moRouter, Scripted::vekRouter3Table());
}

TEST_F(BiDirValidation, Start_NothingFound_LogsEachAndGoesOn) {
    stage.missing = {Scripted::Part::VekRouter3, Scripted::Part::ModelRepository,
                     Scripted::Part::ThreadContext};
    validator.start();
    EXPECT_EQ(log.all(), (Lines{"log 4: Interface VekOamSpiModelRepository not found",
                                "log 4: Interface VekMgmtSpiThreadContext not found",
                                "log 4: Interface VekOamSpiManagedObject not found"}));
    EXPECT_EQ(validator.modelRepository, nullptr);
    EXPECT_EQ(validator.threadContext, nullptr);
    EXPECT_EQ(validator.moRouter, nullptr);
}

TEST_F(BiDirValidation, Stop_ForgetsAllThree) {
    validator.start();
    validator.stop();
    EXPECT_EQ(validator.modelRepository, nullptr);
    EXPECT_EQ(validator.threadContext, nullptr);
    EXPECT_EQ(validator.moRouter, nullptr);
}

TEST_F(BiDirValidation, NothingWritten_IsValidWithoutAnyCall) {
    modelOfXAndY();
    start();
    expectValid();
    EXPECT_EQ(calls(), Lines());
}

TEST_F(BiDirValidation, NothingWritten_IsValidAlsoWhenStopped) {
    EXPECT_EQ(validate(1), OrvOk);
    EXPECT_TRUE(valid);
}

// Without a verdict the transaction must not pass for a valid one.
TEST_F(BiDirValidation, SomethingWrittenAndStopped_IsNotValid) {
    modelOfXAndY();
    written({});
    validator.stop();
    forget();
    valid = true;
    EXPECT_EQ(validate(1), OrvNotActive);
    EXPECT_FALSE(valid);
    EXPECT_EQ(log.of("log"), Lines{"log 3: Transaction 1 cannot be validated without router and "
                                   "model repository"});
}

TEST_F(BiDirValidation, SomethingWrittenAndNoRouterOffered_IsNotValidAndAsksNothing) {
    modelOfXAndY();
    stage.missing = {Scripted::Part::VekRouter3};
    written({});
    EXPECT_EQ(validate(1), OrvNotActive);
    EXPECT_FALSE(valid);
    EXPECT_EQ(calls(), Lines());
    EXPECT_EQ(messages(), Messages());
}

TEST_F(BiDirValidation, SomethingWrittenAndNoModelForTheQuestions_IsNotValid) {
    modelOfXAndY();
    written({});
    utils.stop();
    EXPECT_EQ(validate(1), OrvNotActive);
    EXPECT_FALSE(valid);
}

TEST_F(BiDirValidation, BothSidesInOrder_IsValidAndTracesEachPair) {
    modelOfXAndY();
    stage.world.mo("Y=1");
    stage.world.mo("X=1");
    start();
    set(1, "X=1", "ys", {"Y=1"});
    forget();
    expectValid();
    EXPECT_EQ(log.of("trace: Validating"),
              (Lines{"trace: Validating: X=1, ys", "trace: Validating: Y=1, xs"}));
}

TEST_F(BiDirValidation, DeletedMo_IsPassedOver) {
    modelOfXAndY();
    stage.world.mo("X=1");
    stage.world.mo("Y=1");
    start();
    set(1, "X=1", "ys", {"Y=1"});
    stage.world.remove("Y=1");
    forget();
    expectValid();
    EXPECT_EQ(stage.script.texts("VekRouter3"),
              joined({exists("X=1"), read("X=1", "ys"), exists("Y=1")}));
}

TEST_F(BiDirValidation, ExistsFailsOnTheLastPair_GivesItsCodeAndStaysValid) {
    modelOfXAndY();
    written({});
    stage.world.mo("X=2");
    utils.addUpdatedBp(1, "X=2", "ys");
    when("VekRouter3.existsMo").on("X=2").fails(-5);
    EXPECT_EQ(validate(1), -5);
    EXPECT_TRUE(valid);
    EXPECT_EQ(messages(), Messages());
}

TEST_F(BiDirValidation, ExistsFailsOnAnEarlierPair_DoesNotShow) {
    modelOfXAndY();
    written({});
    stage.world.mo("X=2");
    utils.addUpdatedBp(1, "X=2", "ys");
    when("VekRouter3.existsMo").on("X=1").fails(-5);
    expectValid();
}

TEST_F(BiDirValidation, ValueCannotBeRead_TracesDnBeforeAttribute) {
    modelOfXAndY();
    written({});
    when("VekRouter3.getMoAttribute").fails(-5);
    forget();
    expectRefused({}, -5);
    EXPECT_EQ(log.of("trace: Failed"),
              Lines{"trace: Failed to retrieve X=1 value from ys, return code = -5"});
}

TEST_F(BiDirValidation, FirstViolation_EndsTheValidation) {
    modelOfXAndY();
    stage.model.moc("X").reference("ys", "Y", 1, 2);
    stage.world.mo("X=1");
    stage.world.mo("X=2");
    start();
    utils.addUpdatedBp(1, "X=1", "ys");
    utils.addUpdatedBp(1, "X=2", "ys");
    expectRefused({"Multiplicity of attribute ys in X=1 is not in range (1..2)."});
    EXPECT_EQ(stage.script.texts("VekRouter3.existsMo"), exists("X=1"));
}

TEST_F(BiDirValidation, Twice_FindsTheSameAgain) {
    modelOfXAndY();
    stage.model.moc("X").reference("ys", "Y", 1, 2);
    written({});
    const std::string message = "Multiplicity of attribute ys in X=1 is not in range (1..2).";
    expectRefused({message});
    expectRefused({message, message});
}

// ---------------------------------------------------------------------------------------------
// The messages, each in full

TEST_F(BiDirValidation, MoWithoutClass_DnMessage) {
    modelOfXAndY();
    stage.world.mo("Q=1").with("ys", Scripted::refs({}));
    start();
    utils.addUpdatedBp(1, "Q=1", "ys");
    expectRefused({"Q=1 does not correspond to a valid MO type."});
}

TEST_F(BiDirValidation, ValueWithoutClass_ValueMessage) {
    modelOfXAndY();
    written({"Y=1", "Q=1", "Q=2"});
    expectRefused({"Q=1 does not correspond to a valid MO type."});
}

TEST_F(BiDirValidation, AttributeThatIsNoReference_ReferenceMessage) {
    modelOfXAndY();
    stage.model.moc("X").attribute("label");
    stage.world.mo("X=1").with("label", Scripted::strings({"text"}));
    start();
    utils.addUpdatedBp(1, "X=1", "label");
    expectRefused({"Attribute label in X=1 is not a MO ref."});
}

TEST_F(BiDirValidation, TooManyValues_MultiplicityMessageAndNoOtherCheck) {
    modelOfXAndY();
    stage.model.moc("X").reference("ys", "Y", 0, 1);
    written({"Y=1", "Y=2"});
    expectRefused({"Multiplicity of attribute ys in X=1 is not in range (0..1)."});
    EXPECT_EQ(stage.script.texts("Model.getEndIntProperty"), Lines());
}

TEST_F(BiDirValidation, MultiplicityBounds_AreInclusive) {
    modelOfXAndY();
    stage.model.moc("X").reference("ys", "Y", 1, 2);
    written({"Y=1"});
    expectValid();
    stage.world.set("X=1", "ys", Scripted::refs({"Y=1", "Y=2"}));
    expectValid();
    stage.world.set("X=1", "ys", Scripted::refs({"Y=1", "Y=2", "Y=3"}));
    expectRefused({"Multiplicity of attribute ys in X=1 is not in range (1..2)."});
}

TEST_F(BiDirValidation, TooManyOfOneAssociation_CardinalityMessageInTheEndsWord) {
    stage.model.biDir({"X", "ys", 0, 1, "things"}, {"Y", "xs"});
    written({"Y=1", "Y=2"});
    expectRefused({"Attribute ys in X=1 contains 2 things which is not within cardinality range "
                   "(0..1)."});
}

TEST_F(BiDirValidation, NoneOfAnAssociationThatNeedsOne_CardinalityMessageWithZero) {
    stage.model.biDir({"X", "ys", 1, 3, "things"}, {"Y", "xs"});
    written({});
    expectRefused({"Attribute ys in X=1 contains 0 things which is not within cardinality range "
                   "(1..3)."});
}

TEST_F(BiDirValidation, CardinalityBounds_AreInclusive) {
    stage.model.biDir({"X", "ys", 1, 2, "things"}, {"Y", "xs"});
    written({"Y=1"});
    expectValid();
    stage.world.set("X=1", "ys", Scripted::refs({"Y=1", "Y=2"}));
    expectValid();
}

TEST_F(BiDirValidation, ValueOfAnotherClass_TypeMessage) {
    modelOfXAndY();
    stage.model.moc("Z");
    written({"Y=1", "Z=1"});
    expectRefused({"Z is not a valid type for attribute ys in X=1."});
}

// Bounds are signed numbers, with none that is special.
TEST_F(BiDirValidation, UpperBoundOfMinusOne_FailsEveryCount) {
    modelOfXAndY();
    stage.model.moc("X").reference("ys", "Y", 0, -1);
    written({});
    expectRefused({"Multiplicity of attribute ys in X=1 is not in range (0..-1)."});
}

TEST_F(BiDirValidation, UpperCardinalityOfMinusOne_FailsEveryCount) {
    stage.model.biDir({"X", "ys", -5, -1, "things"}, {"Y", "xs"});
    written({"Y=1"});
    expectRefused({"Attribute ys in X=1 contains 1 things which is not within cardinality range "
                   "(-5..-1)."});
}

TEST_F(BiDirValidation, Messages_GoOutWithKindOneAndAreTraced) {
    modelOfXAndY();
    stage.model.moc("X").reference("ys", "Y", 1, 1);
    written({});
    forget();
    validate(1);
    const std::string message = "Multiplicity of attribute ys in X=1 is not in range (1..1).";
    EXPECT_EQ(stage.script.texts("ThreadContext"),
              Lines{"ThreadContext.addMessage(1, '" + message + "')"});
    EXPECT_EQ(log.of("trace: Multiplicity"), Lines{"trace: " + message});
    EXPECT_EQ(log.of("log"), Lines());
}

TEST_F(BiDirValidation, MessageNotTaken_IsTracedThenLoggedAndChangesNothing) {
    modelOfXAndY();
    stage.model.moc("X").reference("ys", "Y", 1, 1);
    written({});
    when("ThreadContext.addMessage").fails(-5);
    forget();
    expectRefused({});
    const std::string message = "Multiplicity of attribute ys in X=1 is not in range (1..1).";
    ASSERT_GE(log.all().size(), 2U);
    EXPECT_EQ(
        Lines(log.all().end() - 2, log.all().end()),
        (Lines{"trace: " + message,
               "log 4: Failed to add message to thread context. Message: [" + message + "]"}));
}

TEST_F(BiDirValidation, Message_IsGivenToTheClientBeforeItIsTraced) {
    start();
    Lines tracedBefore = {"not called"};
    when("ThreadContext.addMessage").runs([&] { tracedBefore = log.all(); });
    validator.addThreadContextMessage("text");
    EXPECT_EQ(tracedBefore, Lines());
    EXPECT_EQ(log.all(), Lines{"trace: text"});
}

// Host and client are called with no lock held: another thread can use the back-pointers meanwhile.
TEST_F(BiDirValidation, Host_IsCalledWithNoLockHeld) {
    modelOfXAndY();
    stage.model.moc("X").reference("ys", "Y", 1, 1);
    written({});
    std::future<Lines> other;
    for (const char* call : {"VekRouter3.existsMo", "VekRouter3.getMoAttribute",
                             "Model.getTypeCode", "ThreadContext.addMessage"}) {
        when(call).runs([&] {
            other = std::async(std::launch::async, [&] { return modified(1); });
            EXPECT_EQ(other.wait_for(std::chrono::seconds(20)), std::future_status::ready);
        });
    }
    EXPECT_EQ(validate(1), OrvValidationFailed);
    ASSERT_TRUE(other.valid());
    EXPECT_EQ(other.get(), Lines{"X=1.ys"});
}

TEST_F(BiDirValidation, EmptyMessage_IsAddedAndTracedToo) {
    start();
    validator.addThreadContextMessage("");
    EXPECT_EQ(calls(), Lines{"ThreadContext.addMessage(1, '')"});
    EXPECT_EQ(log.all(), Lines{"trace: "});
}

TEST_F(BiDirValidation, NoThreadContext_IsInvalidWithoutText) {
    stage.missing = {Scripted::Part::ThreadContext};
    modelOfXAndY();
    stage.model.moc("X").reference("ys", "Y", 1, 1);
    written({});
    forget();
    expectRefused({});
    EXPECT_EQ(log.of("log"), Lines{"log 3: ExtCm ThreadContext is null"});
}

// ---------------------------------------------------------------------------------------------
// Several associations, any class, one class on both sides

TEST_F(BiDirValidation, TwoAssociationsThroughOneAttribute_EachCountsItsOwnClass) {
    stage.model.moc("X").reference("ys", "ManagedObject");
    stage.model.biDir({"X", "ys", 0, 1, "Ys"}, {"Y", "xs"});
    stage.model.biDir({"X", "ys", 2, 2, "Zs"}, {"Z", "xs"});
    written({"Z=1", "Y=1", "Z=2"});
    expectValid();
    stage.world.set("X=1", "ys", Scripted::refs({"Z=1", "Y=1"}));
    expectRefused({"Attribute ys in X=1 contains 1 Zs which is not within cardinality range "
                   "(2..2)."});
}

TEST_F(BiDirValidation, AnyClassWithAssociations_PermitsTheirClassesOnly) {
    stage.model.moc("X").reference("ys", "ManagedObject");
    stage.model.biDir({"X", "ys"}, {"Y", "xs"});
    stage.model.biDir({"X", "ys"}, {"Z", "xs"});
    stage.model.moc("W");
    written({"Z=1", "Y=1"});
    expectValid();
    stage.world.set("X=1", "ys", Scripted::refs({"Z=1", "W=1"}));
    expectRefused({"W is not a valid type for attribute ys in X=1."});
}

TEST_F(BiDirValidation, AnyClassWithoutMatchingAssociation_PassesEveryValueWithAClass) {
    modelOfXAndY();
    stage.model.moc("X").reference("others", "ManagedObject");
    stage.model.moc("W");
    stage.world.mo("X=1").with("others", Scripted::refs({"W=1", "Y=1", "X=1"}));
    start();
    utils.addUpdatedBp(1, "X=1", "others");
    expectValid();
}

TEST_F(BiDirValidation, TypedAttribute_ComparesTheClassExactly) {
    stage.model.moc("X").reference("ys", "Base");
    stage.model.biDir({"X", "ys"}, {"Y", "xs"});
    written({"Y=1"});
    expectRefused({"Y is not a valid type for attribute ys in X=1."});
}

// The near end is always the first one, so the attribute of that name meets no association.
TEST_F(BiDirValidation, SelfAssociation_OnlyTheAttributeOfTheSecondEndHasACardinality) {
    stage.model.biDir({"N", "b", 0, 1, "bs"}, {"N", "a", 0, 1, "as"}); // ends: first a, second b
    stage.world.mo("N=1").with("a", Scripted::refs({"N=2", "N=3"}));
    start();
    utils.addUpdatedBp(1, "N=1", "a");
    expectValid();
    stage.world.mo("N=4").with("b", Scripted::refs({"N=2", "N=3"}));
    utils.addUpdatedBp(1, "N=4", "b");
    expectRefused({"Attribute b in N=4 contains 2 bs which is not within cardinality range "
                   "(0..1)."});
}

TEST_F(BiDirValidation, ClassWithoutAssociations_EndsTheValidationAsItStands) {
    stage.model.moc("P").reference("others", "P");
    modelOfXAndY();
    stage.model.moc("X").reference("ys", "Y", 1, 1);
    stage.world.mo("P=1");
    stage.world.mo("X=1");
    start();
    utils.addUpdatedBp(1, "P=1", "others");
    utils.addUpdatedBp(1, "X=1", "ys"); // would be a violation
    expectValid();
    EXPECT_EQ(stage.script.texts("VekRouter3.existsMo"), exists("P=1"));
    EXPECT_EQ(stage.script.texts("Producer"), release("P=1.others"));
}

// ---------------------------------------------------------------------------------------------
// The walk of the type check

class BiDirTypeCheck : public Scene {
protected:
    BiDirTypeCheck() {
        modelOfXAndY();
        stage.model.moc("Z");
        start();
    }

    OrvReturnT check(const Lines& references, std::list<VekOamSpiMrMocHandle_4T> permitted = {}) {
        Scripted::Records records;
        VekMoAttributeValueResult_3 result{nullptr, records.container(Scripted::refs(references))};
        return validator.attributeTypeCheck("X=1", "ys", &result, permitted);
    }
};

// A value without a class is tried again in every pass that is left, and those behind it never are.
TEST_F(BiDirTypeCheck, ValueWithoutClass_IsTriedAgainInEveryPassThatIsLeft) {
    EXPECT_EQ(check({"Y=1", "Q=1", "Z=1", "Y=2"}), -2);
    EXPECT_EQ(messages(), (Messages{"Q=1 does not correspond to a valid MO type.",
                                    "Q=1 does not correspond to a valid MO type.",
                                    "Q=1 does not correspond to a valid MO type.",
                                    "Y is not a valid type for attribute ys in X=1."}));
}

TEST_F(BiDirTypeCheck, FirstValueWithoutClass_EndsWithAnEmptyMessage) {
    EXPECT_EQ(check({"Q=1", "Y=1"}), -2);
    EXPECT_EQ(messages(), (Messages{"Q=1 does not correspond to a valid MO type.",
                                    "Q=1 does not correspond to a valid MO type.", ""}));
}

TEST_F(BiDirTypeCheck, LookupThatRecovers_GoesOnFromTheSameValueAndLeavesTheLastOut) {
    when("Model.getMocFromDn").on("'Y=1'").once().fails(-5);
    EXPECT_EQ(check({"Y=1", "Y=2", "Z=1"}), OrvOk);
    EXPECT_EQ(messages(), Messages{"Y=1 does not correspond to a valid MO type."});
    EXPECT_EQ(stage.script.texts("Model.getMocFromDn"),
              joined({mocOf("X=1"), mocOf("Y=1"), mocOf("Y=1"), mocOf("Y=2")}));
}

TEST_F(BiDirTypeCheck, WrongClass_LeavesTheWalkAtOnce) {
    EXPECT_EQ(check({"Z=1", "Q=1", "Y=1"}), OrvValidationFailed);
    EXPECT_EQ(messages(), Messages{"Z is not a valid type for attribute ys in X=1."});
}

TEST_F(BiDirTypeCheck, WrongClassWithoutName_GivesAnEmptyMessage) {
    when("Model.getMocGeneralProperties").on("'Z'").fails(-5);
    EXPECT_EQ(check({"Y=1", "Z=1"}), OrvValidationFailed);
    EXPECT_EQ(messages(), Messages{""});
}

TEST_F(BiDirTypeCheck, NoValues_AreNotLookedAt) {
    EXPECT_EQ(check({}), OrvOk);
    EXPECT_EQ(stage.script.texts("Model.getMocFromDn"), mocOf("X=1"));
}

TEST_F(BiDirTypeCheck, NoContainer_CountsAsNoValues) {
    VekMoAttributeValueResult_3 result{nullptr, nullptr};
    std::list<VekOamSpiMrMocHandle_4T> permitted;
    EXPECT_EQ(validator.attributeTypeCheck("X=1", "ys", &result, permitted), OrvOk);
}

TEST_F(BiDirTypeCheck, AttributeThatIsNoReference_Passes) {
    stage.model.moc("X").attribute("label");
    VekMoAttributeValueResult_3 result{nullptr, nullptr};
    std::list<VekOamSpiMrMocHandle_4T> permitted;
    EXPECT_EQ(validator.attributeTypeCheck("X=1", "label", &result, permitted), OrvOk);
    EXPECT_EQ(messages(), Messages());
}

// ---------------------------------------------------------------------------------------------
// Finding an attribute

class BiDirAttributeSearch : public Scene {
protected:
    BiDirAttributeSearch() {
        stage.model.moc("X").attribute("a").attribute("b").attribute("c");
        stage.model.moc("One").attribute("a");
        stage.model.moc("None");
        start();
    }

    std::string found(const std::string& mocName, const std::string& name) {
        VekOamSpiMrAttributeHandle_4T handle = 0;
        validator.getAttributeFromMoc(moc(mocName), name.c_str(), handle);
        return stage.model.nameOf(handle);
    }
};

TEST_F(BiDirAttributeSearch, StopsAtTheName) {
    EXPECT_EQ(found("X", "b"), "X.b");
    EXPECT_EQ(calls(), joined({{"Model.getFirstAttribute('X')"},
                               nameOfAttribute("X.a"),
                               {"Model.getNextAttribute('X.a')"},
                               nameOfAttribute("X.b")}));
}

TEST_F(BiDirAttributeSearch, NameNotThere_LeavesWhatTheLastStepLeft) {
    EXPECT_EQ(found("X", "z"), "X.c");
    EXPECT_EQ(found("One", "z"), "0");
    EXPECT_EQ(found("None", "z"), "0");
}

TEST_F(BiDirAttributeSearch, NullName_MatchesNothing) {
    when("Model.getGeneralStringProperty").on("X.a").fails(-5);
    EXPECT_EQ(found("X", "a"), "X.c");
}

TEST_F(BiDirAttributeSearch, OtherCodesThanTheEnd_AreWalkedPast) {
    when("Model.getFirstAttribute").returns(-5);
    when("Model.getNextAttribute").on("X.a").returns(7);
    EXPECT_EQ(found("X", "c"), "X.c");
}

TEST_F(BiDirAttributeSearch, ModelThatFailsForEver_DoesNotHang) {
    when("Model.getFirstAttribute").fails(-5);
    when("Model.getNextAttribute").fails(-5);
    EXPECT_EQ(found("X", "a"), "0");
    EXPECT_EQ(calls(), joined({{"Model.getFirstAttribute('X')"},
                               nameOfAttribute("0"),
                               {"Model.getNextAttribute('0')"}}));
}

TEST_F(BiDirAttributeSearch, ModelThatFailsForEverInTheMiddle_DoesNotHang) {
    when("Model.getNextAttribute").on("X.b").fails(-5);
    EXPECT_EQ(found("X", "c"), "X.b");
    EXPECT_EQ(stage.script.texts("Model.getNextAttribute"),
              (Lines{"Model.getNextAttribute('X.a')", "Model.getNextAttribute('X.b')",
                     "Model.getNextAttribute('X.b')"}));
}

}
}
