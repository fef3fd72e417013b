// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The codes that the classes of associations answer. The services look at none of them, so that no
// client sees them; code that uses the classes does.

#include "BiDirScene.h"
#include "UniDirValidator.h"

#include <algorithm>
#include <list>
#include <set>
#include <string>
#include <utility>

namespace BiDirTests {
namespace {

constexpr OrvReturnT hostsCode = 77; // nobody here knows it

class AssociationCodes : public Scene {
protected:
    AssociationCodes() { modelOfXAndY(); }

    /// X=1 is there and the classes are started.
    void startWithX() {
        stage.world.mo("X=1");
        start();
    }

    OrvReturnT modify(const Lines& references, unsigned long tx = 1) {
        return client.announce(tx, "X=1", "ys", references);
    }

    /// What is judged in transaction 1: the attribute `ys` of X=1.
    void written(const Lines& references) {
        stage.world.mo("X=1").with("ys", Scripted::refs(references));
        start();
        utils.addUpdatedBp(1, "X=1", "ys");
    }

    void expectVerdict(OrvReturnT code, bool verdict) {
        valid = !verdict;
        EXPECT_EQ(validate(1), code);
        EXPECT_EQ(valid, verdict);
    }
};

// -------------------------------------------------------------------------------------------------
// A write

TEST_F(AssociationCodes, Modify_NoModel_IsAFailure) {
    stage.missing = {Scripted::Part::ModelRepository};
    startWithX();
    EXPECT_EQ(modify({"Y=1"}), OrvFailure);
}

TEST_F(AssociationCodes, Modify_ClassOrOldValueNotThere_IsTheHostsCode) {
    startWithX();
    when("Model.getMocFromDn").on("'X=1'").nth(2).fails(hostsCode);
    when("VekRouter3.getMoAttribute").nth(1).fails(-5);
    EXPECT_EQ(modify({"Y=1"}), -5);
    EXPECT_EQ(modify({"Y=1"}), hostsCode);
    EXPECT_TRUE(utils.getModifiedBackPointers(1).empty());
    EXPECT_EQ(modify({"Y=1"}), OrvOk);
    EXPECT_EQ(utils.getModifiedBackPointers(1).size(), 1U);
}

TEST_F(AssociationCodes, AddUpdatedBp_InAnyOrder_HoldsEachPairOnce) {
    startWithX();
    using Pairs = std::set<std::pair<std::string, std::string>>;
    const Lines dns = {"X=1", "X=2", "X=3",  "X=4", "X=4", "X=2", "X=3",
                       "X=9", "X=8", "X=30", "X=1", "X=0", "X=3", "X=31"};
    for (const unsigned long tx : {1UL, 2UL, 1UL}) {
        Pairs expected;
        for (const std::string& dn : dns) {
            utils.addUpdatedBp(tx, dn.c_str(), "ys");
            utils.addUpdatedBp(tx, (dn + "0").c_str(), "ys");
            expected.emplace(dn, "ys");
            expected.emplace(dn + "0", "ys");
            EXPECT_TRUE(std::ranges::includes(utils.getModifiedBackPointers(tx), expected));
        }
        EXPECT_EQ(utils.getModifiedBackPointers(tx), expected);
    }
}

TEST_F(AssociationCodes, Modify_ClassInNoAssociation_IsOkAndRecordsNothing) {
    stage.model.moc("P").reference("others", "Y");
    stage.world.mo("P=1");
    start();
    EXPECT_EQ(client.announce(1, "P=1", "others", {"Q=1"}), OrvOk);
    EXPECT_TRUE(utils.modifiedBackPointers.empty());
}

// The code is that of the last class lookup, so the failure of an earlier one does not show. An
// association that is not the attribute's looks at no reference, and changes no code.
TEST_F(AssociationCodes, Modify_ReferencesWithoutClass_OnlyTheLastShows) {
    stage.model.biDir({"X", "zs"}, {"Z", "xs"});
    startWithX();
    EXPECT_EQ(modify({"Q=1", "Y=1"}), OrvOk);
    EXPECT_EQ(modify({"Y=1", "Q=1"}), OrvNotExist);
    stage.world.set("X=1", "ys", Scripted::refs({"Q=1"}));
    EXPECT_EQ(modify({}), OrvNotExist);
}

// -------------------------------------------------------------------------------------------------
// A deletion, a creation

TEST_F(AssociationCodes, Delete_NoModel_IsAFailure) {
    stage.missing = {Scripted::Part::ModelRepository};
    startWithX();
    EXPECT_EQ(utils.updateBackPointersForDelete(1, "X=1"), OrvFailure);
}

TEST_F(AssociationCodes, Delete_ClassNotThere_IsTheModelsCode) {
    startWithX();
    EXPECT_EQ(utils.updateBackPointersForDelete(1, "Q=1"), OrvNotExist);
    EXPECT_EQ(utils.updateBackpointers(1, "Q=1"), OrvNotExist);
    EXPECT_EQ(utils.updateBackPointersForDelete(1, "X=1"), OrvOk);
    EXPECT_EQ(utils.updateBackpointers(1, "X=1"), OrvOk);
}

TEST_F(AssociationCodes, Create_IsTheCodeOfTheRouterIfAnythingIsQueued) {
    startWithX();
    when("VekRouter3.existsMo").on("'Y=2'").fails(hostsCode);
    EXPECT_EQ(utils.updatePendingBackPointer(1, "Y=2", "id"), OrvOk);
    modify({"Y=1"});
    EXPECT_EQ(utils.updatePendingBackPointer(1, "Y=2", "id"), hostsCode);
    EXPECT_EQ(utils.updatePendingBackPointer(1, "Y=1", "id"), OrvOk);
}

TEST_F(AssociationCodes, SetMoAttr_IsTheCodeOfTheRouter) {
    startWithX();
    EXPECT_EQ(utils.setMoAttr(1, {}, "X=1", "ys"), OrvOk);
    EXPECT_EQ(utils.setMoAttr(1, {}, "X=2", "ys"), OrvNotExist);
    utils.moRouter = nullptr;
    EXPECT_EQ(utils.setMoAttr(1, {}, "X=1", "ys"), OrvFailure);
}

// -------------------------------------------------------------------------------------------------
// Questions, and the end

TEST_F(AssociationCodes, Questions_AreAlwaysAnswered) {
    startWithX();
    const auto moc = stage.model.mocFromDn("X=1").value();
    std::list<VekOamSpiMrBiDirAssociationHandle_4T> bidirs;
    EXPECT_EQ(utils.getBidirsForMoc(moc, bidirs), OrvOk);
    ASSERT_EQ(bidirs.size(), 1U);
    VekOamSpiMrAssociationEndHandle_4T end = 0;
    EXPECT_EQ(utils.findAssociationEnd(moc, bidirs.front(), end), OrvOk);
    EXPECT_EQ(end, firstEnd("X"));
    EXPECT_EQ(utils.findAssociationEnd(moc, "ys", bidirs.front(), end), OrvOk);
    EXPECT_EQ(end, firstEnd("X"));
    for (const char* call : {"Model.getFirstBiDirAssociation", "Model.getFirstEnd",
                             "Model.getSecondEnd", "Model.getEndMoc"}) {
        when(call).fails(hostsCode);
    }
    EXPECT_EQ(utils.getBidirsForMoc(moc, bidirs), OrvOk);
    EXPECT_EQ(bidirs.size(), 1U) << "nothing was appended";
    EXPECT_EQ(utils.findAssociationEnd(moc, bidirs.front(), end), OrvOk);
    EXPECT_EQ(utils.findAssociationEnd(moc, "ys", bidirs.front(), end), OrvOk);
}

TEST_F(AssociationCodes, Stop_ForgetsTheTablesAndKeepsTheStores) {
    startWithX();
    modify({"Y=1"});
    utils.stop();
    EXPECT_EQ(utils.moRouter, nullptr);
    EXPECT_FALSE(utils.hasModel());
    EXPECT_EQ(utils.pendingBackPointers.size(), 1U);
    EXPECT_EQ(utils.getModifiedBackPointers(1).size(), 1U);
    validator.stop();
    EXPECT_EQ(validator.moRouter, nullptr);
    EXPECT_EQ(validator.modelRepository, nullptr);
    EXPECT_EQ(validator.threadContext, nullptr);
}

// -------------------------------------------------------------------------------------------------
// A verdict

TEST_F(AssociationCodes, Validate_NothingWritten_IsValidAlsoWhenStopped) {
    expectVerdict(OrvOk, true);
}

TEST_F(AssociationCodes, Validate_StoppedOrStarvedOfAnyPart_IsNotActiveAndNotValid) {
    written({});
    const auto expectNotActive = [&] { expectVerdict(OrvNotActive, false); };
    validator.moRouter = nullptr;
    expectNotActive();
    validator.start();
    validator.modelRepository = nullptr;
    expectNotActive();
    validator.start();
    utils.modelRepository = nullptr;
    expectNotActive();
    utils.start();
    expectVerdict(OrvOk, true);
}

TEST_F(AssociationCodes, Validate_ValueCannotBeRead_IsTheHostsCodeAndNotValid) {
    written({});
    when("VekRouter3.getMoAttribute").fails(hostsCode);
    expectVerdict(hostsCode, false);
}

TEST_F(AssociationCodes, Validate_ExistenceIsUnknown_IsTheCodeOfTheLastAndValid) {
    written({});
    utils.addUpdatedBp(1, "X=2", "ys");
    when("VekRouter3.existsMo").on("X=2").fails(hostsCode);
    expectVerdict(hostsCode, true);
    when("VekRouter3.existsMo").on("X=1").fails(hostsCode);
    when("VekRouter3.existsMo").on("X=2").fails(OrvOk);
    expectVerdict(OrvOk, true);
}

TEST_F(AssociationCodes, Validate_EachViolation_IsAFailedValidation) {
    stage.model.moc("Z");
    stage.model.moc("X").reference("ys", "Y", 0, 3).attribute("label");
    stage.model.biDir({"P", "ys", 0, 0, "things"}, {"Y", "ps"});
    written({"Y=1", "Z=1"});
    expectVerdict(OrvValidationFailed, false); // a class that is not permitted
    stage.world.set("X=1", "ys", Scripted::refs({"Y=1", "Y=1", "Y=1", "Y=1"}));
    expectVerdict(OrvValidationFailed, false); // a multiplicity
    stage.world.set("X=1", "ys", Scripted::refs({"Q=1"}));
    expectVerdict(OrvValidationFailed, false); // a value without a class, while it is counted
    stage.world.remove("X=1");
    stage.world.mo("P=1").with("ys", Scripted::refs({"Y=1"}));
    utils.addUpdatedBp(1, "P=1", "ys");
    expectVerdict(OrvValidationFailed, false); // a cardinality
    stage.world.remove("P=1");
    stage.world.mo("Q=1").with("ys", Scripted::refs({}));
    utils.addUpdatedBp(1, "Q=1", "ys");
    expectVerdict(OrvValidationFailed, false); // an MO without a class
    stage.world.remove("Q=1");
    stage.world.mo("X=3").with("label", Scripted::strings({"text"}));
    utils.addUpdatedBp(1, "X=3", "label");
    expectVerdict(OrvValidationFailed, false); // no reference
}

TEST_F(AssociationCodes, Validate_LookupOrValueBad_IsTheirCodeAndNotValid) {
    stage.model.moc("X").reference("others", "Y");
    stage.world.mo("X=1").with("others", Scripted::refs({"Q=1"}));
    start();
    utils.addUpdatedBp(1, "X=1", "others");
    expectVerdict(OrvNotExist, false);
    stage.world.set("X=1", "others", Scripted::opaque(2, {42}));
    expectVerdict(OrvFailure, false);
}

TEST_F(AssociationCodes,
       Validate_References_VerdictsHaveTheirCodesAndFailuresLeaveTheVerdictAlone) {
    stage.model.uniDir("Foo", "peer", "Bar", 1, 2);
    OrvExtCmRouterService::UniDirValidator references;
    Scripted::Records records;
    const auto set = [&](const Lines& dns) {
        references.setMoRef(1, "Foo=1", "peer", records.container(Scripted::refs(dns)));
    };
    const auto expectUntouched = [&](OrvReturnT code) {
        for (const bool before : {true, false}) {
            bool verdict = before;
            EXPECT_EQ(references.validate(1, &verdict), code);
            EXPECT_EQ(verdict, before);
        }
    };
    expectUntouched(OrvNotActive);
    references.start();
    bool verdict = false;
    EXPECT_EQ(references.validate(1, &verdict), OrvOk);
    EXPECT_TRUE(verdict);
    set({});
    EXPECT_EQ(references.validate(1, &verdict), OrvValidationFailed);
    EXPECT_FALSE(verdict);
    set({"Bar"});
    expectUntouched(OrvFailure); // a reference that is no DN
    when("Model.getUniDirEnd").fails(hostsCode);
    set({"Bar=1"});
    set({"Bar=1"});
    references.stop();
    expectUntouched(OrvNotActive);
    stage.script.forgetCalls();
    set({"Bar=1"});
    EXPECT_EQ(stage.script.texts(), Lines());
}

}
}
