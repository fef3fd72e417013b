// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Whole transactions, from the first write over the verdict to the end.

#include "Network.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

using namespace Scripted;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class EndToEnd : public Network {
protected:
    /// Breaks a bound of an association that is kept on both sides.
    void breakCells(unsigned long txHandle) {
        ASSERT_EQ(
            client().set(txHandle, unit("7"), "cells", refs({cell("1"), cell("2"), cell("3")})),
            OrvOk);
    }

    /// Breaks a bound of a reference that the other side does not know.
    void breakSite(unsigned long txHandle) {
        ASSERT_EQ(client().set(txHandle, unit("7"), "site", refs({site("1"), site("1")})), OrvOk);
    }
};

namespace {

const std::string kTooManyCells =
    "Attribute cells in ManagedElement=1,Unit=7 contains 3 cells which is not within cardinality "
    "range (0..2).";
const std::string kTooManySites =
    "Attribute site in ManagedElement=1,Unit=7 contains 2 Site which is not within cardinality "
    "range (0..1).";

}

TEST_F(EndToEnd, OneReference_EveryCallInItsPlace) {
    // A client sets a reference attribute.
    EXPECT_EQ(client().set(1, unit("7"), "cells", refs({cell("1")})), OrvOk);
    EXPECT_THAT(milestones(),
                ElementsAre("Transaction.join(1, OrvOamSpiTransactionalResource)",
                            "Model.getFirstBiDirAssociation('Unit')",
                            "VekRouter3.getMoAttribute(1, 'ManagedElement=1,Unit=7', 'cells')",
                            "VekRouter3.existsMo(1, 'ManagedElement=1,Cell=1')",
                            "VekRouter3.getMoAttribute(1, 'ManagedElement=1,Cell=1', 'unit')",
                            "VekRouter3.setMoAttribute(1, 'ManagedElement=1,Cell=1', 'unit', "
                            "MoRef['ManagedElement=1,Unit=7'])",
                            "Producer.release('ManagedElement=1,Cell=1.unit')",
                            "Producer.release('ManagedElement=1,Unit=7.cells')",
                            "Model.getFirstUniDirAssociation('Unit')",
                            "Router3.setMoAttribute(1, 'ManagedElement=1,Unit=7', 'cells', "
                            "MoRef['ManagedElement=1,Cell=1'])"));

    // The host asks for the verdict: both sides are examined.
    host.forget();
    EXPECT_TRUE(validate(1));
    EXPECT_THAT(milestones(),
                ElementsAre("VekRouter3.existsMo(1, 'ManagedElement=1,Cell=1')",
                            "VekRouter3.getMoAttribute(1, 'ManagedElement=1,Cell=1', 'unit')",
                            "Model.getFirstBiDirAssociation('Cell')",
                            "Producer.release('ManagedElement=1,Cell=1.unit')",
                            "VekRouter3.existsMo(1, 'ManagedElement=1,Unit=7')",
                            "VekRouter3.getMoAttribute(1, 'ManagedElement=1,Unit=7', 'cells')",
                            "Model.getFirstBiDirAssociation('Unit')",
                            "Producer.release('ManagedElement=1,Unit=7.cells')"));
    EXPECT_THAT(host.messages(), IsEmpty());

    // The transaction ends.
    host.forget();
    EXPECT_EQ(host.resource().prepare(1), OrvOk);
    EXPECT_EQ(host.resource().commit(1), OrvOk);
    EXPECT_EQ(host.resource().finish(1), OrvOk);
    EXPECT_THAT(host.calls(), IsEmpty());
    EXPECT_EQ(client().set(1, unit("8"), "label", strings({"y"})), OrvOk);
    EXPECT_EQ(host.calls().front(), "Transaction.join(1, OrvOamSpiTransactionalResource)");
}

TEST_F(EndToEnd, UnidirectionalReference_IsRecordedAndJudged) {
    EXPECT_EQ(client().set(1, unit("7"), "site", refs({site("1")})), OrvOk);
    EXPECT_TRUE(validate(1));
    breakSite(1);
    EXPECT_FALSE(validate(1));
    EXPECT_THAT(host.messages(), ElementsAre(kTooManySites));
}

TEST_F(EndToEnd, BothKindsBroken_TheClientHearsOfBoth) {
    breakCells(1);
    breakSite(1);
    EXPECT_FALSE(validate(1));
    EXPECT_THAT(host.messages(), ElementsAre(kTooManyCells, kTooManySites));
    for (const Call& call : host.callRecords("ThreadContext.")) {
        EXPECT_EQ(call.arguments.at(0).number, 1U);
    }
}

