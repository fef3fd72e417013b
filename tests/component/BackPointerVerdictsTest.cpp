// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The verdict on what a transaction wrote on either side of a bidirectional association, and what
// is reported to the client: every rule is broken, one after the other.

#include "Host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

using namespace Scripted;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {

using Texts = std::vector<std::string>;

}

/// A host with X=1 and a few Y. Models first, then start().
class BackPointerVerdicts : public testing::Test {
protected:
    BackPointerVerdicts() {
        for (const char* const dn : {"X=1", "X=2", "Y=1", "Y=2", "Y=3"}) {
            host.mo(dn);
        }
    }

    /// The attribute `ys` of X and the attribute `xs` of Y belong together.
    void modelOfXAndY(long long lower = 0, long long upper = 1000) {
        host.model().biDir({"X", "ys", lower, upper, "things"}, {"Y", "xs"});
    }

    void write(const std::string& dn, const std::string& attribute, const Texts& references) {
        EXPECT_EQ(host.client().set(1, dn, attribute, refs(references)), OrvOk);
    }

    bool validate() {
        bool result = false;
        EXPECT_EQ(host.resource().validate(1, &result), OrvOk);
        return result;
    }

    void expectValid() {
        EXPECT_TRUE(validate());
        EXPECT_THAT(host.messages(), IsEmpty());
    }

    void expectRefused(const Texts& messages) {
        EXPECT_FALSE(validate());
        EXPECT_EQ(host.messages(), messages);
    }

    Host host;
};

// ---------------------------------------------------------------------------------------------
// The rules and their messages

