// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "BiDirScene.h"

#include <stdexcept>

namespace BiDirTests {
namespace {

class BiDirPending : public Scene {
protected:
    BiDirPending() { modelOfXAndY(); }

    /// \p source waits in transaction \p tx for \p target.
    void queue(unsigned long tx, const std::string& target, const std::string& source,
               const std::string& attribute = "ys") {
        utils.addMoToBackPointer(tx, target.c_str(), source.c_str(), firstEnd("X"),
                                 attribute.c_str());
    }

    OrvReturnT flush(unsigned long tx, const std::string& key) {
        return utils.updatePendingBackPointer(tx, key, "id");
    }
};

TEST_F(BiDirPending, Flush_EmptyStore_AsksTheRouterNothing) {
    stage.world.mo("Y=1");
    start();
    EXPECT_EQ(flush(1, "Y=1"), OrvOk);
    EXPECT_EQ(calls(), Lines());
    EXPECT_EQ(log.all(), Lines{"entry:  >> key = Y=1"});
}

TEST_F(BiDirPending, Flush_StoreWithOtherThingsOnly_AsksWhetherTheMoExists) {
    start();
    queue(7, "Y=9", "X=1");
    stage.world.mo("Y=1");
    forget();
    EXPECT_EQ(flush(1, "Y=1"), OrvOk);
    EXPECT_EQ(calls(), exists("Y=1")) << "another transaction's record makes the store not empty";
}

TEST_F(BiDirPending, Flush_AppliesInTheOrderOfQueueingAndErases) {
    start();
    queue(1, "Y=1", "X=3");
    queue(1, "Y=2", "X=9");
    queue(1, "Y=1", "X=1");
    stage.world.mo("Y=1").with("xs", Scripted::refs({"X=8"}));
    forget();
    EXPECT_EQ(flush(1, "Y=1"), OrvOk);
    const Lines name = nameOfEnd("xs@X");
    EXPECT_EQ(block(calls()),
              block(joined({exists("Y=1"), name, exists("Y=1"), read("Y=1", "xs"),
                            write("Y=1", "xs", {"X=8", "X=3"}), release("Y=1.xs"), name,
                            exists("Y=1"), read("Y=1", "xs"),
                            write("Y=1", "xs", {"X=8", "X=3", "X=1"}), release("Y=1.xs")})));
    EXPECT_EQ(utils.pending(), Lines{"Y=2 <- X=9 (tx 1, xs, ys)"});
    EXPECT_EQ(modified(1), Lines{"Y=1.xs"});
}

TEST_F(BiDirPending, Flush_OtherTransactionsRecordsStay) {
    start();
    queue(1, "Y=1", "X=1");
    queue(2, "Y=1", "X=2");
    stage.world.mo("Y=1");
    EXPECT_EQ(flush(1, "Y=1"), OrvOk);
    EXPECT_EQ(refs("Y=1", "xs"), Lines{"X=1"});
    EXPECT_EQ(utils.pending(), Lines{"Y=1 <- X=2 (tx 2, xs, ys)"});
    EXPECT_EQ(modified(2), Lines());
}

TEST_F(BiDirPending, Flush_InactiveRecord_IsPassedOverAndStays) {
    start();
    queue(1, "Y=1", "X=1");
    queue(1, "Y=1", "X=2");
    utils.pendingBackPointers.begin()->second.active = false;
    stage.world.mo("Y=1");
    EXPECT_EQ(flush(1, "Y=1"), OrvOk);
    EXPECT_EQ(refs("Y=1", "xs"), Lines{"X=2"});
    EXPECT_EQ(utils.pending(), Lines{"Y=1 <- X=1 (tx 1, xs, ys)"});
}

TEST_F(BiDirPending, Flush_KeyIsTheWholeDn) {
    start();
    queue(1, "Y=1", "X=1");
    queue(1, "Y=10", "X=2");
    stage.world.mo("Y=1");
    stage.world.mo("Y=10");
    flush(1, "Y=1");
    EXPECT_EQ(utils.pending(), Lines{"Y=10 <- X=2 (tx 1, xs, ys)"});
}

TEST_F(BiDirPending, Flush_MoNotThere_TracesAndKeeps) {
    start();
    queue(1, "Y=1", "X=1");
    forget();
    EXPECT_EQ(flush(1, "Y=1"), OrvOk);
    EXPECT_EQ(calls(), exists("Y=1"));
    EXPECT_EQ(log.all(),
              (Lines{"entry:  >> key = Y=1", "trace: Y=1 doesn't exist or couldn't be read"}));
    EXPECT_EQ(utils.pending(), Lines{"Y=1 <- X=1 (tx 1, xs, ys)"});
}

TEST_F(BiDirPending, Flush_ExistsFails_GivesItsCodeAndKeeps) {
    start();
    queue(1, "Y=1", "X=1");
    stage.world.mo("Y=1");
    when("VekRouter3.existsMo").returns(-5);
    forget();
    EXPECT_EQ(flush(1, "Y=1"), -5);
    EXPECT_EQ(calls(), exists("Y=1"));
    EXPECT_EQ(log.all(),
              (Lines{"entry:  >> key = Y=1", "trace: Y=1 doesn't exist or couldn't be read"}));
    EXPECT_EQ(utils.pending(), Lines{"Y=1 <- X=1 (tx 1, xs, ys)"});
}

// The MO is seen by the flush and then, for one record, no longer: what is queued anew under the
// same key waits for a later flush, and the walk ends.
TEST_F(BiDirPending, Flush_RecordQueuedAnewMeanwhile_StaysForALaterOne) {
    start();
    queue(1, "Y=1", "X=1");
    queue(1, "Y=1", "X=2");
    stage.world.mo("Y=1");
    when("VekRouter3.existsMo").nth(2).fails(-5); // the first is the flush's own
    forget();
    EXPECT_EQ(flush(1, "Y=1"), OrvOk);
    EXPECT_EQ(utils.pending(), Lines{"Y=1 <- X=1 (tx 1, xs, id)"})
        << "under the attribute that the flush was given";
    EXPECT_EQ(refs("Y=1", "xs"), Lines{"X=2"});
    EXPECT_EQ(flush(1, "Y=1"), OrvOk);
    EXPECT_EQ(refs("Y=1", "xs"), (Lines{"X=2", "X=1"}));
    EXPECT_EQ(utils.pending(), Lines());
}

TEST_F(BiDirPending, Flush_MoNeverSeenByTheEdits_EndsAllTheSame) {
    start();
    queue(1, "Y=1", "X=1");
    stage.world.mo("Y=1");
    when("VekRouter3.existsMo").fails(-5);
    when("VekRouter3.existsMo").once().returns(OrvOk);
    forget();
    EXPECT_EQ(flush(1, "Y=1"), OrvOk);
    EXPECT_EQ(utils.pending(), Lines{"Y=1 <- X=1 (tx 1, xs, id)"});
}

TEST_F(BiDirPending, Flush_EditsFail_RecordsAreGoneWithATrace) {
    start();
    queue(1, "Y=1", "X=1");
    queue(1, "Y=1", "X=2");
    stage.world.mo("Y=1");
    when("VekRouter3.getMoAttribute").once().fails(-5);
    when("VekRouter3.setMoAttribute").once().fails(-6);
    forget();
    EXPECT_EQ(flush(1, "Y=1"), OrvOk);
    EXPECT_EQ(log.of("trace: Error"),
              (Lines{"trace: Error code -5 received when reading attribute xs in Y=1.",
                     "trace: Error code -6 received when setting attribute xs in Y=1."}));
    EXPECT_EQ(utils.pending(), Lines());
    EXPECT_EQ(modified(1), Lines());
}

TEST_F(BiDirPending, Flush_BackPointerWithoutName_IsLost) {
    start();
    queue(1, "Y=1", "X=1");
    stage.world.mo("Y=1");
    when("Model.getEndGeneralProperties").fails(-5);
    forget();
    EXPECT_EQ(flush(1, "Y=1"), OrvOk);
    EXPECT_EQ(calls(), joined({exists("Y=1"),
                               {"Model.getEndGeneralProperties('xs@X')",
                                "Model.getGeneralStringProperty('0', 0)"},
                               exists("Y=1"),
                               read("Y=1", "")}));
    EXPECT_EQ(utils.pending(), Lines());
}

TEST_F(BiDirPending, Flush_StartedAnewWithoutRepository_IsLostWithATrace) {
    start();
    queue(1, "Y=1", "X=1");
    utils.modelRepository = nullptr;
    stage.world.mo("Y=1");
    forget();
    EXPECT_EQ(flush(1, "Y=1"), OrvOk);
    EXPECT_EQ(log.of("trace: Error"),
              Lines{"trace: Error code -2 received when reading attribute  in Y=1."});
    EXPECT_EQ(utils.pending(), Lines());
}

TEST_F(BiDirPending, Flush_EditThrows_KeepsTheRecordAndLetsGoOfTheLock) {
    start();
    queue(1, "Y=1", "X=1");
    stage.world.mo("Y=1");
    when("VekRouter3.setMoAttribute").once().throws(std::runtime_error("no"));
    EXPECT_THROW(flush(1, "Y=1"), std::runtime_error);
    EXPECT_EQ(utils.pending(), Lines{"Y=1 <- X=1 (tx 1, xs, ys)"});
    EXPECT_EQ(flush(1, "Y=1"), OrvOk);
    EXPECT_EQ(refs("Y=1", "xs"), Lines{"X=1"});
}

TEST_F(BiDirPending, TargetOfALaterTransaction_GetsNothingOnceTheFirstIsFinished) {
    start();
    queue(1, "Y=1", "X=1");
    utils.removePendingBackpointersForTransaction(1);
    stage.world.mo("Y=1");
    EXPECT_EQ(flush(2, "Y=1"), OrvOk);
    EXPECT_EQ(refs("Y=1", "xs"), Lines());
}

TEST_F(BiDirPending, ForTransaction_DropsItsRecordsAndNoOthers) {
    start();
    queue(1, "Y=1", "X=1");
    queue(2, "Y=1", "X=2");
    queue(1, "Y=3", "X=1", "others");
    utils.removePendingBackpointersForTransaction(1);
    EXPECT_EQ(utils.pending(), Lines{"Y=1 <- X=2 (tx 2, xs, ys)"});
    utils.removePendingBackpointersForTransaction(1);
    utils.removePendingBackpointersForTransaction(2);
    EXPECT_EQ(utils.pending(), Lines());
}

// The match is by text: A=10 is not below A=1, and is dropped with it.
TEST_F(BiDirPending, ForDeletedMo_DropsEverySourceThatBeginsWithItsText) {
    start();
    queue(1, "Y=1", "A=1");
    queue(1, "Y=2", "A=1,B=2");
    queue(1, "Y=3", "A=10");
    queue(1, "Y=4", "A=2");
    queue(1, "A=1", "A=3");
    queue(2, "Y=5", "A=1");
    utils.removePendingBackPointerUpdates(1, "A=1");
    EXPECT_EQ(utils.pending(), (Lines{"A=1 <- A=3 (tx 1, xs, ys)", "Y=4 <- A=2 (tx 1, xs, ys)",
                                      "Y=5 <- A=1 (tx 2, xs, ys)"}));
}

TEST_F(BiDirPending, FromQueue_ComparesTheAttributeByteForByteAndNotTheTarget) {
    start();
    queue(1, "Y=1", "A=1", "ys");
    queue(1, "Y=2", "A=1,B=1", "ys");
    queue(1, "Y=3", "A=1", "ys2");
    queue(1, "Y=4", "A=1", "y");
    queue(2, "Y=5", "A=1", "ys");
    utils.removePendingBackPointerFromQueue(1, "A=1", "ys");
    EXPECT_EQ(utils.pending(), (Lines{"Y=3 <- A=1 (tx 1, xs, ys2)", "Y=4 <- A=1 (tx 1, xs, y)",
                                      "Y=5 <- A=1 (tx 2, xs, ys)"}));
}

TEST_F(BiDirPending, OneWithdrawal_DropsTheAdditionsThatAreStillWanted) {
    stage.world.mo("X=1");
    start();
    set(1, "X=1", "ys", {"Y=1", "Y=2"});
    EXPECT_EQ(utils.pending().size(), 2U);
    set(1, "X=1", "ys", {"Y=2"});
    EXPECT_EQ(utils.pending(), Lines());
}

TEST_F(BiDirPending, RemovalsOnAnEmptyStore_DoNothing) {
    start();
    utils.removePendingBackPointerUpdates(1, "");
    utils.removePendingBackPointerFromQueue(1, "", "");
    utils.removePendingBackpointersForTransaction(1);
    EXPECT_EQ(calls(), Lines());
    EXPECT_EQ(log.all(), Lines());
}

TEST_F(BiDirPending, Modified_UnknownTransaction_IsEmptyAndMakesNoEntry) {
    start();
    EXPECT_TRUE(utils.getModifiedBackPointers(1).empty());
    EXPECT_TRUE(utils.modifiedBackPointers.empty());
}

TEST_F(BiDirPending, Modified_PairIsHeldOnceInOrderOfDnThenAttribute) {
    start();
    utils.addUpdatedBp(1, "B=1", "b");
    utils.addUpdatedBp(1, "B=1", "a");
    utils.addUpdatedBp(1, "A=1", "z");
    utils.addUpdatedBp(1, "B=1", "b");
    utils.addUpdatedBp(2, "C=1", "c");
    EXPECT_EQ(modified(1), (Lines{"A=1.z", "B=1.a", "B=1.b"}));
    EXPECT_EQ(modified(2), Lines{"C=1.c"});
}

// The work list outlives the transaction: nothing here tells that no validation is to come, and a
// handle that is used again has the earlier pairs judged again.
TEST_F(BiDirPending, Modified_StaysAfterTheTransactionIsFinished) {
    stage.world.mo("X=1");
    start();
    set(1, "X=1", "ys", {});
    utils.removePendingBackpointersForTransaction(1);
    EXPECT_EQ(modified(1), Lines{"X=1.ys"});
    set(1, "X=2", "ys", {});
    stage.world.mo("X=3");
    set(1, "X=3", "ys", {});
    EXPECT_EQ(modified(1), (Lines{"X=1.ys", "X=3.ys"}));
}

TEST_F(BiDirPending, TransactionHandleZero_IsOneLikeAnyOther) {
    stage.world.mo("X=1");
    start();
    set(0, "X=1", "ys", {"Y=1"});
    EXPECT_EQ(utils.pending(), Lines{"Y=1 <- X=1 (tx 0, xs, ys)"});
    EXPECT_EQ(modified(0), Lines{"X=1.ys"});
    utils.removePendingBackpointersForTransaction(0);
    EXPECT_EQ(utils.pending(), Lines());
}

// ---------------------------------------------------------------------------------------------
// Every call of the host in a flush, in the ordinary run and failing in turn.

const Lines name = nameOfEnd("xs@X");
const Lines ordinary = joined({exists("Y=1"), name, exists("Y=1"), read("Y=1", "xs"),
                               write("Y=1", "xs", {"X=1"}), release("Y=1.xs")});
const Lines noSuchName = {"trace: Error code -2 received when reading attribute  in Y=1."};

/// One call that fails with -5, and all that follows from it.
struct Failure {
    friend std::ostream& operator<<(std::ostream& out, const Failure& failure) {
        return out << failure.name;
    }

