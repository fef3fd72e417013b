// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "BiDirScene.h"

// Every call of the host in a validation, in the ordinary run and failing in turn.

namespace BiDirTests {
namespace {

const char* const association = "X.ys<->Y.xs";

const Lines begin = joined({exists("X=1"), read("X=1", "ys"), mocOf("X=1")});
const Lines findYs = joined({{"Model.getFirstAttribute('X')"}, nameOfAttribute("X.ys")});
const Lines typeOfIt = {"Model.getAttributeType('X.ys')", "Model.getTypeCode('type of X.ys')"};
const Lines bounds = {"Model.getTypeIntProperty('type of X.ys', 0)",
                      "Model.getTypeIntProperty('type of X.ys', 1)"};
const Lines multiplicity = joined({findYs, typeOfIt, bounds});
const Lines bidirs = bidirsOf("X", {association});
const Lines nearEnd = endsOf(association, "xs@X", "ys@Y");
const Lines farEnd = {"Model.getFirstEnd('X.ys<->Y.xs')", "Model.getSecondEnd('X.ys<->Y.xs')"};
const Lines farName = {"Model.getEndStringProperty('ys@Y', 0)"};
const Lines target = {"Model.getEndAttribute('xs@X')", "Model.getAttributeMoc('Y.xs')"};
const Lines count = mocOf("Y=1");
const Lines cardinality = {
    "Model.getEndIntProperty('ys@Y', 0)", "Model.getEndIntProperty('ys@Y', 1)",
    "Model.getEndStringProperty('ys@Y', 1)", "Model.getEndStringProperty('ys@Y', 0)"};
const Lines associations = joined({nearEnd, farEnd, farName, target, count, cardinality});
const Lines declared = joined({{"Model.getReferencedMoc('type of X.ys')"}, nameOfMoc("Y")});
const Lines valueType = joined({mocOf("Y=1"), nameOfMoc("Y")});
const Lines types = joined({mocOf("X=1"), findYs, typeOfIt, declared, valueType});
const Lines back = release("X=1.ys");
const Lines ordinary = joined({begin, multiplicity, bidirs, associations, types, back});

Lines message(const std::string& text) {
    return {"ThreadContext.addMessage(1, '" + text + "')"};
}

const Lines noAttribute = {"Model.getAttributeType('0')", "Model.getTypeCode('0')"};
const std::string noReference = "Attribute ys in X=1 is not a MO ref.";
const std::string noClassX = "X=1 does not correspond to a valid MO type.";
const std::string noClassY = "Y=1 does not correspond to a valid MO type.";
const std::string wrongType = "Y is not a valid type for attribute ys in X=1.";

/// One call that fails with -5, and all that follows from it.
struct Failure {
    friend std::ostream& operator<<(std::ostream& out, const Failure& failure) {
        return out << failure.name;
    }

    const char* name;
    std::string call;
    int number;
    Lines calls;
    OrvReturnT code = OrvOk;
    bool valid = true;
};

class BiDirValidatorFailure : public Scene, public ::testing::WithParamInterface<Failure> {
protected:
    // X=1 refers to Y=1, as it may.
    BiDirValidatorFailure() {
        stage.model.biDir({"X", "ys", 0, 2, "things"}, {"Y", "xs"});
        stage.world.mo("X=1").with("ys", Scripted::refs({"Y=1"}));
        start();
        utils.addUpdatedBp(1, "X=1", "ys");
    }

