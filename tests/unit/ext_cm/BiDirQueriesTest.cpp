// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "BiDirScene.h"

#include <list>

namespace BiDirTests {
namespace {

using Bidirs = std::list<VekOamSpiMrBiDirAssociationHandle_4T>;

class BiDirQueries : public Scene {
protected:
    VekOamSpiMrAssociationEndHandle_4T endByMoc(const std::string& mocName) {
        VekOamSpiMrAssociationEndHandle_4T end = 0;
        EXPECT_EQ(utils.findAssociationEnd(moc(mocName), association, end), OrvOk);
        return end;
    }

    VekOamSpiMrAssociationEndHandle_4T endByName(const std::string& mocName,
                                                 const std::string& attribute) {
        VekOamSpiMrAssociationEndHandle_4T end = 0;
        EXPECT_EQ(utils.findAssociationEnd(moc(mocName), attribute.c_str(), association, end),
                  OrvOk);
        return end;
    }

    VekOamSpiMrBiDirAssociationHandle_4T association = 0;
};

TEST_F(BiDirQueries, Constructed_HoldsNothing) {
    EXPECT_EQ(utils.moRouter, nullptr);
    EXPECT_EQ(utils.modelRepository, nullptr);
    EXPECT_TRUE(utils.pendingBackPointers.empty());
    EXPECT_TRUE(utils.modifiedBackPointers.empty());
    EXPECT_EQ(validator.moRouter, nullptr);
    EXPECT_EQ(validator.modelRepository, nullptr);
    EXPECT_EQ(validator.threadContext, nullptr);
}

TEST_F(BiDirQueries, Start_LooksUpRouterThenRepository) {
    utils.start();
    EXPECT_EQ(calls(),
              (Lines{"OrvPortal.lookup('VekOamSpiCmRouterService', 'VekOamSpiManagedObject', '3')",
                     "OrvPortal.lookup('VekOamSpiModelRepositoryService', "
                     "'VekOamSpiModelRepository', '4')"}));
    EXPECT_EQ(utils.moRouter, Scripted::vekRouter3Table());
    EXPECT_EQ(utils.modelRepository, Scripted::modelRepositoryTable());
}

TEST_F(BiDirQueries, Start_NothingFound_LogsBothAndStaysNull) {
    stage.missing = {Scripted::Part::VekRouter3, Scripted::Part::ModelRepository};
    utils.start();
    EXPECT_EQ(log.all(), (Lines{"log 4: Interface VekOamSpiManagedObject not found",
                                "log 4: Interface VekOamSpiModelRepository not found"}));
    EXPECT_EQ(utils.moRouter, nullptr);
    EXPECT_EQ(utils.modelRepository, nullptr);
}

TEST_F(BiDirQueries, Stop_ForgetsTheTablesAndKeepsTheStores) {
    modelOfXAndY();
    stage.world.mo("X=1");
    start();
    set(1, "X=1", "ys", {"Y=1"});
    utils.stop();
    EXPECT_EQ(utils.moRouter, nullptr);
    EXPECT_EQ(utils.modelRepository, nullptr);
    EXPECT_EQ(utils.pending(), Lines{"Y=1 <- X=1 (tx 1, xs, ys)"});
    EXPECT_EQ(modified(1), Lines{"X=1.ys"});
}

TEST_F(BiDirQueries, GetBidirsForMoc_NoAssociation_LeavesTheListAlone) {
    stage.model.moc("X");
    start();
    Bidirs bidirs = {42};
    EXPECT_EQ(utils.getBidirsForMoc(moc("X"), bidirs), OrvOk);
    EXPECT_EQ(bidirs, Bidirs{42});
    EXPECT_EQ(log.all(), Lines{"trace: MOC is not part of any BiDirs."});
    EXPECT_EQ(calls(), Lines{"Model.getFirstBiDirAssociation('X')"});
}

TEST_F(BiDirQueries, GetBidirsForMoc_AnyCodeOfTheFirstStep_MeansNone) {
    modelOfXAndY();
    start();
    when("Model.getFirstBiDirAssociation").fails(-77);
    Bidirs bidirs;
    EXPECT_EQ(utils.getBidirsForMoc(moc("X"), bidirs), OrvOk);
    EXPECT_TRUE(bidirs.empty());
    EXPECT_EQ(log.all(), Lines{"trace: MOC is not part of any BiDirs."});
}

TEST_F(BiDirQueries, GetBidirsForMoc_Three_InTheModelsOrderEachFromTheOneBefore) {
    stage.model.biDir({"X", "as"}, {"A", "xs"});
    stage.model.biDir({"B", "xs"}, {"X", "bs"});
    stage.model.biDir({"X", "cs"}, {"C", "xs"});
    start();
    Bidirs bidirs;
    EXPECT_EQ(utils.getBidirsForMoc(moc("X"), bidirs), OrvOk);
    EXPECT_EQ(bidirs, (Bidirs{firstBiDir("A"), firstBiDir("B"), firstBiDir("C")}));
    EXPECT_EQ(calls(), bidirsOf("X", {"X.as<->A.xs", "B.xs<->X.bs", "X.cs<->C.xs"}));
    EXPECT_EQ(log.all(),
              (Lines{"trace: Found BiDir with handle " + std::to_string(firstBiDir("A")),
                     "trace: Found BiDir with handle " + std::to_string(firstBiDir("B")),
                     "trace: Found BiDir with handle " + std::to_string(firstBiDir("C"))}));
}

TEST_F(BiDirQueries, GetBidirsForMoc_ListWithSomething_IsAppendedTo) {
    modelOfXAndY();
    start();
    Bidirs bidirs = {42};
    EXPECT_EQ(utils.getBidirsForMoc(moc("X"), bidirs), OrvOk);
    EXPECT_EQ(bidirs, (Bidirs{42, firstBiDir("X")}));
}

TEST_F(BiDirQueries, GetBidirsForMoc_PositiveCodes_EndTheWalkToo) {
    stage.model.biDir({"X", "as"}, {"A", "xs"});
    stage.model.biDir({"X", "bs"}, {"B", "xs"});
    start();
    when("Model.getNextBiDirAssociation").returns(7);
    Bidirs bidirs;
    EXPECT_EQ(utils.getBidirsForMoc(moc("X"), bidirs), OrvOk);
    EXPECT_EQ(bidirs, Bidirs{firstBiDir("A")});
    when("Model.getFirstBiDirAssociation").returns(7);
    EXPECT_EQ(utils.getBidirsForMoc(moc("X"), bidirs), OrvOk);
    EXPECT_EQ(bidirs, Bidirs{firstBiDir("A")});
}

TEST_F(BiDirQueries, GetBidirsForMoc_FailureOfANextStep_EndsTheWalkSilently) {
    stage.model.biDir({"X", "as"}, {"A", "xs"});
    stage.model.biDir({"X", "bs"}, {"B", "xs"});
    start();
    when("Model.getNextBiDirAssociation").fails(-77);
    Bidirs bidirs;
    EXPECT_EQ(utils.getBidirsForMoc(moc("X"), bidirs), OrvOk);
    EXPECT_EQ(bidirs, Bidirs{firstBiDir("A")});
    EXPECT_EQ(log.all().size(), 1U);
}

TEST_F(BiDirQueries, FindAssociationEnd_ByMoc_FirstIfItLiesThereElseSecond) {
    modelOfXAndY();
    stage.model.moc("Z");
    start();
    association = firstBiDir("X");
    EXPECT_EQ(endByMoc("X"), firstEnd("X"));
    EXPECT_EQ(endByMoc("Y"), secondEnd("X"));
    EXPECT_EQ(endByMoc("Z"), secondEnd("X")) << "a class at neither end gives the second, untested";
    const Lines once = endsOf("X.ys<->Y.xs", "xs@X", "ys@Y");
    EXPECT_EQ(calls(), joined({once, once, once}));
}

TEST_F(BiDirQueries, FindAssociationEnd_ByMocOfASelfAssociation_IsTheFirst) {
    stage.model.biDir({"N", "next"}, {"N", "previous"});
    start();
    association = firstBiDir("N");
    EXPECT_EQ(endByMoc("N"), firstEnd("N"));
}

TEST_F(BiDirQueries, FindAssociationEnd_ByName_IsTheEndThatTheAttributeDoesNotName) {
    modelOfXAndY();
    start();
    association = firstBiDir("X");
    EXPECT_EQ(endByName("X", "ys"), firstEnd("X"));
    EXPECT_EQ(calls(), joined({endsOf("X.ys<->Y.xs", "xs@X", "ys@Y"), nameOfEnd("xs@X")}));
    EXPECT_EQ(log.all(), Lines{"trace: First association end attribute name is xs"});
    EXPECT_EQ(endByName("Y", "xs"), secondEnd("X"));
}

TEST_F(BiDirQueries, FindAssociationEnd_ByNameOfAnotherAttribute_IsTheEndAtTheClass) {
    modelOfXAndY();
    stage.model.moc("Z");
    start();
    association = firstBiDir("X");
    EXPECT_EQ(endByName("X", "others"), firstEnd("X"));
    EXPECT_EQ(endByName("Y", "others"), secondEnd("X"));
    EXPECT_EQ(endByName("Z", "others"), secondEnd("X")) << "a class at neither end";
}

// The first end bears the name of the attribute that points at it.
TEST_F(BiDirQueries, FindAssociationEnd_ByNameOfASelfAssociation_IsTheOtherEnd) {
    stage.model.biDir({"N", "b"}, {"N", "a"});
    start();
    association = firstBiDir("N");
    ASSERT_EQ(stage.model.endText(firstEnd("N"), 0), std::string("a"));
    EXPECT_EQ(endByName("N", "a"), secondEnd("N"));
    EXPECT_EQ(endByName("N", "b"), firstEnd("N"));
}

// A blind spot that stays: with one name on both ends the name cannot tell which end lies here.
TEST_F(BiDirQueries, FindAssociationEnd_ByNameWithOneNameOnBothEnds_IsTheSecondEvenAtTheFirst) {
    stage.model.biDir({"X", "peers"}, {"Y", "peers"});
    start();
    association = firstBiDir("X");
    EXPECT_EQ(endByName("X", "peers"), secondEnd("X"));
    EXPECT_EQ(endByName("Y", "peers"), secondEnd("X"));
}

TEST_F(BiDirQueries, FindAssociationEnd_FailingLookups_AreIgnoredAndNeverFail) {
    modelOfXAndY();
    start();
    association = firstBiDir("X");
    when("Model.getFirstEnd").fails(-5);
    when("Model.getSecondEnd").fails(-5);
    when("Model.getEndMoc").fails(-5);
    when("Model.getEndGeneralProperties").fails(-5);
    when("Model.getGeneralStringProperty").fails(-5);
    EXPECT_EQ(endByMoc("X"), 0U);
    EXPECT_EQ(endByName("X", "ys"), 0U);
    EXPECT_EQ(log.all(), Lines{"trace: First association end attribute name is "});
}

TEST_F(BiDirQueries, FindAssociationEnd_FirstEndWithoutName_IsTheFirst) {
    modelOfXAndY();
    start();
    association = firstBiDir("X");
    when("Model.getGeneralStringProperty").fails(-5);
    EXPECT_EQ(endByName("X", "ys"), firstEnd("X"));
}

TEST_F(BiDirQueries, StartsWith_ComparesBytesAndNotSteps) {
    EXPECT_TRUE(Utils::startsWith("A=1,B=20", "A=1,B=2"));
    EXPECT_TRUE(Utils::startsWith("A=1", "A=1"));
    EXPECT_TRUE(Utils::startsWith("A=1", ""));
    EXPECT_TRUE(Utils::startsWith("", ""));
    EXPECT_FALSE(Utils::startsWith("A=1", "A=1,B=2"));
    EXPECT_FALSE(Utils::startsWith("A=1", "B"));
    EXPECT_FALSE(Utils::startsWith("", "A"));
}

}
}