    const char* name;
    std::string call;
    int number;
    Lines calls;
    OrvReturnT code;
    Lines told;
    Lines pending;
};

class BiDirFlushFailure : public BiDirPending, public ::testing::WithParamInterface<Failure> {
protected:
    BiDirFlushFailure() {
        start();
        queue(1, "Y=1", "X=1");
        stage.world.mo("Y=1");
        forget();
    }

    Lines told() const { return joined({log.of("log"), log.of("trace")}); }
};

TEST_F(BiDirFlushFailure, None_OrdinaryRun) {
    EXPECT_EQ(flush(1, "Y=1"), OrvOk);
    EXPECT_EQ(block(calls()), block(ordinary));
    EXPECT_EQ(told(), Lines());
    EXPECT_EQ(modified(1), Lines{"Y=1.xs"});
    EXPECT_EQ(utils.pending(), Lines());
}

TEST_P(BiDirFlushFailure, OneCallFails_TheRestFollowsAsTold) {
    const Failure& failure = GetParam();
    when(failure.call).nth(failure.number).fails(-5);
    EXPECT_EQ(flush(1, "Y=1"), failure.code);
    EXPECT_EQ(block(calls()), block(failure.calls));
    EXPECT_EQ(told(), failure.told);
    EXPECT_EQ(modified(1), Lines());
    EXPECT_EQ(utils.pending(), failure.pending);
}

const Failure failures[] = {
    {"Existence",
     "VekRouter3.existsMo",
     1,
     exists("Y=1"),
     -5,
     {"trace: Y=1 doesn't exist or couldn't be read"},
     {"Y=1 <- X=1 (tx 1, xs, ys)"}},
    {"PropertiesOfTheEnd",
     "Model.getEndGeneralProperties",
     1,
     joined({exists("Y=1"),
             {"Model.getEndGeneralProperties('xs@X')", "Model.getGeneralStringProperty('0', 0)"},
             exists("Y=1"),
             read("Y=1", "")}),
     OrvOk,
     noSuchName,
     {}},
    {"NameOfTheEnd",
     "Model.getGeneralStringProperty",
     1,
     joined({exists("Y=1"), name, exists("Y=1"), read("Y=1", "")}),
     OrvOk,
     noSuchName,
     {}},
    {"ExistenceForTheAddition",
     "VekRouter3.existsMo",
     2,
     joined({exists("Y=1"), name, exists("Y=1")}),
     OrvOk,
     {},
     {"Y=1 <- X=1 (tx 1, xs, id)"}},
    {"Read",
     "VekRouter3.getMoAttribute",
     1,
     joined({exists("Y=1"), name, exists("Y=1"), read("Y=1", "xs")}),
     OrvOk,
     {"trace: Error code -5 received when reading attribute xs in Y=1."},
     {}},
    {"Write",
     "VekRouter3.setMoAttribute",
     1,
     ordinary,
     OrvOk,
     {"trace: Error code -5 received when setting attribute xs in Y=1."},
     {}},
};

INSTANTIATE_TEST_SUITE_P(EachCall, BiDirFlushFailure, ::testing::ValuesIn(failures),
                         [](const auto& each) { return std::string(each.param.name); });

}
}