    /// The value, and how many a type and an association may have.
    void written(const Lines& references) {
        stage.world.set("X=1", "ys", Scripted::refs(references));
    }
};

TEST_F(BiDirValidatorFailure, None_OrdinaryRun) {
    EXPECT_EQ(validate(1), OrvOk);
    EXPECT_TRUE(valid);
    EXPECT_EQ(block(calls()), block(ordinary));
}

TEST_P(BiDirValidatorFailure, OneCallFails_TheRestFollowsAsTold) {
    const Failure& failure = GetParam();
    when(failure.call).nth(failure.number).fails(-5);
    EXPECT_EQ(validate(1), failure.code);
    EXPECT_EQ(valid, failure.valid);
    EXPECT_EQ(block(calls()), block(failure.calls));
    EXPECT_EQ(log.of("log"), Lines());
}

Lines noReferenceAfter(const Lines& search) {
    return joined({begin, search, message(noReference), back});
}

/// The association is not the attribute's: no count, and no class permitted by it.
Lines withoutAssociation(const Lines& questions) {
    return joined({begin, multiplicity, bidirs, questions, types, back});
}

const Failure failures[] = {
    {"Existence", "VekRouter3.existsMo", 1, exists("X=1"), -5, true},
    {"Value", "VekRouter3.getMoAttribute", 1, joined({exists("X=1"), read("X=1", "ys")}), -5,
     false},
    {"ClassOfTheMo", "Model.getMocFromDn", 1, joined({begin, message(noClassX), back}),
     OrvValidationFailed, false},
    {"FirstAttribute", "Model.getFirstAttribute", 1,
     noReferenceAfter(joined({{"Model.getFirstAttribute('X')"},
                              nameOfAttribute("0"),
                              {"Model.getNextAttribute('0')", "Model.getAttributeType('0')",
                               "Model.getTypeCode('0')"}})),
     OrvValidationFailed, false},
    {"PropertiesOfTheAttribute", "Model.getAttributeGeneralProperties", 1,
     noReferenceAfter({"Model.getFirstAttribute('X')",
                       "Model.getAttributeGeneralProperties('X.ys')",
                       "Model.getGeneralStringProperty('0', 0)", "Model.getNextAttribute('X.ys')",
                       "Model.getAttributeType('0')", "Model.getTypeCode('0')"}),
     OrvValidationFailed, false},
    {"NameOfTheAttribute", "Model.getGeneralStringProperty", 1,
     noReferenceAfter(joined({findYs,
                              {"Model.getNextAttribute('X.ys')", "Model.getAttributeType('0')",
                               "Model.getTypeCode('0')"}})),
     OrvValidationFailed, false},
    {"TypeOfTheAttribute", "Model.getAttributeType", 1,
     noReferenceAfter(
         joined({findYs, {"Model.getAttributeType('X.ys')", "Model.getTypeCode('0')"}})),
     OrvValidationFailed, false},
    {"TypeCode", "Model.getTypeCode", 1, noReferenceAfter(joined({findYs, typeOfIt})),
     OrvValidationFailed, false},
    {"LowerMultiplicity_MeansZero", "Model.getTypeIntProperty", 1, ordinary},
    {"UpperMultiplicity_MeansZero", "Model.getTypeIntProperty", 2,
     joined({begin, multiplicity,
             message("Multiplicity of attribute ys in X=1 is not in range (0..0)."), back}),
     OrvValidationFailed, false},
    {"FirstAssociation", "Model.getFirstBiDirAssociation", 1,
     joined({begin, multiplicity, bidirsOf("X", {}), back})},
    {"NextAssociation_Ignored", "Model.getNextBiDirAssociation", 1, ordinary},
    {"FirstEndOfTheNearEnd", "Model.getFirstEnd", 1,
     withoutAssociation(
         joined({endsOf(association, "0", "ys@Y"),
                 {"Model.getFirstEnd('X.ys<->Y.xs')", "Model.getEndStringProperty('xs@X', 0)"}}))},
    {"SecondEndOfTheNearEnd_Ignored", "Model.getSecondEnd", 1,
     joined({begin, multiplicity, bidirs, endsOf(association, "xs@X", "0"), farEnd, farName, target,
             count, cardinality, types, back})},
    {"ClassOfTheFirstEnd", "Model.getEndMoc", 1,
     withoutAssociation(
         joined({nearEnd,
                 {"Model.getFirstEnd('X.ys<->Y.xs')", "Model.getEndStringProperty('xs@X', 0)"}}))},
    {"ClassOfTheSecondEnd_Ignored", "Model.getEndMoc", 2, ordinary},
    {"FirstEndOfTheFarEnd", "Model.getFirstEnd", 2,
     withoutAssociation(joined(
         {nearEnd, {"Model.getFirstEnd('X.ys<->Y.xs')", "Model.getEndStringProperty('0', 0)"}}))},
    {"SecondEndOfTheFarEnd", "Model.getSecondEnd", 2,
     withoutAssociation(joined({nearEnd, farEnd, {"Model.getEndStringProperty('0', 0)"}}))},
    {"NameOfTheFarEnd", "Model.getEndStringProperty", 1,
     withoutAssociation(joined({nearEnd, farEnd, farName}))},
    {"AttributeOfTheNearEnd_CountsNothing", "Model.getEndAttribute", 1,
     joined({begin,
             multiplicity,
             bidirs,
             nearEnd,
             farEnd,
             farName,
             {"Model.getEndAttribute('xs@X')", "Model.getAttributeMoc('0')"},
             count,
             cardinality,
             types,
             back})},
    {"ClassOfThatAttribute_CountsNothing", "Model.getAttributeMoc", 1, ordinary},
    {"ClassOfTheValueWhileCounting", "Model.getMocFromDn", 2,
     joined({begin, multiplicity, bidirs, nearEnd, farEnd, farName, target, count,
             message(noClassY), back}),
     OrvValidationFailed, false},
    {"LowerCardinality_MeansZero", "Model.getEndIntProperty", 1, ordinary},
    {"UpperCardinality_MeansZero", "Model.getEndIntProperty", 2,
     joined({begin, multiplicity, bidirs, associations,
             message("Attribute ys in X=1 contains 1 things which is not within cardinality range "
                     "(0..0)."),
             back}),
     OrvValidationFailed, false},
    {"WordOfTheFarEnd_NotNeeded", "Model.getEndStringProperty", 2, ordinary},
    {"NameOfTheFarEndAgain_NotNeeded", "Model.getEndStringProperty", 3, ordinary},
    {"ClassOfTheMoInTheTypeCheck_IsNoReference", "Model.getMocFromDn", 3,
     joined(
         {begin,
          multiplicity,
          bidirs,
          associations,
          mocOf("X=1"),
          {"Model.getFirstAttribute('0')", "Model.getAttributeType('0')", "Model.getTypeCode('0')"},
          back})},
    {"FirstAttributeInTheTypeCheck_IsNoReference", "Model.getFirstAttribute", 2,
     joined({begin,
             multiplicity,
             bidirs,
             associations,
             mocOf("X=1"),
             {"Model.getFirstAttribute('X')"},
             nameOfAttribute("0"),
             {"Model.getNextAttribute('0')"},
             noAttribute,
             back})},
    {"PropertiesOfTheAttributeInTheTypeCheck_IsNoReference", "Model.getAttributeGeneralProperties",
     2,
     joined({begin,
             multiplicity,
             bidirs,
             associations,
             mocOf("X=1"),
             {"Model.getFirstAttribute('X')", "Model.getAttributeGeneralProperties('X.ys')",
              "Model.getGeneralStringProperty('0', 0)", "Model.getNextAttribute('X.ys')"},
             noAttribute,
             back})},
    {"NameOfTheAttributeInTheTypeCheck_IsNoReference", "Model.getGeneralStringProperty", 2,
     joined({begin,
             multiplicity,
             bidirs,
             associations,
             mocOf("X=1"),
             findYs,
             {"Model.getNextAttribute('X.ys')"},
             noAttribute,
             back})},
    {"TypeInTheTypeCheck_IsNoReference", "Model.getAttributeType", 2,
     joined({begin,
             multiplicity,
             bidirs,
             associations,
             mocOf("X=1"),
             findYs,
             {"Model.getAttributeType('X.ys')", "Model.getTypeCode('0')"},
             back})},
    {"TypeCodeInTheTypeCheck_IsNoReference", "Model.getTypeCode", 2,
     joined({begin, multiplicity, bidirs, associations, mocOf("X=1"), findYs, typeOfIt, back})},
    {"DeclaredClass_MatchesNone", "Model.getReferencedMoc", 1,
     joined({begin,
             multiplicity,
             bidirs,
             associations,
             mocOf("X=1"),
             findYs,
             typeOfIt,
             {"Model.getReferencedMoc('type of X.ys')"},
             nameOfMoc("0"),
             valueType,
             message(wrongType),
             back}),
     OrvValidationFailed, false},
    {"PropertiesOfTheDeclaredClass_NotAnyClass", "Model.getMocGeneralProperties", 1,
     joined({begin,
             multiplicity,
             bidirs,
             associations,
             mocOf("X=1"),
             findYs,
             typeOfIt,
             {"Model.getReferencedMoc('type of X.ys')", "Model.getMocGeneralProperties('Y')",
              "Model.getGeneralStringProperty('0', 0)"},
             valueType,
             back})},
    {"NameOfTheDeclaredClass_NotAnyClass", "Model.getGeneralStringProperty", 3, ordinary},
    {"ClassOfTheValueInTheTypeCheck", "Model.getMocFromDn", 4,
     joined({begin, multiplicity, bidirs, associations, mocOf("X=1"), findYs, typeOfIt, declared,
             mocOf("Y=1"), message(noClassY), message(""), back}),
     -5, false},
    {"PropertiesOfTheValuesClass_NotNeeded", "Model.getMocGeneralProperties", 2,
     joined({begin,
             multiplicity,
             bidirs,
             associations,
             mocOf("X=1"),
             findYs,
             typeOfIt,
             declared,
             mocOf("Y=1"),
             {"Model.getMocGeneralProperties('Y')", "Model.getGeneralStringProperty('0', 0)"},
             back})},
    {"NameOfTheValuesClass_NotNeeded", "Model.getGeneralStringProperty", 4, ordinary},
};

INSTANTIATE_TEST_SUITE_P(EachCall, BiDirValidatorFailure, ::testing::ValuesIn(failures),
                         [](const auto& each) { return std::string(each.param.name); });

TEST_F(BiDirValidatorFailure, ValueFailsWithAResult_IsReleased) {
    when("VekRouter3.getMoAttribute").returns(-5);
    EXPECT_EQ(validate(1), -5);
    EXPECT_FALSE(valid);
    EXPECT_EQ(calls(), joined({exists("X=1"), read("X=1", "ys"), back}));
}

// The search for an attribute goes on past a failing step, from the handle that it left. Where that
// finds nothing, two steps that stand still end it, and there is no attribute.
TEST_F(BiDirValidatorFailure, NextAttribute_FailsForEver_LeavesNoAttribute) {
    stage.model.moc("X").reference("more", "Y");
    stage.world.set("X=1", "more", Scripted::refs({}));
    utils.addUpdatedBp(1, "X=1", "more");
    when("Model.getNextAttribute").fails(-5);
    EXPECT_EQ(validate(1), OrvValidationFailed);
    EXPECT_FALSE(valid);
    EXPECT_EQ(block(calls()),
              block(joined({exists("X=1"),
                            read("X=1", "more"),
                            mocOf("X=1"),
                            findYs,
                            {"Model.getNextAttribute('X.ys')"},
                            nameOfAttribute("0"),
                            {"Model.getNextAttribute('0')"},
                            nameOfAttribute("0"),
                            {"Model.getNextAttribute('0')"},
                            {"Model.getAttributeType('0')", "Model.getTypeCode('0')"},
                            message("Attribute more in X=1 is not a MO ref."),
                            release("X=1.more")})));
}

// What a missing text does to a message: what stands before it stays, nothing comes after it.
TEST_F(BiDirValidatorFailure, WordMissing_EndsTheCardinalityMessageThere) {
    written({"Y=1", "Y=2", "Y=3"});
    when("Model.getEndStringProperty").on("1)").fails(-5);
    EXPECT_EQ(validate(1), OrvValidationFailed);
    EXPECT_EQ(messages(), Lines{"Attribute ys in X=1 contains 3 "});
}

TEST_F(BiDirValidatorFailure, EndsNameMissing_EndsTheCardinalityMessageThere) {
    written({"Y=1", "Y=2", "Y=3"});
    when("Model.getEndStringProperty").nth(3).fails(-5);
    EXPECT_EQ(validate(1), OrvValidationFailed);
    EXPECT_EQ(messages(), Lines{"Attribute "});
}

TEST_F(BiDirValidatorFailure, TargetClassUnknownAndOneNeeded_CountsZero) {
    stage.model.biDir({"V", "ys", 1, 2, "things"}, {"Y", "vs"});
    stage.world.mo("V=1").with("ys", Scripted::refs({"Y=1"}));
    stage.world.remove("X=1");
    utils.addUpdatedBp(1, "V=1", "ys");
    when("Model.getAttributeMoc").fails(-5);
    EXPECT_EQ(validate(1), OrvValidationFailed);
    EXPECT_EQ(messages(), Lines{"Attribute ys in V=1 contains 0 things which is not within "
                                "cardinality range (1..2)."});
}

}
}
