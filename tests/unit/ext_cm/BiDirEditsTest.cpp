// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "BiDirScene.h"

#include "LoggingWrapper.h"

namespace BiDirTests {
namespace {

class BiDirEdits : public Scene {
protected:
    BiDirEdits() {
        modelOfXAndY();
        stage.world.mo("X=1");
    }

    /// Y=1 is there, and its back-pointer holds \p references.
    void targetHolding(const Lines& references) {
        stage.world.mo("Y=1").with("xs", Scripted::refs(references));
    }

    void add(const std::string& target, const std::string& source) {
        utils.addMoToBackPointer(1, target.c_str(), source.c_str(), firstEnd("X"), "ys");
    }

    void remove(const std::string& target, const std::string& source) {
        utils.removeMoFromBackPointer(1, target.c_str(), source.c_str(), firstEnd("X"), "ys");
    }

    void diff(const Lines& fresh, const Lines& old) {
        Scripted::Records records;
        utils.getMoRefDiff(records.container(Scripted::refs(fresh)),
                           records.container(Scripted::refs(old)), toAdd, toRemove);
    }

    Lines toAdd;
    Lines toRemove;
};

TEST_F(BiDirEdits, GetMoRefDiff_OldListEmpty_AllIsAdded) {
    diff({"A=1", "A=2"}, {});
    EXPECT_EQ(toAdd, (Lines{"A=1", "A=2"}));
    EXPECT_EQ(toRemove, Lines());
    EXPECT_EQ(log.all(), (Lines{"trace: DN to be added to backpointer: A=1",
                                "trace: DN to be added to backpointer: A=2"}));
}

TEST_F(BiDirEdits, GetMoRefDiff_NewListEmpty_AllIsRemoved) {
    diff({}, {"A=1", "A=2"});
    EXPECT_EQ(toAdd, Lines());
    EXPECT_EQ(toRemove, (Lines{"A=1", "A=2"}));
    EXPECT_EQ(log.all(), (Lines{"trace: DN to be removed from backpointer: A=1",
                                "trace: DN to be removed from backpointer: A=2"}));
}

TEST_F(BiDirEdits, GetMoRefDiff_BothEmpty_Nothing) {
    diff({}, {});
    EXPECT_EQ(toAdd, Lines());
    EXPECT_EQ(toRemove, Lines());
}

TEST_F(BiDirEdits, GetMoRefDiff_SameValuesInAnotherOrder_Nothing) {
    diff({"A=1", "A=2", "A=3"}, {"A=3", "A=1", "A=2"});
    EXPECT_EQ(toAdd, Lines());
    EXPECT_EQ(toRemove, Lines());
}

TEST_F(BiDirEdits, GetMoRefDiff_Overlapping_KeepsTheOrderOfEachList) {
    diff({"Z=9", "B=1", "A=5", "C=1"}, {"D=7", "B=1", "C=1", "A=0"});
    EXPECT_EQ(toAdd, (Lines{"Z=9", "A=5"}));
    EXPECT_EQ(toRemove, (Lines{"D=7", "A=0"}));
}

TEST_F(BiDirEdits, GetMoRefDiff_RepeatedValue_IsRepeated) {
    diff({"A=1", "A=1"}, {"B=1", "B=1", "B=1"});
    EXPECT_EQ(toAdd, (Lines{"A=1", "A=1"}));
    EXPECT_EQ(toRemove, (Lines{"B=1", "B=1", "B=1"}));
}

TEST_F(BiDirEdits, GetMoRefDiff_RepeatedOnOneSideOnly_IsNoDifference) {
    diff({"A=1", "A=1"}, {"A=1"});
    EXPECT_EQ(toAdd, Lines());
    EXPECT_EQ(toRemove, Lines());
}

TEST_F(BiDirEdits, GetMoRefDiff_ComparesTextsAsTheyAre) {
    diff({"A=1", "a=1"}, {"A=1 "});
    EXPECT_EQ(toAdd, (Lines{"A=1", "a=1"}));
    EXPECT_EQ(toRemove, Lines{"A=1 "});
}

TEST_F(BiDirEdits, GetMoRefDiff_AppendsToWhatIsThere) {
    toAdd = {"old"};
    toRemove = {"older"};
    diff({"A=1"}, {"B=1"});
    EXPECT_EQ(toAdd, (Lines{"old", "A=1"}));
    EXPECT_EQ(toRemove, (Lines{"older", "B=1"}));
}

TEST_F(BiDirEdits, Add_TargetThere_AppendsAndRecords) {
    targetHolding({"X=8", "X=9"});
    start();
    add("Y=1", "X=1");
    EXPECT_EQ(calls(), joined({nameOfEnd("xs@X"), exists("Y=1"), read("Y=1", "xs"),
                               write("Y=1", "xs", {"X=8", "X=9", "X=1"}), release("Y=1.xs")}));
    EXPECT_EQ(modified(1), Lines{"Y=1.xs"});
    EXPECT_EQ(utils.pending(), Lines());
}

TEST_F(BiDirEdits, Add_AlreadyThere_StandsTwiceAfterwards) {
    targetHolding({"X=1"});
    start();
    add("Y=1", "X=1");
    EXPECT_EQ(refs("Y=1", "xs"), (Lines{"X=1", "X=1"}));
}

TEST_F(BiDirEdits, Add_ReadGivesNoContainer_CountsAsEmpty) {
    targetHolding({"X=8"});
    start();
    when("VekRouter3.getMoAttribute")
        .answers<OrvMoAttributeValueResult_3>([](OrvMoAttributeValueResult_3& out) {
            out = {nullptr, nullptr};
            return OrvOk;
        });
    add("Y=1", "X=1");
    EXPECT_EQ(refs("Y=1", "xs"), Lines{"X=1"});
}

TEST_F(BiDirEdits, Add_ReadLeavesAReleaseAndNoContainer_NothingIsReleased) {
    static int released = 0;
    released = 0;
    targetHolding({"X=8"});
    start();
    when("VekRouter3.getMoAttribute")
        .answers<OrvMoAttributeValueResult_3>([](OrvMoAttributeValueResult_3& out) {
            out = {[](OrvMoAttributeValueContainer_3*) { ++released; }, nullptr};
            return OrvOk;
        });
    add("Y=1", "X=1");
    EXPECT_EQ(refs("Y=1", "xs"), Lines{"X=1"});
    EXPECT_EQ(released, 0);
}

TEST_F(BiDirEdits, Add_ReadFails_LosesTheEditWithATrace) {
    targetHolding({});
    start();
    when("VekRouter3.getMoAttribute").fails(-5);
    add("Y=1", "X=1");
    EXPECT_EQ(calls(), joined({nameOfEnd("xs@X"), exists("Y=1"), read("Y=1", "xs")}));
    EXPECT_EQ(log.all(), Lines{"trace: Error code -5 received when reading attribute xs in Y=1."});
    EXPECT_EQ(utils.pending(), Lines());
    EXPECT_EQ(modified(1), Lines());
}

TEST_F(BiDirEdits, Add_ReadFailsWithAResult_ReleasesIt) {
    targetHolding({"X=8"});
    start();
    when("VekRouter3.getMoAttribute").returns(-5);
    add("Y=1", "X=1");
    EXPECT_EQ(calls(),
              joined({nameOfEnd("xs@X"), exists("Y=1"), read("Y=1", "xs"), release("Y=1.xs")}));
}

TEST_F(BiDirEdits, Add_ResultWithoutRelease_IsLeftAlone) {
    targetHolding({"X=8"});
    start();
    Scripted::Records records;
    when("VekRouter3.getMoAttribute")
        .answers<OrvMoAttributeValueResult_3>([&](OrvMoAttributeValueResult_3& out) {
            out = {nullptr, records.container(Scripted::refs({"X=8"}))};
            return OrvOk;
        });
    add("Y=1", "X=1");
    EXPECT_EQ(refs("Y=1", "xs"), (Lines{"X=8", "X=1"}));
}

TEST_F(BiDirEdits, Add_WriteFails_IsTracedAndNotRecorded) {
    targetHolding({"X=8"});
    start();
    when("VekRouter3.setMoAttribute").fails(-6);
    add("Y=1", "X=1");
    EXPECT_EQ(calls(), joined({nameOfEnd("xs@X"), exists("Y=1"), read("Y=1", "xs"),
                               write("Y=1", "xs", {"X=8", "X=1"}), release("Y=1.xs")}));
    EXPECT_EQ(log.all(), Lines{"trace: Error code -6 received when setting attribute xs in Y=1."});
    EXPECT_EQ(modified(1), Lines());
    EXPECT_TRUE(utils.modifiedBackPointers.empty());
}

TEST_F(BiDirEdits, Add_TargetNotThere_QueuesAndWritesNothing) {
    start();
    add("Y=1", "X=1");
    EXPECT_EQ(calls(), joined({nameOfEnd("xs@X"), exists("Y=1")}));
    ASSERT_EQ(utils.pendingBackPointers.size(), 1U);
    const auto& [key, record] = *utils.pendingBackPointers.begin();
    EXPECT_EQ(key, "Y=1");
    EXPECT_EQ(record.txHandle, 1U);
    EXPECT_EQ(record.backPointerAttribute, "xs");
    EXPECT_EQ(record.end, firstEnd("X"));
    EXPECT_EQ(record.sourceDn, "X=1");
    EXPECT_TRUE(record.active);
    EXPECT_EQ(record.sourceAttribute, "ys");
}

TEST_F(BiDirEdits, Add_ExistsFails_QueuesAlthoughTheTargetIsThere) {
    targetHolding({});
    start();
    when("VekRouter3.existsMo").returns(-5);
    add("Y=1", "X=1");
    EXPECT_EQ(calls(), joined({nameOfEnd("xs@X"), exists("Y=1")}));
    EXPECT_EQ(utils.pending(), Lines{"Y=1 <- X=1 (tx 1, xs, ys)"});
}

TEST_F(BiDirEdits, Add_Queued_KeepsTheOrderUnderOneKey) {
    start();
    add("Y=1", "X=3");
    add("Y=1", "X=1");
    add("Y=1", "X=2");
    EXPECT_EQ(utils.pending(), (Lines{"Y=1 <- X=3 (tx 1, xs, ys)", "Y=1 <- X=1 (tx 1, xs, ys)",
                                      "Y=1 <- X=2 (tx 1, xs, ys)"}));
}

TEST_F(BiDirEdits, Add_BackPointerWithoutName_IsReadUnderAnEmptyName) {
    targetHolding({});
    start();
    when("Model.getGeneralStringProperty").fails(-5);
    add("Y=1", "X=1");
    EXPECT_EQ(calls(), joined({nameOfEnd("xs@X"), exists("Y=1"), read("Y=1", "")}));
}

TEST_F(BiDirEdits, Remove_TakesTheFirstOccurrenceOnly) {
    targetHolding({"X=8", "X=1", "X=9", "X=1"});
    start();
    remove("Y=1", "X=1");
    EXPECT_EQ(calls(), joined({exists("Y=1"), nameOfEnd("xs@X"), read("Y=1", "xs"),
                               write("Y=1", "xs", {"X=8", "X=9", "X=1"}), release("Y=1.xs")}));
    EXPECT_EQ(modified(1), Lines{"Y=1.xs"});
}

TEST_F(BiDirEdits, Remove_NotThere_WritesTheListUnchangedAndRecords) {
    targetHolding({"X=8", "X=9"});
    start();
    remove("Y=1", "X=1");
    EXPECT_EQ(calls(), joined({exists("Y=1"), nameOfEnd("xs@X"), read("Y=1", "xs"),
                               write("Y=1", "xs", {"X=8", "X=9"}), release("Y=1.xs")}));
    EXPECT_EQ(modified(1), Lines{"Y=1.xs"});
}

TEST_F(BiDirEdits, Remove_TheLastValue_WritesAnEmptyReference) {
    targetHolding({"X=1"});
    start();
    remove("Y=1", "X=1");
    EXPECT_EQ(calls(), joined({exists("Y=1"), nameOfEnd("xs@X"), read("Y=1", "xs"),
                               write("Y=1", "xs", {}), release("Y=1.xs")}));
    EXPECT_EQ(refs("Y=1", "xs"), Lines());
}

TEST_F(BiDirEdits, Remove_ReadFails_StopsWithATrace) {
    targetHolding({"X=1"});
    start();
    when("VekRouter3.getMoAttribute").returns(-5);
    remove("Y=1", "X=1");
    EXPECT_EQ(calls(),
              joined({exists("Y=1"), nameOfEnd("xs@X"), read("Y=1", "xs"), release("Y=1.xs")}));
    EXPECT_EQ(log.all(), Lines{"trace: Error code -5 received when reading attribute xs in Y=1."});
    EXPECT_EQ(modified(1), Lines());
}

TEST_F(BiDirEdits, Remove_WriteFails_IsTracedAndNotRecorded) {
    targetHolding({"X=1"});
    start();
    when("VekRouter3.setMoAttribute").fails(-6);
    remove("Y=1", "X=1");
    EXPECT_EQ(log.all(), Lines{"trace: Error code -6 received when setting attribute xs in Y=1."});
    EXPECT_EQ(modified(1), Lines());
}

TEST_F(BiDirEdits, Remove_TargetNotThere_WithdrawsWhatTheSourceHasQueuedForAnyTarget) {
    start();
    add("Y=1", "X=1");
    add("Y=2", "X=1");
    add("Y=2", "X=1,Z=3"); // begins with the same text
    add("Y=2", "X=2");
    utils.addMoToBackPointer(1, "Y=2", "X=1", firstEnd("X"), "others");
    utils.addMoToBackPointer(2, "Y=2", "X=1", firstEnd("X"), "ys");
    forget();
    remove("Y=1", "X=1");
    EXPECT_EQ(calls(), exists("Y=1"));
    EXPECT_EQ(utils.pending(), (Lines{"Y=2 <- X=2 (tx 1, xs, ys)", "Y=2 <- X=1 (tx 1, xs, others)",
                                      "Y=2 <- X=1 (tx 2, xs, ys)"}));
}

TEST_F(BiDirEdits, Remove_ExistsFails_WithdrawsToo) {
    targetHolding({"X=1"});
    start();
    add("Y=2", "X=1");
    when("VekRouter3.existsMo").returns(-5);
    remove("Y=1", "X=1");
    EXPECT_EQ(utils.pending(), Lines());
    EXPECT_EQ(refs("Y=1", "xs"), Lines{"X=1"});
}

TEST_F(BiDirEdits, SetMoAttr_GivesTheRoutersCode) {
    targetHolding({});
    start();
    EXPECT_EQ(utils.setMoAttr(1, {"X=1"}, "Y=1", "xs"), OrvOk);
    EXPECT_EQ(utils.setMoAttr(1, {"X=1"}, "Y=2", "xs"), OrvNotExist);
    EXPECT_EQ(modified(1), Lines{"Y=1.xs"});
    EXPECT_EQ(log.all(), Lines{"trace: Error code -2 received when setting attribute xs in Y=2."});
}

TEST_F(BiDirEdits, WithoutRouter_EveryEditIsQueuedOrTraced) {
    stage.missing = {Scripted::Part::VekRouter3};
    start();
    add("Y=1", "X=1");
    EXPECT_EQ(utils.pending(), Lines{"Y=1 <- X=1 (tx 1, xs, ys)"});
    remove("Y=1", "X=1");
    EXPECT_EQ(utils.pending(), Lines());
    EXPECT_EQ(utils.setMoAttr(1, {}, "Y=1", "xs"), OrvFailure);
}

TEST_F(BiDirEdits, EveryTrace_GoesOutInBothFormsUnderTheClasssSourceName) {
    targetHolding({});
    start();
    std::vector<Orv::LogRecord> records;
    Orv::LoggingWrapper::instance()->setSink(
        [&](const Orv::LogRecord& record) { records.push_back(record); });
    when("VekRouter3.setMoAttribute").fails(-6);
    utils.setMoAttr(1, {}, "Y=1", "xs");
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[0].form, Orv::LogRecord::Form::Trace);
    EXPECT_EQ(records[0].kind, 0);
    EXPECT_EQ(records[1].form, Orv::LogRecord::Form::TraceV2);
    EXPECT_EQ(records[1].subsystem, Orv::Trace::ExtCm);
    EXPECT_EQ(records[1].level, 14);
    for (const Orv::LogRecord& record : records) {
        EXPECT_EQ(record.file, "src/ext_cm/src/BiDirUtils");
        EXPECT_EQ(record.function, "setMoAttr");
        EXPECT_EQ(record.text, "Error code -6 received when setting attribute xs in Y=1.");
    }
}

}
}