TEST_F(EndToEnd, OnlyTheFirstKindBroken_TheSecondIsStillExamined) {
    breakCells(1);
    ASSERT_EQ(client().set(1, unit("7"), "site", refs({site("1")})), OrvOk);
    host.forget();
    EXPECT_FALSE(validate(1));
    EXPECT_THAT(host.messages(), ElementsAre(kTooManyCells));
    EXPECT_THAT(host.calls(), Contains("Model.getMocFromDn('ManagedElement=1,Site=1', 1)"));
}

TEST_F(EndToEnd, OnlyTheSecondKindBroken_IsFalse) {
    breakSite(1);
    EXPECT_FALSE(validate(1));
    EXPECT_THAT(host.messages(), ElementsAre(kTooManySites));
}

TEST_F(EndToEnd, BrokenAndThenMended_IsTrue) {
    breakCells(1);
    breakSite(1);
    EXPECT_FALSE(validate(1));
    EXPECT_EQ(client().set(1, unit("7"), "cells", refs({cell("3")})), OrvOk);
    EXPECT_EQ(client().set(1, unit("7"), "site", refs({})), OrvOk);
    EXPECT_TRUE(validate(1));
}

TEST_F(EndToEnd, ValidateTwice_TheMessagesComeTwice) {
    breakCells(1);
    EXPECT_FALSE(validate(1));
    EXPECT_FALSE(validate(1));
    EXPECT_THAT(host.messages(), ElementsAre(kTooManyCells, kTooManyCells));
}

TEST_F(EndToEnd, MessageRefusedByTheHost_TheVerdictStands) {
    breakCells(1);
    breakSite(1);
    host.when("ThreadContext.addMessage").fails(-42);
    host.logLevel(4).forget();
    EXPECT_FALSE(validate(1));
    std::vector<std::string> texts;
    for (const auto& record : host.logRecords()) {
        if (record.form == Orv::LogRecord::Form::Log) {
            texts.push_back(record.text);
        }
    }
    EXPECT_THAT(
        texts,
        ElementsAre("Failed to add message to thread context. Message: [" + kTooManyCells + "]",
                    "Failed to add message to thread context. Message: [" + kTooManySites + "]"));
}

TEST_F(EndToEnd, FirstValidatorThrows_NoVerdictAndTheSecondDoesNotRun) {
    breakCells(1);
    breakSite(1);
    host.when("VekRouter3.existsMo").once().throws(std::runtime_error("router"));
    bool result = true;
    EXPECT_EQ(host.resource().validate(1, &result), OrvFailure);
    EXPECT_TRUE(result); // untouched
    EXPECT_THAT(host.messages(), IsEmpty());
    EXPECT_FALSE(validate(1));
}

TEST_F(EndToEnd, SecondValidatorThrows_NoVerdict) {
    breakSite(1); // content for the first validator, so that only the second has a message
    host.when("ThreadContext.addMessage").once().throws(std::runtime_error("context"));
    bool result = true;
    EXPECT_EQ(host.resource().validate(1, &result), OrvFailure);
    EXPECT_TRUE(result); // untouched
    EXPECT_FALSE(validate(1));
}

TEST_F(EndToEnd, ModelFailsUnderTheSecondValidator_NoVerdictIsFalse) {
    ASSERT_EQ(client().set(1, unit("7"), "site", refs({site("1")})), OrvOk);
    host.when("Model.getUniDirEnd").fails(-42);
    EXPECT_FALSE(validate(1));
}

TEST_F(EndToEnd, TwoTransactions_AreJudgedApart) {
    breakCells(1);
    EXPECT_EQ(client().set(2, unit("8"), "site", refs({site("1")})), OrvOk);
    EXPECT_TRUE(validate(2));
    EXPECT_FALSE(validate(1));
    EXPECT_EQ(host.resource().finish(1), OrvOk);
    EXPECT_TRUE(validate(2));
}

TEST_F(EndToEnd, Finish_DropsTheRecordedReferences) {
    breakSite(1);
    EXPECT_FALSE(validate(1));
    EXPECT_EQ(host.resource().finish(1), OrvOk);
    // The pair of the written attribute stays with the handle, its recorded value does not: what
    // the handle is used for again is judged by what the router holds then.
    EXPECT_TRUE(validate(1));
}

TEST_F(EndToEnd, HandleUsedAgain_TheWrittenPairsAreJudgedAgain) {
    ASSERT_EQ(client().set(1, unit("7"), "cells", refs({cell("1")})), OrvOk);
    EXPECT_EQ(host.resource().finish(1), OrvOk);
    host.forget();
    EXPECT_TRUE(validate(1));
    EXPECT_THAT(host.calls(), Contains("VekRouter3.existsMo(1, 'ManagedElement=1,Unit=7')"));
}

