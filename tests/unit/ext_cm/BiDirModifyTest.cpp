// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "BiDirScene.h"

#include <stdexcept>

namespace BiDirTests {
namespace {

const char* const association = "X.ys<->Y.xs";

class BiDirModify : public Scene {};

TEST_F(BiDirModify, AddedAndRemoved_BothFarSidesFollowAndAllThreeAreRecorded) {
    modelOfXAndY();
    stage.world.mo("X=1").with("ys", Scripted::refs({"Y=1", "Y=2"}));
    stage.world.mo("Y=1").with("xs", Scripted::refs({"X=1"}));
    stage.world.mo("Y=2").with("xs", Scripted::refs({"X=1"}));
    stage.world.mo("Y=3");
    start();
    EXPECT_EQ(modify(1, "X=1", "ys", {"Y=2", "Y=3"}), OrvOk);
    EXPECT_EQ(refs("Y=1", "xs"), Lines());
    EXPECT_EQ(refs("Y=2", "xs"), Lines{"X=1"});
    EXPECT_EQ(refs("Y=3", "xs"), Lines{"X=1"});
    EXPECT_EQ(refs("X=1", "ys"), (Lines{"Y=1", "Y=2"})) << "the write itself is the caller's";
    EXPECT_EQ(modified(1), (Lines{"X=1.ys", "Y=1.xs", "Y=3.xs"}));
    EXPECT_EQ(log.of("entry"), Lines{"entry:  >> dn = X=1, attributeName = ys"});
}

TEST_F(BiDirModify, NewMo_HasNoOldValueWhateverItHolds) {
    modelOfXAndY();
    stage.world.mo("X=1").with("ys", Scripted::refs({"Y=1", "Y=9"}));
    stage.world.mo("Y=1");
    start();
    EXPECT_EQ(modify(1, "X=1", "ys", {"Y=1"}, true), OrvOk);
    EXPECT_EQ(refs("Y=1", "xs"), Lines{"X=1"});
    for (const std::string& call : calls()) {
        EXPECT_EQ(call.find("getMoAttribute(1, 'X=1'"), std::string::npos) << call;
    }
}

TEST_F(BiDirModify, SameListAgain_EditsNothingAndIsStillRecorded) {
    modelOfXAndY();
    stage.world.mo("X=1").with("ys", Scripted::refs({"Y=1", "Y=2"}));
    stage.world.mo("Y=1").with("xs", Scripted::refs({"X=1"}));
    stage.world.mo("Y=2").with("xs", Scripted::refs({"X=1"}));
    start();
    EXPECT_EQ(modify(1, "X=1", "ys", {"Y=2", "Y=1"}), OrvOk);
    EXPECT_EQ(stage.script.texts("VekRouter3"), read("X=1", "ys"));
    EXPECT_EQ(modified(1), Lines{"X=1.ys"});
}

TEST_F(BiDirModify, AttributeOfNoAssociation_IsOnlyRecorded) {
    modelOfXAndY();
    stage.model.moc("X").reference("others", "Y");
    stage.world.mo("X=1");
    stage.world.mo("Y=1");
    start();
    EXPECT_EQ(modify(1, "X=1", "others", {"Y=1"}), OrvOk);
    EXPECT_EQ(stage.script.texts("VekRouter3"), read("X=1", "others"));
    EXPECT_EQ(modified(1), Lines{"X=1.others"});
}

TEST_F(BiDirModify, ClassWithoutAssociations_IsNeitherReadNorRecorded) {
    stage.model.moc("X").reference("others", "Y");
    stage.model.moc("Y");
    stage.world.mo("X=1");
    start();
    EXPECT_EQ(modify(1, "X=1", "others", {"Y=1"}), OrvOk);
    EXPECT_EQ(calls(), joined({mocOf("X=1"), bidirsOf("X", {})}));
    EXPECT_EQ(modified(1), Lines());
    EXPECT_TRUE(utils.modifiedBackPointers.empty());
}

TEST_F(BiDirModify, SelfAssociation_EachAttributeHasTheOtherForBackPointer) {
    stage.model.biDir({"N", "b"}, {"N", "a"}); // first end "a", second end "b"
    stage.world.mo("N=1");
    stage.world.mo("N=2");
    stage.world.mo("N=3");
    start();
    set(1, "N=1", "b", {"N=2"});
    EXPECT_EQ(refs("N=2", "a"), Lines{"N=1"});
    EXPECT_EQ(refs("N=2", "b"), Lines());
    set(1, "N=1", "a", {"N=3"});
    EXPECT_EQ(refs("N=3", "b"), Lines{"N=1"});
    EXPECT_EQ(refs("N=3", "a"), Lines());
}

TEST_F(BiDirModify, TargetNotThere_IsQueuedAndWrittenWhenItIsCreated) {
    modelOfXAndY();
    stage.world.mo("X=1");
    start();
    set(1, "X=1", "ys", {"Y=1"});
    EXPECT_EQ(utils.pending(), Lines{"Y=1 <- X=1 (tx 1, xs, ys)"});
    stage.world.mo("Y=1");
    EXPECT_EQ(utils.updatePendingBackPointer(1, "Y=1", "id"), OrvOk);
    EXPECT_EQ(refs("Y=1", "xs"), Lines{"X=1"});
    EXPECT_EQ(utils.pending(), Lines());
}

TEST_F(BiDirModify, ReferenceOfAnotherClass_IsPassedOverSilently) {
    modelOfXAndY();
    stage.model.moc("Z");
    stage.world.mo("X=1");
    stage.world.mo("Z=1");
    start();
    EXPECT_EQ(modify(1, "X=1", "ys", {"Z=1"}), OrvOk);
    EXPECT_EQ(stage.script.texts("VekRouter3"), read("X=1", "ys"));
    EXPECT_EQ(log.of("log"), Lines());
    EXPECT_EQ(modified(1), Lines{"X=1.ys"});
}

TEST_F(BiDirModify, ClassWithTheHandleZero_IsAClassLikeAnyOther) {
    modelOfXAndY();
    stage.world.mo("X=1");
    start();
    when("Model.getMocFromDn").on("'Y=1'").answers<unsigned long long>([](unsigned long long& out) {
        out = 0;
        return OrvOk;
    });
    EXPECT_EQ(modify(1, "X=1", "ys", {"Y=1"}), OrvOk);
    EXPECT_EQ(log.of("log"), Lines());
    EXPECT_EQ(stage.script.texts("VekRouter3"), read("X=1", "ys")) << "not the far end's class";
    EXPECT_EQ(modified(1), Lines{"X=1.ys"});
}

// The code is that of the last class lookup, so the failure of an earlier one does not show.
TEST_F(BiDirModify, ReferencesWithoutClass_AreLoggedAndOnlyTheLastShows) {
    modelOfXAndY();
    stage.world.mo("X=1");
    stage.world.mo("Y=1");
    start();
    EXPECT_EQ(modify(1, "X=1", "ys", {"Q=1", "Y=1"}), OrvOk);
    EXPECT_EQ(log.of("log"), Lines{"log 3: Failed to look up MOC from DN. dn=Q=1, ret=-2"});
    EXPECT_EQ(refs("Y=1", "xs"), Lines{"X=1"});

    stage.world.set("X=1", "ys", Scripted::refs({"Y=1"}));
    forget();
    EXPECT_EQ(modify(1, "X=1", "ys", {"Y=1", "Q=2"}), -2);
    EXPECT_EQ(log.of("log"), Lines{"log 3: Failed to look up MOC from DN. dn=Q=2, ret=-2"});
}

TEST_F(BiDirModify, OnlyARemovedReferenceWithoutClass_ItsCodeShows) {
    modelOfXAndY();
    stage.world.mo("X=1").with("ys", Scripted::refs({"Q=1"}));
    start();
    EXPECT_EQ(modify(1, "X=1", "ys", {}), -2);
    EXPECT_EQ(log.of("log"), Lines{"log 3: Failed to look up MOC from DN. dn=Q=1, ret=-2"});
    EXPECT_EQ(modified(1), Lines{"X=1.ys"});
}

// An association that is not the attribute's looks at no reference, and changes no code.
TEST_F(BiDirModify, ReferenceWithoutClassAndAnotherAssociationBehind_TheCodeStays) {
    modelOfXAndY();
    stage.model.biDir({"X", "zs"}, {"Z", "xs"});
    stage.world.mo("X=1");
    start();
    EXPECT_EQ(modify(1, "X=1", "ys", {"Q=1"}), -2);
    EXPECT_EQ(modify(1, "X=1", "zs", {"Q=1"}), -2);
}

TEST_F(BiDirModify, PositiveCodes_AreFailuresLikeAnyOther) {
    modelOfXAndY();
    stage.world.mo("X=1");
    stage.world.mo("Y=1");
    start();
    when("Model.getMocFromDn").on("'Y=1'").returns(7);
    EXPECT_EQ(modify(1, "X=1", "ys", {"Y=1"}), 7);
    EXPECT_EQ(refs("Y=1", "xs"), Lines());
    when("VekRouter3.getMoAttribute").on("'X=1'").returns(8);
    EXPECT_EQ(modify(2, "X=1", "ys", {"Y=1"}), 8);
    when("Model.getMocFromDn").on("'X=1'").returns(9);
    EXPECT_EQ(modify(2, "X=1", "ys", {"Y=1"}), 9);
    EXPECT_EQ(modified(2), Lines());
    EXPECT_EQ(log.of("log"), (Lines{"log 3: Failed to look up MOC from DN. dn=Y=1, ret=7",
                                    "log 3: Failed to look up MOC from DN. dn=X=1, ret=9"}));
}

TEST_F(BiDirModify, RemovedReferenceOfAnotherClass_IsPassedOverSilently) {
    modelOfXAndY();
    stage.model.biDir({"X", "zs"}, {"Z", "xs"});
    stage.world.mo("X=1").with("ys", Scripted::refs({"Z=1"}));
    stage.world.mo("Z=1").with("xs", Scripted::refs({"X=1"}));
    start();
    EXPECT_EQ(modify(1, "X=1", "ys", {}), OrvOk);
    EXPECT_EQ(stage.script.texts("VekRouter3"), read("X=1", "ys"));
    EXPECT_EQ(refs("Z=1", "xs"), Lines{"X=1"});
    EXPECT_EQ(log.of("log"), Lines());
}

TEST_F(BiDirModify, RemovalsBeforeAdditions_EachInTheOrderOfItsList) {
    modelOfXAndY();
    stage.world.mo("X=1").with("ys", Scripted::refs({"Y=9", "Y=8"}));
    for (const char* dn : {"Y=1", "Y=2", "Y=8", "Y=9"}) {
        stage.world.mo(dn);
    }
    start();
    modify(1, "X=1", "ys", {"Y=2", "Y=1"});
    EXPECT_EQ(stage.script.texts("VekRouter3.existsMo"),
              joined({exists("Y=9"), exists("Y=8"), exists("Y=2"), exists("Y=1")}));
}

TEST_F(BiDirModify, TwoAssociationsThroughOneAttribute_EachForItsOwnClass) {
    stage.model.moc("X").reference("others", "ManagedObject");
    stage.model.biDir({"X", "others"}, {"Y", "xs"});
    stage.model.biDir({"X", "others"}, {"Z", "xs"});
    stage.world.mo("X=1");
    stage.world.mo("Y=1");
    stage.world.mo("Z=1");
    start();
    EXPECT_EQ(modify(1, "X=1", "others", {"Z=1", "Y=1"}), OrvOk);
    EXPECT_EQ(stage.script.texts("VekRouter3.setMoAttribute"),
              joined({write("Y=1", "xs", {"X=1"}), write("Z=1", "xs", {"X=1"})}));
}

// As far as the component can tell this is one association for each of the two: both are followed.
TEST_F(BiDirModify, TwoAssociationsThroughOneAttributeToOneClass_AreBothFollowed) {
    stage.model.biDir({"X", "ys"}, {"Y", "xs"});
    stage.model.biDir({"X", "ys"}, {"Y", "zs"});
    stage.world.mo("X=1");
    stage.world.mo("Y=1");
    start();
    modify(1, "X=1", "ys", {"Y=1"});
    EXPECT_EQ(refs("Y=1", "xs"), Lines{"X=1"});
    EXPECT_EQ(refs("Y=1", "zs"), Lines{"X=1"});
}

TEST_F(BiDirModify, WithoutRepository_LogsAndChangesNothing) {
    modelOfXAndY();
    stage.missing = {Scripted::Part::ModelRepository};
    stage.world.mo("X=1");
    start();
    EXPECT_EQ(modify(1, "X=1", "ys", {"Y=1"}), OrvFailure);
    EXPECT_EQ(log.of("log"), Lines{"log 3: VekOamSpiModelRepository_4T pointer is null."});
    EXPECT_EQ(calls(), Lines());
    EXPECT_EQ(modified(1), Lines());
}

TEST_F(BiDirModify, WithoutRouter_FailsLikeAReadThatFails) {
    modelOfXAndY();
    stage.missing = {Scripted::Part::VekRouter3};
    start();
    EXPECT_EQ(modify(1, "X=1", "ys", {"Y=1"}), OrvFailure);
    EXPECT_EQ(modified(1), Lines());
}

// The blind spot in finding an end, seen from here: with one name on both ends, a write on the
// first end's side takes that end for the far one, finds no target of its own class and writes no
// back-pointer; a write on the other side is followed.
TEST_F(BiDirModify, OneNameOnBothEnds_IsFollowedFromTheSecondEndsSideOnly) {
    stage.model.biDir({"X", "peers"}, {"Y", "peers"});
    stage.world.mo("X=1");
    stage.world.mo("Y=1");
    start();
    set(1, "X=1", "peers", {"Y=1"});
    EXPECT_EQ(refs("Y=1", "peers"), Lines());
    set(1, "X=1", "peers", {});
    set(1, "Y=1", "peers", {"X=1"});
    EXPECT_EQ(refs("X=1", "peers"), Lines{"Y=1"});
}

// ---------------------------------------------------------------------------------------------
// Every call of the host, in the ordinary run and failing in turn.

const Lines near = joined({endsOf(association, "xs@X", "ys@Y"), nameOfEnd("xs@X")});
const Lines farEnd = {"Model.getFirstEnd('X.ys<->Y.xs')", "Model.getSecondEnd('X.ys<->Y.xs')"};
const Lines farFacts = joined({nameOfEnd("ys@Y"), {"Model.getEndMoc('ys@Y')"}});
const Lines look = joined({mocOf("X=1"), bidirsOf("X", {association})});
const Lines readX = read("X=1", "ys");
const Lines releaseX = release("X=1.ys");
const Lines begin = joined({look, readX, near, farEnd, farFacts});
const Lines removeY1 = joined({exists("Y=1"), nameOfEnd("xs@X"), read("Y=1", "xs"),
                               write("Y=1", "xs", {}), release("Y=1.xs")});
const Lines addY2 = joined({nameOfEnd("xs@X"), exists("Y=2"), read("Y=2", "xs"),
                            write("Y=2", "xs", {"X=1"}), release("Y=2.xs")});
const Lines ordinary = joined({begin, mocOf("Y=1"), removeY1, mocOf("Y=2"), addY2, releaseX});
const Lines allRecorded = {"X=1.ys", "Y=1.xs", "Y=2.xs"};
const Lines onlyTheSource = {"X=1.ys"};

/// One call that fails with -5, and all that follows from it.
struct Failure {
    friend std::ostream& operator<<(std::ostream& out, const Failure& failure) {
        return out << failure.name;
    }

