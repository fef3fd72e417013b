// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "BiDirScene.h"

#include <cstdint>
#include <limits>
#include <list>
#include <type_traits>

// What of the validator shows in the class alone: its steps one by one, counts that no value has,
// and what happens between two calls of the host.

namespace BiDirTests {
namespace {

using OrvExtCmRouterService::BiDirUtils;
using OrvExtCmRouterService::BiDirValidator;

class BiDirValidatorEdges : public Scene {
protected:
    /// X=1 holds \p references in `ys` and is on the work list of transaction 1.
    void written(const Lines& references) {
        stage.world.mo("X=1").with("ys", Scripted::refs(references));
        start();
        utils.addUpdatedBp(1, "X=1", "ys");
    }

    /// The model takes \p dn for one of the class with the handle 0.
    void giveClassZero(const std::string& dn) {
        when("Model.getMocFromDn")
            .on("'" + dn + "'")
            .answers<unsigned long long>([](unsigned long long& moc) {
                moc = 0;
                return OrvOk;
            });
    }
};

TEST_F(BiDirValidatorEdges, Construction_HoldsNothing) {
    const Validator fresh(utils);
    EXPECT_EQ(fresh.moRouter, nullptr);
    EXPECT_EQ(fresh.modelRepository, nullptr);
    EXPECT_EQ(fresh.threadContext, nullptr);
}

TEST_F(BiDirValidatorEdges, Members_AreInTheOrderThatOthersKnow) {
    const auto place = [](const auto& member) { return reinterpret_cast<std::uintptr_t>(&member); };
    EXPECT_LT(place(validator.moRouter), place(validator.modelRepository));
    EXPECT_LT(place(validator.modelRepository), place(validator.threadContext));
    EXPECT_EQ(sizeof(BiDirValidator), 5 * sizeof(void*)) << "the virtual table and four members";
}

TEST_F(BiDirValidatorEdges, Pair_IsTracedBeforeTheHostIsAsked) {
    modelOfXAndY();
    written({});
    Lines tracedBefore;
    when("VekRouter3.existsMo").runs([&] { tracedBefore = log.all(); });
    EXPECT_EQ(validate(1), OrvOk);
    EXPECT_EQ(tracedBefore, Lines{"trace: Validating: X=1, ys"});
}

TEST_F(BiDirValidatorEdges, FailedRead_IsTracedBeforeTheResultGoesBack) {
    modelOfXAndY();
    written({});
    static Lines* tracedBefore = nullptr;
    static const LogLines* lines = nullptr;
    Lines traced;
    tracedBefore = &traced;
    lines = &log;
    when("VekRouter3.getMoAttribute")
        .answers<VekMoAttributeValueResult_3>([](VekMoAttributeValueResult_3& out) {
            static VekMoAttributeValueContainer_3 value = {OrvMoAttributeTypeMoRef_3, 0, nullptr};
            out = {[](VekMoAttributeValueContainer_3*) { *tracedBefore = lines->all(); }, &value};
            return -5;
        });
    EXPECT_EQ(validate(1), -5);
    EXPECT_FALSE(valid);
    EXPECT_EQ(traced, (Lines{"trace: Validating: X=1, ys",
                             "trace: Failed to retrieve X=1 value from ys, return code = -5"}));
}

TEST_F(BiDirValidatorEdges, ExistenceToldWithAFailure_IsNotBelieved) {
    modelOfXAndY();
    written({});
    when("VekRouter3.existsMo").returns(-5);
    EXPECT_EQ(validate(1), -5);
    EXPECT_TRUE(valid);
    EXPECT_EQ(calls(), exists("X=1"));
}

TEST_F(BiDirValidatorEdges, PairsRecordedMeanwhile_AreForTheNextValidation) {
    modelOfXAndY();
    written({});
    stage.world.mo("X=2");
    when("VekRouter3.existsMo").once().runs([&] { utils.addUpdatedBp(1, "X=2", "ys"); });
    EXPECT_EQ(validate(1), OrvOk);
    EXPECT_EQ(stage.script.texts("VekRouter3.existsMo"), exists("X=1"));
    EXPECT_EQ(validate(1), OrvOk);
    EXPECT_EQ(stage.script.texts("VekRouter3.existsMo"),
              joined({exists("X=1"), exists("X=1"), exists("X=2")}));
}

TEST_F(BiDirValidatorEdges, PairsOfOtherTransactions_AreNotLookedAt) {
    modelOfXAndY();
    written({});
    utils.addUpdatedBp(2, "X=2", "ys");
    EXPECT_EQ(validate(2), OrvOk);
    EXPECT_EQ(calls(), Lines{"VekRouter3.existsMo(2, 'X=2')"});
}

// ---------------------------------------------------------------------------------------------
// A class with the handle 0 is a class like any other

TEST_F(BiDirValidatorEdges, ClassZeroOfTheMo_IsNoFailedLookup) {
    modelOfXAndY();
    written({});
    giveClassZero("X=1");
    EXPECT_EQ(validate(1), OrvValidationFailed);
    EXPECT_EQ(messages(), Lines{"Attribute ys in X=1 is not a MO ref."});
}

TEST_F(BiDirValidatorEdges, ClassZeroOfAValue_IsAClassThatDoesNotFit) {
    modelOfXAndY();
    written({"Y=1"});
    giveClassZero("Y=1");
    EXPECT_EQ(validate(1), OrvValidationFailed);
    EXPECT_EQ(messages(), Lines{""}) << "it has no name that the message could begin with";
}

TEST_F(BiDirValidatorEdges, ClassZeroOnBothSides_IsCounted) {
    stage.model.biDir({"X", "ys", 0, 0, "things"}, {"Y", "xs"});
    written({"Y=1"});
    giveClassZero("Y=1");
    when("Model.getAttributeMoc").fails(-5); // the target class stays 0, too
    EXPECT_EQ(validate(1), OrvValidationFailed);
    EXPECT_EQ(messages(), Lines{"Attribute ys in X=1 contains 1 things which is not within "
                                "cardinality range (0..0)."});
}

// ---------------------------------------------------------------------------------------------
// The checks one by one

TEST_F(BiDirValidatorEdges, Multiplicity_CountsAndBoundsHaveSixtyFourBits) {
    constexpr long long lower = 5'000'000'000;
    stage.model.moc("X").reference("ys", "Y", lower, lower + 2);
    start();
    EXPECT_EQ(validator.attrMultiplicityCheck("X=1", moc("X"), "ys", lower + 1), OrvOk);
    EXPECT_EQ(messages(), Lines());
    for (const long long count : {lower - 1, lower + 3, lower - 4'294'967'296 + 1, -lower}) {
        EXPECT_EQ(validator.attrMultiplicityCheck("X=1", moc("X"), "ys", count),
                  OrvValidationFailed);
        EXPECT_EQ(messages().back(), "Multiplicity of attribute ys in X=1 is not in range "
                                     "(5000000000..5000000002).");
    }
}

TEST_F(BiDirValidatorEdges, Cardinality_CountsAndBoundsAreSignedWithSixtyFourBits) {
    constexpr long long lowest = std::numeric_limits<long long>::min();
    stage.model.biDir({"X", "ys", lowest, -5'000'000'000, "things"}, {"Y", "xs"});
    start();
    const auto far = secondEnd("X");
    EXPECT_EQ(validator.biDirCardinalityCheck("X=1", far, lowest), OrvOk);
    EXPECT_EQ(validator.biDirCardinalityCheck("X=1", far, -5'000'000'000), OrvOk);
    EXPECT_EQ(validator.biDirCardinalityCheck("X=1", far, -4'999'999'999), OrvValidationFailed);
    EXPECT_EQ(messages(), Lines{"Attribute ys in X=1 contains -4999999999 things which is not "
                                "within cardinality range (-9223372036854775808..-5000000000)."});
}

TEST_F(BiDirValidatorEdges, NegativeLowerBounds_AreBelowEveryCount) {
    stage.model.moc("X").reference("ys", "Y", -5, 3);
    stage.model.biDir({"X", "ys", -5, 3, "things"}, {"Y", "xs"});
    written({"Y=1"});
    EXPECT_EQ(validate(1), OrvOk);
    EXPECT_TRUE(valid);
}

// In an attribute for any class, an empty list permits every class and another one only its own.
TEST_F(BiDirValidatorEdges, TypeCheck_PermittedClassesMatterForAnyClassOnly) {
    modelOfXAndY();
    stage.model.moc("W");
    stage.model.moc("X").reference("others", "ManagedObject");
    start();
    Scripted::Records records;
    VekMoAttributeValueResult_3 result{nullptr, records.container(Scripted::refs({"Y=1"}))};
    std::list<VekOamSpiMrMocHandle_4T> permitted;
    EXPECT_EQ(validator.attributeTypeCheck("X=1", "others", &result, permitted), OrvOk);
    permitted = {moc("W")};
    EXPECT_EQ(validator.attributeTypeCheck("X=1", "ys", &result, permitted), OrvOk);
    EXPECT_EQ(validator.attributeTypeCheck("X=1", "others", &result, permitted),
              OrvValidationFailed);
    EXPECT_EQ(messages(), Lines{"Y is not a valid type for attribute others in X=1."});
    permitted = {moc("W"), moc("Y")};
    EXPECT_EQ(validator.attributeTypeCheck("X=1", "others", &result, permitted), OrvOk);
}

TEST_F(BiDirValidatorEdges, SearchThatFindsNothing_LeavesTheHandleThatTheCallerHas) {
    stage.model.moc("None");
    modelOfXAndY();
    start();
    VekOamSpiMrAttributeHandle_4T handle = 4711;
    validator.getAttributeFromMoc(moc("None"), "ys", handle);
    EXPECT_EQ(handle, 4711U);
}

TEST_F(BiDirValidatorEdges, Release_NeedsBothAContainerAndAFunction) {
    static int released = 0;
    static const VekMoAttributeValueContainer_3* given = nullptr;
    released = 0;
    VekMoAttributeValueContainer_3 value = {OrvMoAttributeTypeMoRef_3, 0, nullptr};
    const auto function = [](VekMoAttributeValueContainer_3* container) {
        ++released;
        given = container;
    };
    validator.release({nullptr, nullptr});
    validator.release({nullptr, &value});
    validator.release({function, nullptr});
    EXPECT_EQ(released, 0);
    validator.release({function, &value});
    EXPECT_EQ(released, 1);
    EXPECT_EQ(given, &value);
}

// ---------------------------------------------------------------------------------------------
// Who is asked

/// Notes which questions the validator has for it.
class AskedUtils : public BiDirUtils {
public:
    using BiDirUtils::addUpdatedBp;
    Lines asked;

    ModifiedAttributes getModifiedBackPointers(unsigned long txHandle) override {
        asked.push_back("getModifiedBackPointers " + std::to_string(txHandle));
        return BiDirUtils::getModifiedBackPointers(txHandle);
    }
    OrvReturnT getBidirsForMoc(VekOamSpiMrMocHandle_4T moc,
                               std::list<VekOamSpiMrBiDirAssociationHandle_4T>& bidirs) override {
        asked.push_back("getBidirsForMoc");
        EXPECT_TRUE(bidirs.empty());
        return BiDirUtils::getBidirsForMoc(moc, bidirs);
    }
    OrvReturnT findAssociationEnd(VekOamSpiMrMocHandle_4T moc,
                                  VekOamSpiMrBiDirAssociationHandle_4T association,
                                  VekOamSpiMrAssociationEndHandle_4T& end) override {
        asked.push_back("findAssociationEnd by MOC");
        return BiDirUtils::findAssociationEnd(moc, association, end);
    }
    OrvReturnT findAssociationEnd(VekOamSpiMrMocHandle_4T moc, const char* attributeName,
                                  VekOamSpiMrBiDirAssociationHandle_4T association,
                                  VekOamSpiMrAssociationEndHandle_4T& end) override {
        asked.push_back("findAssociationEnd by name");
        return BiDirUtils::findAssociationEnd(moc, attributeName, association, end);
    }
};

/// Notes which of its steps it takes.
class SteppingValidator : public BiDirValidator {
public:
    using BiDirValidator::BiDirValidator;
    Lines steps;

protected:
    OrvReturnT attributeTypeCheck(const char* dn, const char* attribute,
                                  VekMoAttributeValueResult_3* result,
                                  std::list<VekOamSpiMrMocHandle_4T>& permitted) override {
        steps.push_back("attributeTypeCheck " + std::to_string(permitted.size()));
        return BiDirValidator::attributeTypeCheck(dn, attribute, result, permitted);
    }
    OrvReturnT biDirCardinalityCheck(const char* dn, VekOamSpiMrAssociationEndHandle_4T end,
                                     long long count) override {
        steps.push_back("biDirCardinalityCheck " + std::to_string(count));
        return BiDirValidator::biDirCardinalityCheck(dn, end, count);
    }
    OrvReturnT attrMultiplicityCheck(const char* dn, VekOamSpiMrMocHandle_4T moc,
                                     const char* attribute, long long count) override {
        steps.push_back("attrMultiplicityCheck " + std::to_string(count));
        return BiDirValidator::attrMultiplicityCheck(dn, moc, attribute, count);
    }
    void getAttributeFromMoc(VekOamSpiMrMocHandle_4T moc, const char* name,
                             VekOamSpiMrAttributeHandle_4T& attribute) override {
        steps.push_back("getAttributeFromMoc " + std::to_string(attribute));
        BiDirValidator::getAttributeFromMoc(moc, name, attribute);
    }
    void addThreadContextMessage(const std::string& message) override {
        steps.push_back("addThreadContextMessage");
        BiDirValidator::addThreadContextMessage(message);
    }
};

TEST_F(BiDirValidatorEdges, WorkListAndQuestions_AreThoseOfTheBookkeeping) {
    modelOfXAndY();
    stage.world.mo("X=1").with("ys", Scripted::refs({"Y=1"}));
    AskedUtils asked;
    asked.start();
    BiDirValidator judging(asked);
    judging.start();
    asked.addUpdatedBp(7, "X=1", "ys");
    EXPECT_EQ(judging.validateBiDirs(7, &valid), OrvOk);
    EXPECT_EQ(asked.asked,
              (Lines{"getModifiedBackPointers 7", "getBidirsForMoc", "findAssociationEnd by MOC"}));
}

TEST_F(BiDirValidatorEdges, Validation_GoesThroughItsVirtualSteps) {
    modelOfXAndY();
    stage.model.moc("Z");
    written({"Y=1", "Y=2", "Z=1"});
    SteppingValidator stepping(utils);
    stepping.start();
    EXPECT_EQ(stepping.validateBiDirs(1, &valid), OrvValidationFailed);
    EXPECT_EQ(stepping.steps,
              (Lines{"attrMultiplicityCheck 3", "getAttributeFromMoc 0", "biDirCardinalityCheck 2",
                     "attributeTypeCheck 1", "getAttributeFromMoc 0", "addThreadContextMessage"}));
}

}
}