TEST_F(BackPointerVerdicts, NothingButATextWritten_IsValidWithoutARead) {
    modelOfXAndY();
    host.start();
    EXPECT_EQ(host.client().set(1, "X=1", "label", strings({"x"})), OrvOk);
    host.forget();
    expectValid();
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(BackPointerVerdicts, TwoValuesWhereOneMayBe_MultiplicityMessageAndNoOtherCheck) {
    host.model().moc("X").reference("ys", "Y", 0, 1);
    modelOfXAndY(0, 1);
    host.start();
    write("X=1", "ys", {"Y=1", "Y=2"});
    host.forget();
    expectRefused({"Multiplicity of attribute ys in X=1 is not in range (0..1)."});
    EXPECT_THAT(host.calls("Model.getEndIntProperty"), IsEmpty());
}

TEST_F(BackPointerVerdicts, UpperMultiplicityOfMinusOne_FailsEveryCount) {
    host.model().moc("X").reference("ys", "Y", -3, -1);
    modelOfXAndY();
    host.start();
    write("X=1", "ys", {});
    expectRefused({"Multiplicity of attribute ys in X=1 is not in range (-3..-1)."});
}

TEST_F(BackPointerVerdicts, ReferencesInATextAttribute_ReferenceMessage) {
    host.model().moc("X").attribute("label");
    modelOfXAndY();
    host.mo("X=3").with("label", strings({"a text"}));
    host.start();
    write("X=3", "label", {"Y=1"});
    expectRefused({"Attribute label in X=3 is not a MO ref."});
}

TEST_F(BackPointerVerdicts, ClassOfTheMoGone_DnMessage) {
    modelOfXAndY();
    host.start();
    write("X=1", "ys", {});
    host.when("Model.getMocFromDn").on("'X=1'").fails(-42);
    expectRefused({"X=1 does not correspond to a valid MO type."});
}

TEST_F(BackPointerVerdicts, ValueWithoutClass_ValueMessageOnce) {
    modelOfXAndY();
    host.start();
    write("X=1", "ys", {"Y=1", "Q=1", "Q=2"});
    expectRefused({"Q=1 does not correspond to a valid MO type."});
}

TEST_F(BackPointerVerdicts, TooManyOfOneAssociation_CardinalityMessage) {
    modelOfXAndY(0, 1);
    host.start();
    write("X=1", "ys", {"Y=1", "Y=2"});
    expectRefused({"Attribute ys in X=1 contains 2 things which is not within cardinality range "
                   "(0..1)."});
}

TEST_F(BackPointerVerdicts, NoneOfAnAssociationThatNeedsOne_CardinalityMessageWithZero) {
    modelOfXAndY(1, 3);
    host.start();
    write("X=1", "ys", {});
    expectRefused({"Attribute ys in X=1 contains 0 things which is not within cardinality range "
                   "(1..3)."});
}

TEST_F(BackPointerVerdicts, UpperCardinalityOfMinusOne_FailsEveryCount) {
    modelOfXAndY(-3, -1);
    host.start();
    write("X=1", "ys", {"Y=1"});
    expectRefused({"Attribute ys in X=1 contains 1 things which is not within cardinality range "
                   "(-3..-1)."});
}

TEST_F(BackPointerVerdicts, BoundsOfBothKinds_AreInclusive) {
    host.model().moc("X").reference("ys", "Y", 1, 2);
    modelOfXAndY(1, 2);
    host.start();
    write("X=1", "ys", {"Y=1"});
    expectValid();
    write("X=1", "ys", {"Y=1", "Y=2"});
    expectValid();
}

TEST_F(BackPointerVerdicts, ValueOfAnotherClass_TypeMessage) {
    host.model().moc("Z");
    modelOfXAndY();
    host.start();
    write("X=1", "ys", {"Y=1", "Z=1"});
    expectRefused({"Z is not a valid type for attribute ys in X=1."});
}

TEST_F(BackPointerVerdicts, FarSideThatNobodyWroteDirectly_IsJudgedToo) {
    host.model().biDir({"X", "ys"}, {"Y", "xs", 0, 1, "owners"});
    host.start();
    write("X=1", "ys", {"Y=1"});
    write("X=2", "ys", {"Y=1"});
    expectRefused({"Attribute xs in Y=1 contains 2 owners which is not within cardinality range "
                   "(0..1)."});
}

// ---------------------------------------------------------------------------------------------
// An attribute that no association goes through meets the check of its values' types only

TEST_F(BackPointerVerdicts, ValueWithoutClassThere_IsTriedAgainAndTheLastNameFollows) {
    host.model().moc("X").reference("others", "Y");
    modelOfXAndY();
    host.start();
    write("X=1", "others", {"Y=1", "Q=1", "Z=1", "Y=2"});
    const std::string again = "Q=1 does not correspond to a valid MO type.";
    expectRefused({again, again, again, "Y is not a valid type for attribute others in X=1."});
}

TEST_F(BackPointerVerdicts, FirstValueWithoutClassThere_TheLastMessageIsEmpty) {
    host.model().moc("X").reference("others", "Y");
    modelOfXAndY();
    host.start();
    write("X=1", "others", {"Q=1", "Y=1"});
    const std::string again = "Q=1 does not correspond to a valid MO type.";
    expectRefused({again, again, ""});
}

TEST_F(BackPointerVerdicts, AnyClassThere_PassesEveryValueWithAClass) {
    host.model().moc("W");
    host.model().moc("X").reference("others", "ManagedObject");
    modelOfXAndY();
    host.start();
    write("X=1", "others", {"W=1", "Y=1", "X=1"});
    expectValid();
}

TEST_F(BackPointerVerdicts, LookupThatRecoversThere_GoesOnFromTheSameValueAndLeavesTheLastOut) {
    host.model().moc("Z");
    host.model().moc("X").reference("others", "Y");
    modelOfXAndY();
    host.start();
    write("X=1", "others", {"Y=1", "Y=2", "Z=1"});
    host.when("Model.getMocFromDn").on("'Y=1'").once().fails(-42);
    EXPECT_TRUE(validate());
    EXPECT_THAT(host.messages(), ElementsAre("Y=1 does not correspond to a valid MO type."));
}

TEST_F(BackPointerVerdicts, WrongClassWithoutName_TheMessageIsEmpty) {
    host.model().moc("Z");
    modelOfXAndY();
    host.start();
    write("X=1", "ys", {"Y=1", "Z=1"});
    host.when("Model.getMocGeneralProperties").on("'Z'").fails(-42);
    expectRefused({""});
}

TEST_F(BackPointerVerdicts, ClassWithTheHandleZero_IsAClassThatDoesNotFit) {
    modelOfXAndY();
    host.start();
    write("X=1", "ys", {"Y=1"});
    host.when("Model.getMocFromDn").on("'Y=1'").answers<unsigned long long>([](auto& moc) {
        moc = 0;
        return OrvOk;
    });
    expectRefused({""});
}

// The model is asked a second time before the classes are compared.
TEST_F(BackPointerVerdicts, TypeThatIsNoReferenceByThen_ClassesAreNotCompared) {
    host.model().moc("Z");
    modelOfXAndY();
    host.start();
    write("X=1", "ys", {"Z=1"});
    expectRefused({"Z is not a valid type for attribute ys in X=1."});
    host.when("Model.getTypeCode").nth(2).answers<int>([](int& code) {
        code = VekOamSpiMrTypeMoRef_4 + 1;
        return OrvOk;
    });
    EXPECT_TRUE(validate());
    EXPECT_THAT(host.messages(), testing::SizeIs(1)) << "only that of the first validation";
}

// A class derived from the declared one is another class.
TEST_F(BackPointerVerdicts, DeclaredClass_IsComparedExactly) {
    host.model().moc("X").reference("ys", "Base");
    modelOfXAndY();
    host.start();
    write("X=1", "ys", {"Y=1"});
    expectRefused({"Y is not a valid type for attribute ys in X=1."});
}

// ---------------------------------------------------------------------------------------------
// An attribute that the class does not have, and what the model leaves out of a message

TEST_F(BackPointerVerdicts, AttributeThatIsNotThere_IsJudgedAsTheLastOne) {
    modelOfXAndY();
    host.model().moc("X").reference("b", "Y", 0, 1);
    host.mo("X=3").with("a", refs({}));
    host.start();
    write("X=3", "a", {"Y=1", "Y=2"});
    expectRefused({"Multiplicity of attribute a in X=3 is not in range (0..1)."});
}

TEST_F(BackPointerVerdicts, AttributeThatIsNotThereBesideOneOther_IsNoReference) {
    modelOfXAndY();
    host.mo("X=3").with("a", refs({}));
    host.start();
    write("X=3", "a", {"Y=1"});
    expectRefused({"Attribute a in X=3 is not a MO ref."});
}

TEST_F(BackPointerVerdicts, NameOfAnAttributeMissing_MatchesNothing) {
    host.model().moc("X").reference("b", "Y", 0, 0);
    modelOfXAndY();
    host.start();
    write("X=1", "b", {});
    host.when("Model.getGeneralStringProperty").on("X.b").fails(-42);
    expectValid(); // by the bounds of the last attribute
    write("X=1", "b", {"Y=1"});
    expectValid();
}

// The search goes on past a step that fails, from where it left the handle; two that stand end it.
TEST_F(BackPointerVerdicts, AttributesThatCannotBeWalked_EndTheSearchWithoutAnAttribute) {
    modelOfXAndY();
    host.model().moc("X").reference("more", "Y");
    host.start();
    write("X=1", "more", {});
    host.when("Model.getNextAttribute").fails(-42);
    host.forget();
    expectRefused({"Attribute more in X=1 is not a MO ref."});
    EXPECT_THAT(host.calls("Model.getNextAttribute"),
                ElementsAre("Model.getNextAttribute('X.ys')", "Model.getNextAttribute('0')",
                            "Model.getNextAttribute('0')"));
}

TEST_F(BackPointerVerdicts, StepThatFailsAndMoves_IsWalkedPast) {
    modelOfXAndY();
    host.model().moc("X").reference("more", "Y", 0, 0);
    host.start();
    write("X=1", "more", {"Y=1"});
    host.when("Model.getFirstAttribute").returns(-42);
    host.when("Model.getNextAttribute").returns(42);
    expectRefused({"Multiplicity of attribute more in X=1 is not in range (0..0)."});
}

// What stands before the missing text stays, and nothing comes after it.
TEST_F(BackPointerVerdicts, RoleMissing_EndsTheCardinalityMessageThere) {
    modelOfXAndY(0, 1);
    host.start();
    write("X=1", "ys", {"Y=1", "Y=2"});
    host.when("Model.getEndStringProperty").on(", 1)").fails(-42);
    expectRefused({"Attribute ys in X=1 contains 2 "});
}

TEST_F(BackPointerVerdicts, NameOfTheEndMissing_EndsTheCardinalityMessageThere) {
    modelOfXAndY(0, 1);
    host.start();
    write("X=1", "ys", {"Y=1", "Y=2"});
    host.when("Model.getEndStringProperty").nth(3).fails(-42);
    expectRefused({"Attribute "});
}

TEST_F(BackPointerVerdicts, ClassOfTheTargetUnknown_CountsNone) {
    modelOfXAndY(1, 2);
    host.start();
    write("X=1", "ys", {"Y=1"});
    host.when("Model.getAttributeMoc").fails(-42);
    expectRefused({"Attribute ys in X=1 contains 0 things which is not within cardinality range "
                   "(1..2)."});
}

// ---------------------------------------------------------------------------------------------
// Bounds are signed numbers of 64 bits, and none of them is special

TEST_F(BackPointerVerdicts, NegativeLowerBounds_AreBelowEveryCount) {
    host.model().moc("X").reference("ys", "Y", -5, 3);
    modelOfXAndY(-5, 3);
    host.start();
    write("X=1", "ys", {});
    expectValid();
}

TEST_F(BackPointerVerdicts, MultiplicityOfMoreThan32Bits_IsComparedAndShownWhole) {
    host.model().moc("X").reference("ys", "Y", 4'294'967'296, 4'294'967'298);
    modelOfXAndY();
    host.start();
    write("X=1", "ys", {"Y=1"});
    expectRefused({"Multiplicity of attribute ys in X=1 is not in range "
                   "(4294967296..4294967298)."});
}

TEST_F(BackPointerVerdicts, CardinalityOfMoreThan32Bits_IsComparedAndShownWhole) {
    modelOfXAndY(std::numeric_limits<long long>::min(), -4'294'967'296);
    host.start();
    write("X=1", "ys", {});
    expectRefused({"Attribute ys in X=1 contains 0 things which is not within cardinality range "
                   "(-9223372036854775808..-4294967296)."});
}

// ---------------------------------------------------------------------------------------------
// Several associations through one attribute, and one class on both sides

TEST_F(BackPointerVerdicts, TwoAssociationsThroughOneAttribute_EachCountsItsOwnAndPermitsBoth) {
    host.model().moc("W");
    host.model().moc("X").reference("ys", "ManagedObject");
    modelOfXAndY(0, 1);
    host.model().biDir({"X", "ys", 2, 2, "others"}, {"Z", "xs"});
    host.mo("Z=1");
    host.mo("Z=2");
    host.start();
    write("X=1", "ys", {"Z=1", "Y=1", "Z=2"});
    expectValid();
    write("X=1", "ys", {"Z=1", "Z=2", "W=1"});
    expectRefused({"W is not a valid type for attribute ys in X=1."});
    write("X=1", "ys", {"Z=1", "Y=1"});
    EXPECT_FALSE(validate());
    EXPECT_EQ(host.messages().back(), "Attribute ys in X=1 contains 1 others which is not within "
                                      "cardinality range (2..2).");
}

TEST_F(BackPointerVerdicts, AttributeOfALaterAssociation_IsJudgedByItsOwn) {
    host.model().biDir({"X", "ones"}, {"Y", "ofOne"});
    host.model().biDir({"X", "twos", 0, 1, "twos"}, {"Y", "ofTwo"});
    host.start();
    write("X=1", "twos", {"Y=1", "Y=2"});
    expectRefused({"Attribute twos in X=1 contains 2 twos which is not within cardinality range "
                   "(0..1)."});
}

// The near end is always the first one: the attribute that is named after it meets no association,
// so it has no cardinality and takes any class that it is declared for.
TEST_F(BackPointerVerdicts, SelfAssociation_OnlyTheAttributeOfTheSecondEndMeetsIt) {
    host.model().moc("W");
    host.model().moc("N").reference("a", "ManagedObject").reference("b", "ManagedObject");
    host.model().biDir({"N", "b", 0, 1, "bs"}, {"N", "a", 0, 1, "as"}); // ends: first a, second b
    for (const char* const dn : {"N=1", "N=2", "N=3", "N=4"}) {
        host.mo(dn);
    }
    host.start();
    write("N=1", "a", {"W=1", "N=2", "N=3"});
    expectValid();
    write("N=4", "b", {"W=1"});
    expectRefused({"W is not a valid type for attribute b in N=4."});
    write("N=4", "b", {"N=2", "N=3"});
    EXPECT_FALSE(validate());
    EXPECT_EQ(host.messages().back(), "Attribute b in N=4 contains 2 bs which is not within "
                                      "cardinality range (0..1).");
}

// ---------------------------------------------------------------------------------------------
// What ends the judgement, and what passes over an MO

TEST_F(BackPointerVerdicts, TwoMosBroken_OnlyTheFirstIsReported) {
    modelOfXAndY(1, 1);
    host.start();
    write("X=2", "ys", {});
    write("X=1", "ys", {});
    host.forget();
    expectRefused({"Attribute ys in X=1 contains 0 things which is not within cardinality range "
                   "(1..1)."});
    EXPECT_THAT(host.calls("VekRouter3.existsMo"), ElementsAre("VekRouter3.existsMo(1, 'X=1')"));
}

TEST_F(BackPointerVerdicts, BrokenMoThatIsDeletedLater_IsPassedOver) {
    modelOfXAndY(0, 1);
    host.start();
    write("X=1", "ys", {"Y=1", "Y=2"});
    EXPECT_EQ(host.client().remove(1, "X=1"), OrvOk);
    host.forget();
    expectValid();
    EXPECT_THAT(host.calls("VekRouter3.getMoAttribute"),
                Not(Contains("VekRouter3.getMoAttribute(1, 'X=1', 'ys')")));
}

TEST_F(BackPointerVerdicts, ExistenceIsUnknown_TheMoIsPassedOver) {
    modelOfXAndY(1, 1);
    host.start();
    write("X=1", "ys", {});
    host.when("VekRouter3.existsMo").fails(-42);
    host.forget();
    expectValid();
    EXPECT_THAT(host.calls(), ElementsAre("VekRouter3.existsMo(1, 'X=1')"));
}

TEST_F(BackPointerVerdicts, ValueCannotBeRead_IsInvalidWithoutAMessage) {
    modelOfXAndY();
    host.start();
    write("X=1", "ys", {});
    host.when("VekRouter3.getMoAttribute").fails(-42);
    host.logLevel(8).forget();
    expectRefused({});
    EXPECT_THAT(host.logs(), Contains("trace 0 validateBiDirs: Validating: X=1, ys"));
    EXPECT_THAT(host.logs(), Contains("trace 0 validateBiDirs: Failed to retrieve X=1 value from "
                                      "ys, return code = -42"));
}

TEST_F(BackPointerVerdicts, ClassWithoutAssociationsByNow_EndsTheJudgementAsItStands) {
    modelOfXAndY(1, 1);
    host.start();
    write("X=1", "ys", {});
    write("X=2", "ys", {});
    host.when("Model.getFirstBiDirAssociation").fails(OrvNotExist);
    host.forget();
    expectValid();
    EXPECT_THAT(host.calls("VekRouter3.existsMo"), ElementsAre("VekRouter3.existsMo(1, 'X=1')"));
    EXPECT_THAT(host.calls("Producer."), ElementsAre("Producer.release('X=1.ys')"));
}

TEST_F(BackPointerVerdicts, ExistenceOfALaterMoIsUnknown_TheVerdictOnTheOthersStands) {
    modelOfXAndY(1, 1);
    host.start();
    write("X=1", "ys", {});
    write("X=2", "ys", {});
    host.when("VekRouter3.existsMo").on("'X=1'").returns(-42);
    expectRefused({"Attribute ys in X=2 contains 0 things which is not within cardinality range "
                   "(1..1)."});
}

TEST_F(BackPointerVerdicts, WrittenWhileItIsValidated_IsForTheNextValidation) {
    modelOfXAndY();
    host.start();
    write("X=1", "ys", {});
    host.when("VekRouter3.existsMo").once().runs([this] { write("X=2", "ys", {}); });
    host.forget();
    expectValid();
    EXPECT_THAT(host.calls("VekRouter3.existsMo"), ElementsAre("VekRouter3.existsMo(1, 'X=1')"));
    host.forget();
    expectValid();
    EXPECT_THAT(host.calls("VekRouter3.existsMo"),
                ElementsAre("VekRouter3.existsMo(1, 'X=1')", "VekRouter3.existsMo(1, 'X=2')"));
}