    const char* name;
    std::string call; ///< the function
    int number;       ///< which of its calls
    Lines calls;
    OrvReturnT code;
    Lines recorded;
    Lines told;    ///< what is logged, and the traces of failures
    Lines pending; ///< what waits afterwards
};

class BiDirModifyFailure : public Scene, public ::testing::WithParamInterface<Failure> {
protected:
    BiDirModifyFailure() {
        modelOfXAndY();
        stage.world.mo("X=1").with("ys", Scripted::refs({"Y=1"}));
        stage.world.mo("Y=1").with("xs", Scripted::refs({"X=1"}));
        stage.world.mo("Y=2");
        start();
    }

    Lines told() const {
        return joined({log.of("log"), log.of("trace: Error"), log.of("trace: Failed")});
    }
};

TEST_F(BiDirModifyFailure, None_OrdinaryRun) {
    EXPECT_EQ(modify(1, "X=1", "ys", {"Y=2"}), OrvOk);
    EXPECT_EQ(block(calls()), block(ordinary));
    EXPECT_EQ(modified(1), allRecorded);
    EXPECT_EQ(told(), Lines());
}

TEST_P(BiDirModifyFailure, OneCallFails_TheRestFollowsAsTold) {
    const Failure& failure = GetParam();
    when(failure.call).nth(failure.number).fails(-5);
    EXPECT_EQ(modify(1, "X=1", "ys", {"Y=2"}), failure.code);
    EXPECT_EQ(block(calls()), block(failure.calls));
    EXPECT_EQ(modified(1), failure.recorded);
    EXPECT_EQ(told(), failure.told);
    EXPECT_EQ(utils.pending(), failure.pending);
}

// The association is not taken for the attribute's: neither value is looked at.
Lines notFollowed(const Lines& questions) {
    return joined({look, readX, questions, releaseX});
}

const Failure failures[] = {
    {"ClassOfTheMo",
     "Model.getMocFromDn",
     1,
     mocOf("X=1"),
     -5,
     {},
     {"log 3: Failed to look up MOC from DN. dn=X=1, ret=-5"},
     {}},
    {"FirstAssociation",
     "Model.getFirstBiDirAssociation",
     1,
     joined({mocOf("X=1"), bidirsOf("X", {})}),
     OrvOk,
     {},
     {},
     {}},
    {"NextAssociation_Ignored",
     "Model.getNextBiDirAssociation",
     1,
     ordinary,
     OrvOk,
     allRecorded,
     {},
     {}},
    {"OldValue",
     "VekRouter3.getMoAttribute",
     1,
     joined({look, readX}),
     -5,
     {},
     {"trace: Failed to retrieve ys value from X=1, return code = -5"},
     {}},
    {"FirstEndOfTheNearEnd",
     "Model.getFirstEnd",
     1,
     notFollowed(joined({endsOf(association, "0", "ys@Y"),
                         nameOfEnd("0"),
                         {"Model.getFirstEnd('X.ys<->Y.xs')"},
                         nameOfEnd("xs@X"),
                         {"Model.getEndMoc('xs@X')"}})),
     OrvOk,
     onlyTheSource,
     {},
     {}},
    {"SecondEndOfTheNearEnd_Ignored",
     "Model.getSecondEnd",
     1,
     joined({look, readX, endsOf(association, "xs@X", "0"), nameOfEnd("xs@X"), farEnd, farFacts,
             mocOf("Y=1"), removeY1, mocOf("Y=2"), addY2, releaseX}),
     OrvOk,
     allRecorded,
     {},
     {}},
    {"ClassOfTheFirstEnd",
     "Model.getEndMoc",
     1,
     notFollowed(joined({near,
                         {"Model.getFirstEnd('X.ys<->Y.xs')"},
                         nameOfEnd("xs@X"),
                         {"Model.getEndMoc('xs@X')"}})),
     OrvOk,
     onlyTheSource,
     {},
     {}},
    {"ClassOfTheSecondEnd_Ignored", "Model.getEndMoc", 2, ordinary, OrvOk, allRecorded, {}, {}},
    {"PropertiesOfTheFirstEnd_Ignored",
     "Model.getEndGeneralProperties",
     1,
     joined({look,
             readX,
             endsOf(association, "xs@X", "ys@Y"),
             {"Model.getEndGeneralProperties('xs@X')", "Model.getGeneralStringProperty('0', 0)"},
             farEnd,
             farFacts,
             mocOf("Y=1"),
             removeY1,
             mocOf("Y=2"),
             addY2,
             releaseX}),
     OrvOk,
     allRecorded,
     {},
     {}},
    {"NameOfTheFirstEnd_Ignored",
     "Model.getGeneralStringProperty",
     1,
     ordinary,
     OrvOk,
     allRecorded,
     {},
     {}},
    {"FirstEndOfTheFarEnd",
     "Model.getFirstEnd",
     2,
     notFollowed(joined(
         {near, {"Model.getFirstEnd('X.ys<->Y.xs')"}, nameOfEnd("0"), {"Model.getEndMoc('0')"}})),
     OrvOk,
     onlyTheSource,
     {},
     {}},
    {"SecondEndOfTheFarEnd",
     "Model.getSecondEnd",
     2,
     notFollowed(joined({near, farEnd, nameOfEnd("0"), {"Model.getEndMoc('0')"}})),
     OrvOk,
     onlyTheSource,
     {},
     {}},
    {"PropertiesOfTheFarEnd",
     "Model.getEndGeneralProperties",
     2,
     notFollowed(joined({near,
                         farEnd,
                         {"Model.getEndGeneralProperties('ys@Y')",
                          "Model.getGeneralStringProperty('0', 0)", "Model.getEndMoc('ys@Y')"}})),
     OrvOk,
     onlyTheSource,
     {},
     {}},
    {"NameOfTheFarEnd",
     "Model.getGeneralStringProperty",
     2,
     notFollowed(joined({near, farEnd, farFacts})),
     OrvOk,
     onlyTheSource,
     {},
     {}},
    {"ClassOfTheFarEnd",
     "Model.getEndMoc",
     3,
     joined({begin, mocOf("Y=1"), mocOf("Y=2"), releaseX}),
     OrvOk,
     onlyTheSource,
     {},
     {}},
    {"ClassOfTheRemovedTarget",
     "Model.getMocFromDn",
     2,
     joined({begin, mocOf("Y=1"), mocOf("Y=2"), addY2, releaseX}),
     OrvOk,
     {"X=1.ys", "Y=2.xs"},
     {"log 3: Failed to look up MOC from DN. dn=Y=1, ret=-5"},
     {}},
    {"ExistenceOfTheRemovedTarget",
     "VekRouter3.existsMo",
     1,
     joined({begin, mocOf("Y=1"), exists("Y=1"), mocOf("Y=2"), addY2, releaseX}),
     OrvOk,
     {"X=1.ys", "Y=2.xs"},
     {},
     {}},
    {"PropertiesForTheRemoval",
     "Model.getEndGeneralProperties",
     3,
     joined({begin,
             mocOf("Y=1"),
             exists("Y=1"),
             {"Model.getEndGeneralProperties('xs@X')", "Model.getGeneralStringProperty('0', 0)"},
             read("Y=1", ""),
             mocOf("Y=2"),
             addY2,
             releaseX}),
     OrvOk,
     {"X=1.ys", "Y=2.xs"},
     {"trace: Error code -2 received when reading attribute  in Y=1."},
     {}},
    {"NameForTheRemoval",
     "Model.getGeneralStringProperty",
     3,
     joined({begin, mocOf("Y=1"), exists("Y=1"), nameOfEnd("xs@X"), read("Y=1", ""), mocOf("Y=2"),
             addY2, releaseX}),
     OrvOk,
     {"X=1.ys", "Y=2.xs"},
     {"trace: Error code -2 received when reading attribute  in Y=1."},
     {}},
    {"ReadForTheRemoval",
     "VekRouter3.getMoAttribute",
     2,
     joined({begin, mocOf("Y=1"), exists("Y=1"), nameOfEnd("xs@X"), read("Y=1", "xs"), mocOf("Y=2"),
             addY2, releaseX}),
     OrvOk,
     {"X=1.ys", "Y=2.xs"},
     {"trace: Error code -5 received when reading attribute xs in Y=1."},
     {}},
    {"WriteOfTheRemoval",
     "VekRouter3.setMoAttribute",
     1,
     ordinary,
     OrvOk,
     {"X=1.ys", "Y=2.xs"},
     {"trace: Error code -5 received when setting attribute xs in Y=1."},
     {}},
    {"ClassOfTheAddedTarget",
     "Model.getMocFromDn",
     3,
     joined({begin, mocOf("Y=1"), removeY1, mocOf("Y=2"), releaseX}),
     -5,
     {"X=1.ys", "Y=1.xs"},
     {"log 3: Failed to look up MOC from DN. dn=Y=2, ret=-5"},
     {}},
    {"PropertiesForTheAddition",
     "Model.getEndGeneralProperties",
     4,
     joined({begin,
             mocOf("Y=1"),
             removeY1,
             mocOf("Y=2"),
             {"Model.getEndGeneralProperties('xs@X')", "Model.getGeneralStringProperty('0', 0)"},
             exists("Y=2"),
             read("Y=2", ""),
             releaseX}),
     OrvOk,
     {"X=1.ys", "Y=1.xs"},
     {"trace: Error code -2 received when reading attribute  in Y=2."},
     {}},
    {"NameForTheAddition",
     "Model.getGeneralStringProperty",
     4,
     joined({begin, mocOf("Y=1"), removeY1, mocOf("Y=2"), nameOfEnd("xs@X"), exists("Y=2"),
             read("Y=2", ""), releaseX}),
     OrvOk,
     {"X=1.ys", "Y=1.xs"},
     {"trace: Error code -2 received when reading attribute  in Y=2."},
     {}},
    {"ExistenceOfTheAddedTarget",
     "VekRouter3.existsMo",
     2,
     joined(
         {begin, mocOf("Y=1"), removeY1, mocOf("Y=2"), nameOfEnd("xs@X"), exists("Y=2"), releaseX}),
     OrvOk,
     {"X=1.ys", "Y=1.xs"},
     {},
     {"Y=2 <- X=1 (tx 1, xs, ys)"}},
    {"ReadForTheAddition",
     "VekRouter3.getMoAttribute",
     3,
     joined({begin, mocOf("Y=1"), removeY1, mocOf("Y=2"), nameOfEnd("xs@X"), exists("Y=2"),
             read("Y=2", "xs"), releaseX}),
     OrvOk,
     {"X=1.ys", "Y=1.xs"},
     {"trace: Error code -5 received when reading attribute xs in Y=2."},
     {}},
    {"WriteOfTheAddition",
     "VekRouter3.setMoAttribute",
     2,
     ordinary,
     OrvOk,
     {"X=1.ys", "Y=1.xs"},
     {"trace: Error code -5 received when setting attribute xs in Y=2."},
     {}},
};

INSTANTIATE_TEST_SUITE_P(EachCall, BiDirModifyFailure, ::testing::ValuesIn(failures),
                         [](const auto& each) { return std::string(each.param.name); });

TEST_F(BiDirModifyFailure, OldValueFailsWithAResult_IsReleased) {
    when("VekRouter3.getMoAttribute").once().returns(-5);
    EXPECT_EQ(modify(1, "X=1", "ys", {"Y=2"}), -5);
    EXPECT_EQ(calls(), joined({look, readX, releaseX}));
}

// The old value starts as an empty one of this component's own. A producer that leaves a function
// to release, but no container, is not handed that.
TEST_F(BiDirModifyFailure, OldValueLeavesAReleaseAndNoContainer_NothingIsReleased) {
    static int released = 0;
    released = 0;
    when("VekRouter3.getMoAttribute")
        .on("'X=1'")
        .answers<OrvMoAttributeValueResult_3>([](OrvMoAttributeValueResult_3& out) {
            EXPECT_EQ(out.release, nullptr);
            EXPECT_TRUE(out.container != nullptr && out.container->count == 0);
            out.release = [](OrvMoAttributeValueContainer_3*) { ++released; };
            return OrvOk;
        });
    EXPECT_EQ(modify(1, "X=1", "ys", {"Y=2"}), OrvOk);
    EXPECT_EQ(released, 0);
    EXPECT_EQ(refs("Y=2", "xs"), Lines{"X=1"});
    EXPECT_EQ(refs("Y=1", "xs"), Lines{"X=1"}) << "the old value counts as empty";
}

TEST_F(BiDirModifyFailure, EditThrows_ReleasesTheOldValueAndLetsGoOfTheLock) {
    when("VekRouter3.setMoAttribute").throws(std::runtime_error("no"));
    EXPECT_THROW(modify(1, "X=1", "ys", {"Y=2"}), std::runtime_error);
    EXPECT_EQ(stage.results.complaints(), Lines());
    EXPECT_TRUE(utils.getModifiedBackPointers(1).empty());
}

}
}
