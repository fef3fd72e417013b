// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "BiDirScene.h"
#include "IsFree.h"

// While which calls of the host the one lock is held: an addition must not lose what another thread
// adds meanwhile, and no other call that can wait for a host may make others wait.

namespace BiDirTests {
namespace {

/// X=1 holds Y=1, which holds X=1, and there is Y=2.
class BiDirLocks : public Scene {
public:
    BiDirLocks() {
        modelOfXAndY();
        stage.world.mo("X=1").with("ys", Scripted::refs({"Y=1"}));
        stage.world.mo("Y=1").with("xs", Scripted::refs({"X=1"}));
        stage.world.mo("Y=2");
        open.start();
        for (const char* call :
             {"Model.getMocFromDn", "Model.getFirstEnd", "Model.getGeneralStringProperty",
              "VekRouter3.existsMo", "VekRouter3.getMoAttribute", "VekRouter3.setMoAttribute"}) {
            when(call).runs([this, call] { note(call); });
        }
        stage.script.forgetCalls();
    }

    ~BiDirLocks() override {
        EXPECT_TRUE(isFree(open.mMutex));
        open.stop();
    }

    void note(const std::string& call) {
        seen.push_back(call.substr(call.find('.') + 1) +
                       (isFree(open.mMutex) ? ", free" : ", held"));
    }

    Utils open;
    Lines seen;
};

TEST_F(BiDirLocks, Add_TargetThere_HoldsItFromFirstToLast) {
    open.addMoToBackPointer(1, "Y=2", "X=1", firstEnd("X"), "ys");
    EXPECT_EQ(seen, (Lines{"getGeneralStringProperty, held", "existsMo, held",
                           "getMoAttribute, held", "setMoAttribute, held"}));
}

TEST_F(BiDirLocks, Add_ReleasesWhatItHasReadWhileItHoldsIt) {
    static BiDirLocks* here = nullptr;
    static Scripted::Records records;
    here = this;
    when("VekRouter3.getMoAttribute")
        .answers<OrvMoAttributeValueResult_3>([](OrvMoAttributeValueResult_3& out) {
            out.container = records.container(Scripted::refs({}));
            out.release = [](OrvMoAttributeValueContainer_3*) { here->note("release"); };
            return OrvOk;
        });
    open.addMoToBackPointer(1, "Y=2", "X=1", firstEnd("X"), "ys");
    EXPECT_EQ(seen, (Lines{"getGeneralStringProperty, held", "existsMo, held",
                           "setMoAttribute, held", "release, held"}));
}

TEST_F(BiDirLocks, Add_TargetNotThere_HoldsItFromFirstToLast) {
    open.addMoToBackPointer(1, "Y=9", "X=1", firstEnd("X"), "ys");
    EXPECT_EQ(seen, (Lines{"getGeneralStringProperty, held", "existsMo, held"}));
}

TEST_F(BiDirLocks, Remove_TargetThere_HoldsItForTheWriteOnly) {
    open.removeMoFromBackPointer(1, "Y=1", "X=1", firstEnd("X"), "ys");
    EXPECT_EQ(seen, (Lines{"existsMo, free", "getGeneralStringProperty, free",
                           "getMoAttribute, free", "setMoAttribute, held"}));
}

TEST_F(BiDirLocks, Flush_HoldsItFromFirstToLast) {
    open.addMoToBackPointer(1, "Y=9", "X=1", firstEnd("X"), "ys");
    stage.world.mo("Y=9");
    seen.clear();
    EXPECT_EQ(open.updatePendingBackPointer(1, "Y=9", "id"), OrvOk);
    EXPECT_EQ(seen, (Lines{"existsMo, held", "getGeneralStringProperty, held", "existsMo, held",
                           "getMoAttribute, held", "setMoAttribute, held"}));
}

TEST_F(BiDirLocks, Modify_HoldsItForNoCallOfItsOwn) {
    Scripted::Records records;
    open.updateBackPointersForModify(1, "X=1", "ys", records.container(Scripted::refs({"Y=1"})),
                                     false);
    EXPECT_EQ(seen, (Lines{"getMocFromDn, free", "getMoAttribute, free", "getFirstEnd, free",
                           "getGeneralStringProperty, free", "getFirstEnd, free",
                           "getGeneralStringProperty, free"}));
}

TEST_F(BiDirLocks, Delete_HoldsItForTheWriteOnly) {
    EXPECT_EQ(open.updateBackPointersForDelete(1, "X=1"), OrvOk);
    EXPECT_EQ(seen, (Lines{"getMocFromDn, free", "getMocFromDn, free", "getFirstEnd, free",
                           "getFirstEnd, free", "getGeneralStringProperty, free",
                           "getMoAttribute, free", "getGeneralStringProperty, free",
                           "getMocFromDn, free", "existsMo, free", "getGeneralStringProperty, free",
                           "getMoAttribute, free", "setMoAttribute, held"}));
}

// The old value is given back before the attribute is recorded.
TEST_F(BiDirLocks, Modify_TheOldValueIsGoneWhenTheAttributeIsRecorded) {
    static BiDirLocks* here = nullptr;
    static Scripted::Records records;
    here = this;
    when("VekRouter3.getMoAttribute")
        .answers<OrvMoAttributeValueResult_3>([](OrvMoAttributeValueResult_3& out) {
            out.container = records.container(Scripted::refs({}));
            out.release = [](OrvMoAttributeValueContainer_3*) {
                here->note("release");
                EXPECT_TRUE(here->open.getModifiedBackPointers(1).empty());
            };
            return OrvOk;
        });
    open.updateBackPointersForModify(1, "X=1", "ys", records.container(Scripted::refs({})), false);
    EXPECT_EQ(seen.back(), "release, free");
    EXPECT_EQ(open.getModifiedBackPointers(1).size(), 1U);
}

TEST_F(BiDirLocks, Validation_HoldsItForNoCall) {
    stage.world.mo("X=1").with("ys", Scripted::refs({}));
    stage.model.moc("X").reference("ys", "Y", 1, 1);
    Scripted::Records records;
    open.updateBackPointersForModify(1, "X=1", "ys", records.container(Scripted::refs({})), true);
    OrvExtCmRouterService::BiDirValidator judging(open);
    judging.start();
    when("ThreadContext.addMessage").runs([this] { note("ThreadContext.addMessage"); });
    seen.clear();
    bool result = true;
    EXPECT_EQ(judging.validateBiDirs(1, &result), OrvValidationFailed);
    EXPECT_EQ(seen, (Lines{"existsMo, free", "getMoAttribute, free", "getMocFromDn, free",
                           "getGeneralStringProperty, free", "addMessage, free"}));
}

}
}