TEST_F(EndToEnd, CommitAndAbort_KeepWhatWaits) {
    ASSERT_EQ(client().set(1, unit("7"), "cells", refs({cell("9")})), OrvOk);
    EXPECT_EQ(host.resource().prepare(1), OrvOk);
    EXPECT_EQ(host.resource().commit(1), OrvOk);
    EXPECT_EQ(host.resource().abort(1), OrvOk);
    EXPECT_EQ(client().create(1, kRoot, "Cell", "cellId", "9"), OrvOk);
    EXPECT_THAT(host.world().references(cellInside("9"), "unit"), ElementsAre(unitInside("7")));
}

TEST_F(EndToEnd, SectorMovesAndItsAntennaIsDeleted_EverythingFollows) {
    EXPECT_EQ(
        client().create(1, kRoot, "Unit", "unitId", "9",
                        {{"cells", refs({cell("1"), cell("2")})}, {"site", refs({site("1")})}}),
        OrvOk);
    EXPECT_EQ(host.client3_1().set(1, unit("9"), {{"cells", refs({cell("2"), cell("3")})}}), OrvOk);
    EXPECT_TRUE(validate(1));
    EXPECT_THAT(host.world().references(cellInside("1"), "unit"), IsEmpty());
    EXPECT_THAT(host.world().references(cellInside("3"), "unit"), ElementsAre(unitInside("9")));
    EXPECT_EQ(client().remove(1, unit("9")), OrvOk);
    EXPECT_THAT(host.world().references(cellInside("2"), "unit"), IsEmpty());
    EXPECT_THAT(host.world().references(cellInside("3"), "unit"), IsEmpty());
    EXPECT_TRUE(validate(1));
    EXPECT_EQ(host.resource().finish(1), OrvOk);
    EXPECT_THAT(host.messages(), IsEmpty());
}

// Hosts that lack something.

class PoorHost : public testing::TestWithParam<Part> {};

TEST_P(PoorHost, WritesReachTheRouterAllTheSame) {
    Host host;
    host.model().biDir({"Unit", "cells"}, {"Cell", "unit"});
    host.mo("Unit=7").with("cells", refs({}));
    host.mo("Cell=1").with("unit", refs({}));
    host.without(GetParam()).start();
    EXPECT_EQ(host.client().set(1, "Unit=7", "label", strings({"y"})), OrvOk);
    EXPECT_EQ(host.client().create(1, "", "Unit", "unitId", "9"), OrvOk);
    EXPECT_EQ(host.client().remove(1, "Unit=9"), OrvOk);
    EXPECT_EQ(host.client().set(1, "Unit=7", "cells", refs({"Cell=1"})), OrvOk);
    EXPECT_EQ(host.client3_1().set(1, "Unit=7", {{"cells", refs({})}}), OrvOk);
    EXPECT_EQ(host.resource().finish(1), OrvOk);
}

INSTANTIATE_TEST_SUITE_P(Lacks, PoorHost,
                         testing::Values(Part::ModelRepository, Part::ThreadContext,
                                         Part::Portal3));

TEST(ThreadContextMissing, BrokenBound_IsFalseWithoutAText) {
    Host host;
    host.model().biDir({"Unit", "cells", 0, 1}, {"Cell", "unit"});
    host.mo("Unit=7").with("cells", refs({}));
    host.mo("Cell=1");
    host.mo("Cell=2");
    host.without(Part::ThreadContext).start();
    EXPECT_EQ(host.client().set(1, "Unit=7", "cells", refs({"Cell=1", "Cell=2"})), OrvOk);
    bool result = true;
    EXPECT_EQ(host.resource().validate(1, &result), OrvOk);
    EXPECT_FALSE(result);
    EXPECT_THAT(host.logs(),
                Contains("log 3 addThreadContextMessage: ExtCm ThreadContext is null"));
}

TEST(ModelMissing, ReferenceWritten_IsLoggedAndTheWriteGoesOn) {
    Host host;
    host.mo("Unit=7");
    host.without(Part::ModelRepository).start();
    EXPECT_EQ(host.client().set(1, "Unit=7", "cells", refs({"Cell=1"})), OrvOk);
    EXPECT_THAT(host.logs(), Contains("log 3 updateBackPointersForModify: "
                                      "VekOamSpiModelRepository_4T pointer is null."));
    EXPECT_EQ(host.calls().back(), "Router3.setMoAttribute(1, 'Unit=7', 'cells', MoRef['Cell=1'])");
}
