// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "BiDirScene.h"

#include "Portal.h"

namespace BiDirTests {
namespace {

const char* const association = "X.ys<->Y.xs";

class BiDirDelete : public Scene {
protected:
    OrvReturnT remove(const std::string& dn) {
        return utils.updateBackPointersForDelete(1, dn.c_str());
    }

    Lines readOrder() const {
        Lines order;
        for (const Scripted::Call& call : stage.script.calls("VekRouter3.getMoAttribute")) {
            order.push_back(call.arguments[1].text + call.arguments[2].text);
        }
        return order;
    }
};

/// What the helper library asks the router for, to list the children.
Lines childrenOf(const std::string& dn, const std::string& className, int count,
                 const std::string& iterator) {
    Lines lines = {"VekRouter3.newMoIterator(1, '" + dn + "', '" + className + "')"};
    for (int i = 0; i <= count; ++i) {
        lines.push_back("VekRouter3.nextMo(" + iterator + ")");
    }
    lines.push_back("VekRouter3.finalizeMoIterator(" + iterator + ")");
    return lines;
}

TEST_F(BiDirDelete, ClassWithoutContainmentAndAssociation_IsLookedUpAndNotRead) {
    stage.model.moc("P");
    stage.world.mo("P=1");
    start();
    EXPECT_EQ(remove("P=1"), OrvOk);
    EXPECT_EQ(
        calls(),
        joined(
            {mocOf("P=1"), {"Model.getFirstContainment('P')"}, mocOf("P=1"), bidirsOf("P", {})}));
}

TEST_F(BiDirDelete, Subtree_ChildrenFirstInTheOrderOfModelAndRouter) {
    modelOfXAndY();
    stage.model.biDir({"P", "ys"}, {"Y", "ps"});
    stage.model.biDir({"C", "ys"}, {"Y", "cs"});
    stage.model.moc("P").contains("X").contains("C");
    stage.world.mo("P=1");
    stage.world.mo("P=1,C=5");
    stage.world.mo("P=1,X=9");
    stage.world.mo("P=1,X=2");
    start();
    EXPECT_EQ(remove("P=1"), OrvOk);
    EXPECT_EQ(readOrder(), (Lines{"'P=1,X=9''ys'", "'P=1,X=2''ys'", "'P=1,C=5''ys'", "'P=1''ys'"}));
}

TEST_F(BiDirDelete, Subtree_EveryFarSideIsCleaned) {
    modelOfXAndY();
    stage.model.moc("P").contains("X");
    stage.world.mo("P=1");
    stage.world.mo("P=1,X=1").with("ys", Scripted::refs({"Y=1", "Y=2"}));
    stage.world.mo("P=1,X=2").with("ys", Scripted::refs({"Y=2"}));
    stage.world.mo("Y=1").with("xs", Scripted::refs({"P=1,X=1", "X=7"}));
    stage.world.mo("Y=2").with("xs", Scripted::refs({"P=1,X=1", "P=1,X=2"}));
    start();
    EXPECT_EQ(remove("P=1"), OrvOk);
    EXPECT_EQ(refs("Y=1", "xs"), Lines{"X=7"});
    EXPECT_EQ(refs("Y=2", "xs"), Lines());
    EXPECT_EQ(modified(1), (Lines{"Y=1.xs", "Y=2.xs"}));
}

TEST_F(BiDirDelete, SelfAssociation_FirstTheAttributeOfTheSecondEndThenTheOther) {
    stage.model.biDir({"N", "b"}, {"N", "a"}); // first end "a", second end "b"
    stage.world.mo("N=1").with("b", Scripted::refs({"N=2"})).with("a", Scripted::refs({"N=3"}));
    stage.world.mo("N=2").with("a", Scripted::refs({"N=1"}));
    stage.world.mo("N=3").with("b", Scripted::refs({"N=1"}));
    start();
    EXPECT_EQ(remove("N=1"), OrvOk);
    EXPECT_EQ(readOrder(), (Lines{"'N=1''b'", "'N=2''a'", "'N=1''a'", "'N=3''b'"}));
    EXPECT_EQ(refs("N=2", "a"), Lines());
    EXPECT_EQ(refs("N=3", "b"), Lines());
}

TEST_F(BiDirDelete, SelfAssociationWithTheFirstEndKept_OnlyTheOtherPassCleans) {
    stage.model.biDir({"N", "b", 0, 1000, "references", true}, {"N", "a"});
    stage.world.mo("N=1").with("b", Scripted::refs({"N=2"})).with("a", Scripted::refs({"N=3"}));
    stage.world.mo("N=2").with("a", Scripted::refs({"N=1"}));
    stage.world.mo("N=3").with("b", Scripted::refs({"N=1"}));
    start();
    remove("N=1");
    EXPECT_EQ(readOrder(), (Lines{"'N=1''a'", "'N=3''b'"}))
        << "the ends change places also after the pass that the flag cut short";
    EXPECT_EQ(refs("N=2", "a"), Lines{"N=1"});
    EXPECT_EQ(refs("N=3", "b"), Lines());
}

TEST_F(BiDirDelete, SelfAssociationWithTheSecondEndKept_OnlyTheFirstPassCleans) {
    stage.model.biDir({"N", "b"}, {"N", "a", 0, 1000, "references", true});
    stage.world.mo("N=1").with("b", Scripted::refs({"N=2"})).with("a", Scripted::refs({"N=3"}));
    stage.world.mo("N=2").with("a", Scripted::refs({"N=1"}));
    stage.world.mo("N=3").with("b", Scripted::refs({"N=1"}));
    start();
    remove("N=1");
    EXPECT_EQ(refs("N=2", "a"), Lines());
    EXPECT_EQ(refs("N=3", "b"), Lines{"N=1"});
}

TEST_F(BiDirDelete, SelfAssociationWhoseFirstReadFails_TheOtherPassGoesOn) {
    stage.model.biDir({"N", "b"}, {"N", "a"});
    stage.world.mo("N=1").with("b", Scripted::refs({"N=2"})).with("a", Scripted::refs({"N=3"}));
    stage.world.mo("N=3").with("b", Scripted::refs({"N=1"}));
    start();
    when("VekRouter3.getMoAttribute").on("'N=1', 'b'").returns(-5);
    remove("N=1");
    EXPECT_EQ(refs("N=3", "b"), Lines());
    EXPECT_EQ(stage.script.texts("Producer.release").front(), release("N=1.b").front());
}

TEST_F(BiDirDelete, KeptEnd_IsNotEvenRead) {
    stage.model.biDir({"X", "ys", 0, 1000, "references", true}, {"Y", "xs"});
    stage.world.mo("X=1").with("ys", Scripted::refs({"Y=1"}));
    stage.world.mo("Y=1").with("xs", Scripted::refs({"X=1"}));
    start();
    EXPECT_EQ(utils.updateBackpointers(1, "X=1"), OrvOk);
    EXPECT_EQ(stage.script.texts("VekRouter3"), Lines());
    EXPECT_EQ(utils.updateBackpointers(1, "Y=1"), OrvOk) << "the flag is that of the near end";
    EXPECT_EQ(refs("X=1", "ys"), Lines());
}

TEST_F(BiDirDelete, TargetNotThere_DropsWhatTheDeletedMoHasQueuedForThatAttribute) {
    modelOfXAndY();
    stage.world.mo("X=1");
    stage.world.mo("X=2");
    start();
    set(1, "X=1", "ys", {"Y=1"});
    set(1, "X=2", "ys", {"Y=1"});
    forget();
    remove("X=1");
    EXPECT_EQ(stage.script.texts("VekRouter3.setMoAttribute"), Lines());
    EXPECT_EQ(utils.pending(), Lines{"Y=1 <- X=2 (tx 1, xs, ys)"});
}

TEST_F(BiDirDelete, ValuesOfAnotherClassOrOfNone_ArePassedOverSilently) {
    modelOfXAndY();
    stage.model.moc("Z");
    stage.world.mo("X=1").with("ys", Scripted::refs({"Z=1", "Q=1", "Y=1"}));
    stage.world.mo("Y=1").with("xs", Scripted::refs({"X=1"}));
    stage.world.mo("Z=1");
    start();
    EXPECT_EQ(remove("X=1"), OrvOk);
    EXPECT_EQ(refs("Y=1", "xs"), Lines());
    EXPECT_EQ(log.of("log"), Lines());
    EXPECT_EQ(stage.script.texts("VekRouter3.existsMo"), exists("Y=1"));
}

TEST_F(BiDirDelete, ReferenceToItself_IsTakenOutOfItself) {
    stage.model.biDir({"N", "b"}, {"N", "a"});
    stage.world.mo("N=1").with("b", Scripted::refs({"N=1"})).with("a", Scripted::refs({"N=1"}));
    start();
    EXPECT_EQ(remove("N=1"), OrvOk);
    EXPECT_EQ(refs("N=1", "a"), Lines());
    EXPECT_EQ(refs("N=1", "b"), Lines{"N=1"}) << "its own attribute goes with it";
}

TEST_F(BiDirDelete, InnerObjectsReferToEachOther_EachIsTakenOutOfTheOther) {
    modelOfXAndY();
    stage.model.moc("P").contains("X").contains("Y");
    stage.world.mo("P=1");
    stage.world.mo("P=1,X=1").with("ys", Scripted::refs({"P=1,Y=1"}));
    stage.world.mo("P=1,Y=1").with("xs", Scripted::refs({"P=1,X=1"}));
    start();
    EXPECT_EQ(remove("P=1"), OrvOk);
    EXPECT_EQ(refs("P=1,Y=1", "xs"), Lines());
}

TEST_F(BiDirDelete, DeepTree_IsCleanedToItsDepth) {
    modelOfXAndY();
    stage.model.moc("X").contains("X");
    std::string dn;
    constexpr int depth = 1000;
    for (int i = 0; i < depth; ++i) {
        dn = Scripted::childDn(dn, "X=1");
        stage.world.mo(dn);
    }
    stage.world.set(dn, "ys", Scripted::refs({"Y=1"}));
    stage.world.mo("Y=1").with("xs", Scripted::refs({dn}));
    start();
    stage.script.keepCalls(false);
    EXPECT_EQ(remove("X=1"), OrvOk);
    EXPECT_EQ(refs("Y=1", "xs"), Lines());
}

TEST_F(BiDirDelete, WithoutRepository_LogsAndChangesNothing) {
    stage.missing = {Scripted::Part::ModelRepository};
    start();
    EXPECT_EQ(remove("X=1"), OrvFailure);
    EXPECT_EQ(log.all(), Lines{"log 3: VekOamSpiModelRepository_4T pointer is null."});
    EXPECT_EQ(calls(), Lines());
}

TEST_F(BiDirDelete, SeveralAssociations_AreLeftInTheModelsOrder) {
    stage.model.biDir({"X", "bs"}, {"B", "xs"});
    stage.model.biDir({"A", "xs"}, {"X", "as"});
    stage.world.mo("X=1");
    start();
    EXPECT_EQ(remove("X=1"), OrvOk);
    EXPECT_EQ(readOrder(), (Lines{"'X=1''bs'", "'X=1''as'"}));
}

TEST_F(BiDirDelete, OneMoOfNoClass_GivesTheCodeAndLogs) {
    modelOfXAndY();
    start();
    EXPECT_EQ(utils.updateBackpointers(1, "Q=1"), OrvNotExist);
    EXPECT_EQ(calls(), mocOf("Q=1"));
    EXPECT_EQ(log.all(), Lines{"log 3: Failed to look up MOC from DN. dn=Q=1, ret=-2"});
}

TEST_F(BiDirDelete, PositiveCodes_AreFailuresLikeAnyOther) {
    modelOfXAndY();
    stage.model.moc("P").contains("X").contains("Y");
    stage.world.mo("P=1");
    stage.world.mo("P=1,X=1");
    stage.world.mo("P=1,Y=1");
    start();
    when("Model.getNextContainment").returns(7);
    EXPECT_EQ(remove("P=1"), OrvOk);
    EXPECT_EQ(log.of("log"), Lines{"log 3: Model repository returned error code 7"});
    EXPECT_EQ(readOrder(), Lines{"'P=1,X=1''ys'"});
    forget();
    when("Model.getFirstContainment").returns(7);
    EXPECT_EQ(remove("P=1"), OrvOk);
    EXPECT_EQ(readOrder(), Lines());
    EXPECT_EQ(log.of("log"), Lines());
    when("Model.getMocFromDn").returns(7);
    EXPECT_EQ(remove("P=1"), 7);
}

TEST_F(BiDirDelete, FlagOfOneByteOtherThanOne_IsSet) {
    modelOfXAndY();
    stage.world.mo("X=1").with("ys", Scripted::refs({"Y=1"}));
    stage.world.mo("Y=1").with("xs", Scripted::refs({"X=1"}));
    start();
    when("Model.getEndBoolProperty").answers<unsigned char>([](unsigned char& flag) {
        flag = 2;
        return OrvOk;
    });
    remove("X=1");
    EXPECT_EQ(refs("Y=1", "xs"), Lines{"X=1"});
}

TEST_F(BiDirDelete, WithoutRouter_TracesWhatCannotBeRead) {
    modelOfXAndY();
    stage.missing = {Scripted::Part::VekRouter3};
    start();
    EXPECT_EQ(remove("X=1"), OrvOk);
    EXPECT_EQ(log.of("trace: Error"),
              Lines{"trace: Error code -1 received when reading attribute ys in X=1."});
}

// ---------------------------------------------------------------------------------------------
// Every call of the host, in the ordinary run and failing in turn.

// X=1 holds Y=1 and has a child of the class C, which is in no association.
const std::string iterator =
    std::to_string(0x1122'3344'0000'0001ULL); // the scripted router's first
const Lines lookX = joined({mocOf("X=1"), {"Model.getFirstContainment('X')"}});
const Lines containedC = joined({{"Model.getContainedMoc('X>C')"}, nameOfMoc("C")});
const Lines nextContainment = {"Model.getNextContainment('X>C')"};
const Lines listC = childrenOf("X=1", "C", 1, iterator);
const Lines childC = joined(
    {mocOf("X=1,C=1"), {"Model.getFirstContainment('C')"}, mocOf("X=1,C=1"), bidirsOf("C", {})});
const Lines children = joined({containedC, nextContainment, listC, childC});
const Lines lookAgain = joined({mocOf("X=1"), bidirsOf("X", {association})});
const Lines nearEnd = joined({endsOf(association, "xs@X", "ys@Y"), {"Model.getEndMoc('xs@X')"}});
const Lines farEnd = {"Model.getFirstEnd('X.ys<->Y.xs')", "Model.getSecondEnd('X.ys<->Y.xs')",
                      "Model.getEndMoc('ys@Y')"};
const Lines passBegins = joined({nameOfEnd("ys@Y"), {"Model.getEndBoolProperty('xs@X', 0)"}});
const Lines ends = joined({nearEnd, farEnd, passBegins});
const Lines readX = read("X=1", "ys");
const Lines nearName = nameOfEnd("xs@X");
const Lines removal = joined({exists("Y=1"), nameOfEnd("xs@X"), read("Y=1", "xs"),
                              write("Y=1", "xs", {}), release("Y=1.xs")});
const Lines cleaning = joined({readX, nearName, mocOf("Y=1"), removal, release("X=1.ys")});
const Lines ordinary = joined({lookX, children, lookAgain, ends, cleaning});
const Lines cleaned = {"Y=1.xs"};

struct Failure {
    friend std::ostream& operator<<(std::ostream& out, const Failure& failure) {
        return out << failure.name;
    }

    const char* name;
    std::string call;
    int number;
    Lines calls;
    OrvReturnT code;
    Lines recorded;
    Lines told;
};

class BiDirDeleteFailure : public BiDirDelete, public ::testing::WithParamInterface<Failure> {
protected:
    BiDirDeleteFailure() {
        modelOfXAndY();
        stage.model.moc("X").contains("C");
        stage.world.mo("X=1").with("ys", Scripted::refs({"Y=1"}));
        stage.world.mo("X=1,C=1");
        stage.world.mo("Y=1").with("xs", Scripted::refs({"X=1"}));
        start();
    }

    Lines told() const { return joined({log.of("log"), log.of("trace: Error")}); }
};

TEST_F(BiDirDeleteFailure, None_OrdinaryRun) {
    EXPECT_EQ(remove("X=1"), OrvOk);
    EXPECT_EQ(block(calls()), block(ordinary));
    EXPECT_EQ(modified(1), cleaned);
    EXPECT_EQ(told(), Lines());
}

TEST_P(BiDirDeleteFailure, OneCallFails_TheRestFollowsAsTold) {
    const Failure& failure = GetParam();
    when(failure.call).nth(failure.number).fails(-5);
    EXPECT_EQ(remove("X=1"), failure.code);
    EXPECT_EQ(block(calls()), block(failure.calls));
    EXPECT_EQ(modified(1), failure.recorded);
    EXPECT_EQ(told(), failure.told);
}

/// The ordinary run up to the associations of X=1, then \p rest.
Lines upToTheAssociation(const Lines& rest) {
    return joined({lookX, children, lookAgain, rest});
}

const Failure failures[] = {
    {"ClassOfTheMo",
     "Model.getMocFromDn",
     1,
     mocOf("X=1"),
     -5,
     {},
     {"log 3: Failed to look up MOC from DN. dn=X=1, ret=-5"}},
    {"FirstContainment_MeansNoChildren",
     "Model.getFirstContainment",
     1,
     joined({lookX, lookAgain, ends, cleaning}),
     OrvOk,
     cleaned,
     {}},
    {"ContainedClass",
     "Model.getContainedMoc",
     1,
     joined({lookX,
             {"Model.getContainedMoc('X>C')"},
             nameOfMoc("0"),
             nextContainment,
             childrenOf("X=1", "", 0, iterator),
             lookAgain,
             ends,
             cleaning}),
     OrvOk,
     cleaned,
     {}},
    {"PropertiesOfTheContainedClass",
     "Model.getMocGeneralProperties",
     1,
     joined({lookX,
             {"Model.getContainedMoc('X>C')", "Model.getMocGeneralProperties('C')",
              "Model.getGeneralStringProperty('0', 0)"},
             nextContainment,
             childrenOf("X=1", "", 0, iterator),
             lookAgain,
             ends,
             cleaning}),
     OrvOk,
     cleaned,
     {}},
    {"NameOfTheContainedClass",
     "Model.getGeneralStringProperty",
     1,
     joined({lookX, containedC, nextContainment, childrenOf("X=1", "", 0, iterator), lookAgain,
             ends, cleaning}),
     OrvOk,
     cleaned,
     {}},
    {"NextContainment_KeepsWhatWasGathered",
     "Model.getNextContainment",
     1,
     ordinary,
     OrvOk,
     cleaned,
     {"log 3: Model repository returned error code -5"}},
    {"ChildIterator_Ignored",
     "VekRouter3.newMoIterator",
     1,
     joined({lookX,
             containedC,
             nextContainment,
             {"VekRouter3.newMoIterator(1, 'X=1', 'C')"},
             lookAgain,
             ends,
             cleaning}),
     OrvOk,
     cleaned,
     {}},
    {"ClassOfTheChild_Ignored",
     "Model.getMocFromDn",
     2,
     joined(
         {lookX, containedC, nextContainment, listC, mocOf("X=1,C=1"), lookAgain, ends, cleaning}),
     OrvOk,
     cleaned,
     {"log 3: Failed to look up MOC from DN. dn=X=1,C=1, ret=-5"}},
    {"FirstNameOfAChild_MeansNone",
     "VekRouter3.nextMo",
     1,
     joined({lookX, containedC, nextContainment, childrenOf("X=1", "C", 0, iterator), lookAgain,
             ends, cleaning}),
     OrvOk,
     cleaned,
     {}},
    {"NextNameOfAChild_KeepsThoseBefore", "VekRouter3.nextMo", 2, ordinary, OrvOk, cleaned, {}},
    {"EndOfTheIterator_Ignored", "VekRouter3.finalizeMoIterator", 1, ordinary, OrvOk, cleaned, {}},
    {"FirstContainmentOfTheChild_Ignored",
     "Model.getFirstContainment",
     2,
     ordinary,
     OrvOk,
     cleaned,
     {}},
    {"ClassOfTheChildAgain_Ignored",
     "Model.getMocFromDn",
     3,
     joined({lookX,
             containedC,
             nextContainment,
             listC,
             mocOf("X=1,C=1"),
             {"Model.getFirstContainment('C')"},
             mocOf("X=1,C=1"),
             lookAgain,
             ends,
             cleaning}),
     OrvOk,
     cleaned,
     {"log 3: Failed to look up MOC from DN. dn=X=1,C=1, ret=-5"}},
    {"FirstAssociationOfTheChild_Ignored",
     "Model.getFirstBiDirAssociation",
     1,
     ordinary,
     OrvOk,
     cleaned,
     {}},
    {"ClassOfTheMoAgain_Ignored",
     "Model.getMocFromDn",
     4,
     joined({lookX, children, mocOf("X=1")}),
     OrvOk,
     {},
     {"log 3: Failed to look up MOC from DN. dn=X=1, ret=-5"}},
    {"FirstAssociation",
     "Model.getFirstBiDirAssociation",
     2,
     joined({lookX, children, mocOf("X=1"), bidirsOf("X", {})}),
     OrvOk,
     {},
     {}},
    {"NextAssociation_Ignored", "Model.getNextBiDirAssociation", 1, ordinary, OrvOk, cleaned, {}},
    // Without a first end, the second is taken for the near one: the MO's own attribute is then
    // the back-pointer of the other class, and cannot be read.
    {"FirstEndOfTheNearEnd",
     "Model.getFirstEnd",
     1,
     upToTheAssociation(joined({endsOf(association, "0", "ys@Y"),
                                {"Model.getEndMoc('ys@Y')", "Model.getFirstEnd('X.ys<->Y.xs')",
                                 "Model.getEndMoc('xs@X')"},
                                nameOfEnd("xs@X"),
                                {"Model.getEndBoolProperty('ys@Y', 0)"},
                                read("X=1", "xs")})),
     OrvOk,
     {},
     {"trace: Error code -2 received when reading attribute xs in X=1."}},
    {"SecondEndOfTheNearEnd_Ignored",
     "Model.getSecondEnd",
     1,
     upToTheAssociation(joined({endsOf(association, "xs@X", "0"),
                                {"Model.getEndMoc('xs@X')"},
                                farEnd,
                                passBegins,
                                cleaning})),
     OrvOk,
     cleaned,
     {}},
    {"ClassOfTheFirstEnd",
     "Model.getEndMoc",
     1,
     upToTheAssociation(joined({endsOf(association, "xs@X", "ys@Y"),
                                {"Model.getEndMoc('ys@Y')", "Model.getFirstEnd('X.ys<->Y.xs')",
                                 "Model.getEndMoc('xs@X')"},
                                nameOfEnd("xs@X"),
                                {"Model.getEndBoolProperty('ys@Y', 0)"},
                                read("X=1", "xs")})),
     OrvOk,
     {},
     {"trace: Error code -2 received when reading attribute xs in X=1."}},
    {"ClassOfTheSecondEnd_Ignored", "Model.getEndMoc", 2, ordinary, OrvOk, cleaned, {}},
    {"ClassOfTheNearEnd_Ignored", "Model.getEndMoc", 3, ordinary, OrvOk, cleaned, {}},
    {"FirstEndOfTheFarEnd",
     "Model.getFirstEnd",
     2,
     upToTheAssociation(joined({nearEnd,
                                {"Model.getFirstEnd('X.ys<->Y.xs')", "Model.getEndMoc('0')"},
                                nameOfEnd("0"),
                                {"Model.getEndBoolProperty('xs@X', 0)"},
                                read("X=1", "")})),
     OrvOk,
     {},
     {"trace: Error code -2 received when reading attribute  in X=1."}},
    {"SecondEndOfTheFarEnd",
     "Model.getSecondEnd",
     2,
     upToTheAssociation(joined({nearEnd,
                                {"Model.getFirstEnd('X.ys<->Y.xs')",
                                 "Model.getSecondEnd('X.ys<->Y.xs')", "Model.getEndMoc('0')"},
                                nameOfEnd("0"),
                                {"Model.getEndBoolProperty('xs@X', 0)"},
                                read("X=1", "")})),
     OrvOk,
     {},
     {"trace: Error code -2 received when reading attribute  in X=1."}},
    {"ClassOfTheFarEnd",
     "Model.getEndMoc",
     4,
     upToTheAssociation(joined({ends, readX, nearName, mocOf("Y=1"), release("X=1.ys")})),
     OrvOk,
     {},
     {}},
    {"PropertiesOfTheFarEnd",
     "Model.getEndGeneralProperties",
     1,
     upToTheAssociation(
         joined({nearEnd,
                 farEnd,
                 {"Model.getEndGeneralProperties('ys@Y')", "Model.getGeneralStringProperty('0', 0)",
                  "Model.getEndBoolProperty('xs@X', 0)"},
                 read("X=1", "")})),
     OrvOk,
     {},
     {"trace: Error code -2 received when reading attribute  in X=1."}},
    {"NameOfTheFarEnd",
     "Model.getGeneralStringProperty",
     2,
     upToTheAssociation(joined({ends, read("X=1", "")})),
     OrvOk,
     {},
     {"trace: Error code -2 received when reading attribute  in X=1."}},
    {"Flag_MeansNotSet", "Model.getEndBoolProperty", 1, ordinary, OrvOk, cleaned, {}},
    {"ReadOfTheMo",
     "VekRouter3.getMoAttribute",
     1,
     upToTheAssociation(joined({ends, readX})),
     OrvOk,
     {},
     {"trace: Error code -5 received when reading attribute ys in X=1."}},
    {"PropertiesOfTheNearEnd_Ignored",
     "Model.getEndGeneralProperties",
     2,
     upToTheAssociation(joined(
         {ends,
          readX,
          {"Model.getEndGeneralProperties('xs@X')", "Model.getGeneralStringProperty('0', 0)"},
          mocOf("Y=1"),
          removal,
          release("X=1.ys")})),
     OrvOk,
     cleaned,
     {}},
    {"NameOfTheNearEnd_Ignored", "Model.getGeneralStringProperty", 3, ordinary, OrvOk, cleaned, {}},
    {"ClassOfTheValue",
     "Model.getMocFromDn",
     5,
     upToTheAssociation(joined({ends, readX, nearName, mocOf("Y=1"), release("X=1.ys")})),
     OrvOk,
     {},
     {}},
    {"ExistenceOfTheTarget",
     "VekRouter3.existsMo",
     1,
     upToTheAssociation(
         joined({ends, readX, nearName, mocOf("Y=1"), exists("Y=1"), release("X=1.ys")})),
     OrvOk,
     {},
     {}},
    {"PropertiesForTheRemoval",
     "Model.getEndGeneralProperties",
     3,
     upToTheAssociation(joined(
         {ends,
          readX,
          nearName,
          mocOf("Y=1"),
          exists("Y=1"),
          {"Model.getEndGeneralProperties('xs@X')", "Model.getGeneralStringProperty('0', 0)"},
          read("Y=1", ""),
          release("X=1.ys")})),
     OrvOk,
     {},
     {"trace: Error code -2 received when reading attribute  in Y=1."}},
    {"NameForTheRemoval",
     "Model.getGeneralStringProperty",
     4,
     upToTheAssociation(joined({ends, readX, nearName, mocOf("Y=1"), exists("Y=1"),
                                nameOfEnd("xs@X"), read("Y=1", ""), release("X=1.ys")})),
     OrvOk,
     {},
     {"trace: Error code -2 received when reading attribute  in Y=1."}},
    {"ReadOfTheTarget",
     "VekRouter3.getMoAttribute",
     2,
     upToTheAssociation(joined({ends, readX, nearName, mocOf("Y=1"), exists("Y=1"),
                                nameOfEnd("xs@X"), read("Y=1", "xs"), release("X=1.ys")})),
     OrvOk,
     {},
     {"trace: Error code -5 received when reading attribute xs in Y=1."}},
    {"WriteOfTheTarget",
     "VekRouter3.setMoAttribute",
     1,
     ordinary,
     OrvOk,
     {},
     {"trace: Error code -5 received when setting attribute xs in Y=1."}},
};

INSTANTIATE_TEST_SUITE_P(EachCall, BiDirDeleteFailure, ::testing::ValuesIn(failures),
                         [](const auto& each) { return std::string(each.param.name); });

TEST_F(BiDirDeleteFailure, ReadOfTheMoFailsWithAResult_IsReleased) {
    when("VekRouter3.getMoAttribute").once().returns(-5);
    EXPECT_EQ(remove("X=1"), OrvOk);
    EXPECT_EQ(calls(), upToTheAssociation(joined({ends, readX, release("X=1.ys")})));
}

TEST_F(BiDirDeleteFailure, NoRouterForTheChildren_IsIgnored) {
    Orv::Portal::instance()->detach();
    EXPECT_EQ(remove("X=1"), OrvOk);
    EXPECT_EQ(modified(1), cleaned);
}

}
}
