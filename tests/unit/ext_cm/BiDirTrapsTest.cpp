// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "BiDirScene.h"

// Sequences of writes that systems which keep references in step have been caught by.

namespace BiDirTests {
namespace {

class BiDirTraps : public Scene {
protected:
    void startWith(const Lines& dns) {
        for (const std::string& dn : dns) {
            stage.world.mo(dn);
        }
        start();
    }

    void expectValid(unsigned long tx) {
        EXPECT_EQ(validate(tx), OrvOk);
        EXPECT_TRUE(valid);
        EXPECT_EQ(messages(), Lines());
    }
};

TEST_F(BiDirTraps, BothSidesSetInOneTransaction_EachStandsOnce) {
    modelOfXAndY();
    startWith({"X=1", "Y=1"});
    set(1, "X=1", "ys", {"Y=1"});
    set(1, "Y=1", "xs", {"X=1"});
    EXPECT_EQ(refs("X=1", "ys"), Lines{"Y=1"});
    EXPECT_EQ(refs("Y=1", "xs"), Lines{"X=1"});
    expectValid(1);
}

TEST_F(BiDirTraps, BothSidesSetInTheOtherOrder_EachStandsOnce) {
    modelOfXAndY();
    startWith({"X=1", "Y=1"});
    set(1, "Y=1", "xs", {"X=1"});
    set(1, "X=1", "ys", {"Y=1"});
    EXPECT_EQ(refs("X=1", "ys"), Lines{"Y=1"});
    EXPECT_EQ(refs("Y=1", "xs"), Lines{"X=1"});
}

// Each MO that is created with its reference makes the other side's back-pointer, without a look at
// what is there already: both sides told, both stand twice.
TEST_F(BiDirTraps, BothSidesToldAtCreation_StandTwiceOnBothSides) {
    modelOfXAndY();
    startWith({});
    client.create(1, "X=1", {{"ys", {"Y=1"}}});
    client.create(1, "Y=1", {{"xs", {"X=1"}}});
    EXPECT_EQ(refs("X=1", "ys"), (Lines{"Y=1", "Y=1"}));
    EXPECT_EQ(refs("Y=1", "xs"), (Lines{"X=1", "X=1"}));
}

TEST_F(BiDirTraps, OneSideToldAtCreation_StandsOnce) {
    modelOfXAndY();
    startWith({});
    client.create(1, "X=1", {{"ys", {"Y=1"}}});
    client.create(1, "Y=1");
    EXPECT_EQ(refs("X=1", "ys"), Lines{"Y=1"});
    EXPECT_EQ(refs("Y=1", "xs"), Lines{"X=1"});
    expectValid(1);
}

TEST_F(BiDirTraps, BothSidesCleared_BothAreEmpty) {
    modelOfXAndY();
    startWith({"X=1", "Y=1"});
    set(1, "X=1", "ys", {"Y=1"});
    client.finish(1);
    set(2, "X=1", "ys", {});
    set(2, "Y=1", "xs", {});
    EXPECT_EQ(refs("X=1", "ys"), Lines());
    EXPECT_EQ(refs("Y=1", "xs"), Lines());
    expectValid(2);
}

TEST_F(BiDirTraps, TwoAssociationsBetweenTheSameObjects_AreKeptApart) {
    stage.model.biDir({"X", "ys"}, {"Y", "xs"});
    stage.model.biDir({"X", "spares"}, {"Y", "users"});
    startWith({"X=1", "Y=1"});
    set(1, "X=1", "ys", {"Y=1"});
    set(1, "X=1", "spares", {"Y=1"});
    EXPECT_EQ(refs("Y=1", "xs"), Lines{"X=1"});
    EXPECT_EQ(refs("Y=1", "users"), Lines{"X=1"});
    set(1, "X=1", "ys", {});
    EXPECT_EQ(refs("Y=1", "xs"), Lines());
    EXPECT_EQ(refs("Y=1", "users"), Lines{"X=1"});
    client.remove(1, "Y=1");
    EXPECT_EQ(refs("X=1", "spares"), Lines());
}

TEST_F(BiDirTraps, ListReplacedByAnOverlappingOne_WritesTheDifferenceOnly) {
    modelOfXAndY();
    startWith({"X=1", "Y=1", "Y=2", "Y=3", "Y=4"});
    set(1, "X=1", "ys", {"Y=1", "Y=2", "Y=3"});
    forget();
    set(1, "X=1", "ys", {"Y=3", "Y=4", "Y=2"});
    EXPECT_EQ(stage.script.texts("VekRouter3.setMoAttribute"),
              joined({write("Y=1", "xs", {}), write("Y=4", "xs", {"X=1"})}));
}

TEST_F(BiDirTraps, SingleReferenceMovedAndMovedBack_LeavesNothingBehind) {
    stage.model.biDir({"X", "y", 0, 1, "ys"}, {"Y", "x", 0, 1, "xs"});
    startWith({"X=1", "Y=1", "Y=2"});
    set(1, "X=1", "y", {"Y=1"});
    client.finish(1);
    set(2, "X=1", "y", {"Y=2"});
    EXPECT_EQ(refs("Y=1", "x"), Lines());
    EXPECT_EQ(refs("Y=2", "x"), Lines{"X=1"});
    set(2, "X=1", "y", {"Y=1"});
    EXPECT_EQ(refs("Y=1", "x"), Lines{"X=1"});
    EXPECT_EQ(refs("Y=2", "x"), Lines());
    expectValid(2);
}

TEST_F(BiDirTraps, ReferenceToItself_HasItsBackPointerInItself) {
    stage.model.biDir({"N", "next"}, {"N", "previous"});
    startWith({"N=1"});
    set(1, "N=1", "next", {"N=1"});
    EXPECT_EQ(refs("N=1", "previous"), Lines{"N=1"});
    expectValid(1);
    set(1, "N=1", "next", {});
    EXPECT_EQ(refs("N=1", "previous"), Lines());
    set(1, "N=1", "previous", {"N=1"});
    EXPECT_EQ(refs("N=1", "next"), Lines{"N=1"});
    client.remove(1, "N=1");
    expectValid(1);
}

TEST_F(BiDirTraps, ObjectCreatedWithAReferenceToItself_HasItsBackPointer) {
    stage.model.biDir({"N", "next"}, {"N", "previous"});
    startWith({});
    client.create(1, "N=1", {{"next", {"N=1"}}});
    EXPECT_EQ(refs("N=1", "previous"), Lines{"N=1"});
}

TEST_F(BiDirTraps, SubtreeDeleted_ReferencesFromOutsideAndInsideAreGone) {
    modelOfXAndY();
    stage.model.moc("P").contains("X").contains("Y");
    startWith({"P=1", "P=1,X=1", "P=1,Y=1", "X=9", "Y=9"});
    set(1, "P=1,X=1", "ys", {"P=1,Y=1", "Y=9"});
    set(1, "X=9", "ys", {"P=1,Y=1", "Y=9"});
    client.finish(1);
    client.remove(2, "P=1");
    EXPECT_EQ(refs("X=9", "ys"), Lines{"Y=9"});
    EXPECT_EQ(refs("Y=9", "xs"), Lines{"X=9"});
    EXPECT_FALSE(stage.world.exists("P=1,X=1"));
    expectValid(2);
}

TEST_F(BiDirTraps, FarSideLeftBelowItsLowerBoundByADelete_IsReportedThere) {
    stage.model.biDir({"X", "ys"}, {"Y", "xs", 1, 2, "things"});
    startWith({"X=1", "Y=1"});
    set(1, "X=1", "ys", {"Y=1"});
    client.finish(1);
    client.remove(2, "X=1");
    EXPECT_EQ(validate(2), OrvValidationFailed);
    EXPECT_EQ(messages(), Lines{"Attribute xs in Y=1 contains 0 things which is not within "
                                "cardinality range (1..2)."});
}

TEST_F(BiDirTraps, SameViolationWrittenAgainAndAgain_IsReportedOnce) {
    modelOfXAndY();
    stage.model.moc("X").reference("ys", "Y", 0, 1);
    startWith({"X=1", "Y=1", "Y=2"});
    set(1, "X=1", "ys", {"Y=1", "Y=2"});
    set(1, "X=1", "ys", {"Y=2", "Y=1"});
    set(1, "X=1", "ys", {"Y=1", "Y=2"});
    EXPECT_EQ(validate(1), OrvValidationFailed);
    EXPECT_FALSE(valid);
    EXPECT_EQ(messages(), Lines{"Multiplicity of attribute ys in X=1 is not in range (0..1)."});
}

TEST_F(BiDirTraps, OneSideSetTheOtherCleared_TheLastWriteWinsOnBothSides) {
    modelOfXAndY();
    startWith({"X=1", "Y=1"});
    set(1, "X=1", "ys", {"Y=1"});
    set(1, "Y=1", "xs", {});
    EXPECT_EQ(refs("X=1", "ys"), Lines());
    EXPECT_EQ(refs("Y=1", "xs"), Lines());
}

TEST_F(BiDirTraps, TargetDeletedAndCreatedAgain_HoldsWhatIsToldAnew) {
    modelOfXAndY();
    startWith({"X=1", "Y=1"});
    set(1, "X=1", "ys", {"Y=1"});
    client.remove(1, "Y=1");
    EXPECT_EQ(refs("X=1", "ys"), Lines());
    client.create(1, "Y=1");
    EXPECT_EQ(refs("Y=1", "xs"), Lines());
    set(1, "X=1", "ys", {"Y=1"});
    EXPECT_EQ(refs("Y=1", "xs"), Lines{"X=1"});
    expectValid(1);
}

TEST_F(BiDirTraps, SourceDeletedBeforeItsTargetIsCreated_LeavesNothingToApply) {
    modelOfXAndY();
    startWith({});
    client.create(1, "X=1", {{"ys", {"Y=1"}}});
    client.remove(1, "X=1");
    client.create(1, "Y=1");
    EXPECT_EQ(refs("Y=1", "xs"), Lines());
    expectValid(1);
}

}
}
