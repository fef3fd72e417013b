// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "runtime/ComponentRegistry.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace OrvHost {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::vector<std::string> events;
ComponentRegistry* current = nullptr;
void* foundWhileStarting = nullptr;
OrvReturnT codeWhileStarting = OrvOk;

VekMgmtSpiInterface_1 kHostTable{"Host", "Table", "1"};
VekMgmtSpiInterface_1 kOffered{"Sound", "Offered", "1"};
VekMgmtSpiInterface_1 kMissing{"Nobody", "Missing", "1"};
VekMgmtSpiInterface_1* offersOne[] = {&kOffered, nullptr};
VekMgmtSpiInterface_1* needsOne[] = {&kOffered, nullptr};
VekMgmtSpiInterface_1* needsMissing[] = {&kMissing, nullptr};
VekMgmtSpiInterface_1* nothing[] = {nullptr};

OrvReturnT startSound(OrvStateChangeReason) {
    events.emplace_back("start sound");
    codeWhileStarting = current->find(kOffered, &foundWhileStarting);
    return OrvOk;
}
OrvReturnT stopSound(OrvStateChangeReason) {
    events.emplace_back("stop sound");
    return OrvOk;
}
OrvReturnT startOther(OrvStateChangeReason) {
    events.emplace_back("start other");
    return OrvOk;
}
OrvReturnT stopOther(OrvStateChangeReason) {
    events.emplace_back("stop other");
    return OrvFailure;
}
OrvReturnT refuse(OrvStateChangeReason) {
    return OrvNotActive;
}
OrvReturnT throwStandard(OrvStateChangeReason) {
    throw std::runtime_error("broken inside");
}
OrvReturnT throwOther(OrvStateChangeReason) {
    throw 7;
}

class ComponentRegistryTest : public testing::Test {
protected:
    ComponentRegistryTest() {
        events.clear();
        foundWhileStarting = nullptr;
        current = &mRegistry;
        mRegistry.offer(&kHostTable);
    }

    static OrvMgmtSpiComponent_1 record(const char* name, VekMgmtSpiInterface_1** offers,
                                        VekMgmtSpiInterface_1** needs,
                                        OrvReturnT (*start)(OrvStateChangeReason),
                                        OrvReturnT (*stop)(OrvStateChangeReason)) {
        return {name,
                OrvMgmtSpiComponent_1_Id.interfaceName,
                OrvMgmtSpiComponent_1_Id.interfaceVersion,
                offers,
                needs,
                start,
                stop,
                nothing,
                false};
    }

    std::vector<ComponentReport> startAll() {
        return mRegistry.startAll(OrvStateChangeReasonHostStart);
    }

    OrvReturnT find(const VekMgmtSpiInterface_1& id) {
        mFound = nullptr;
        return mRegistry.find(id, &mFound);
    }

    ComponentRegistry mRegistry;
    void* mFound = nullptr;
    OrvMgmtSpiComponent_1 mSound = record("Sound", offersOne, nothing, &startSound, &stopSound);
    OrvMgmtSpiComponent_1 mOther = record("Other", nothing, needsOne, &startOther, &stopOther);
};

TEST_F(ComponentRegistryTest, Find_HostTable_IsFoundAtAnyTime) {
    EXPECT_EQ(find(kHostTable), OrvOk);
    EXPECT_EQ(mFound, &kHostTable);
}

TEST_F(ComponentRegistryTest, Find_NullFields_AreMetByAnything) {
    EXPECT_EQ(find({nullptr, "Table", nullptr}), OrvOk);
    EXPECT_EQ(mFound, &kHostTable);
}

TEST_F(ComponentRegistryTest, Find_NoInterfaceNameOrNoResult_IsInvalidArgument) {
    EXPECT_EQ(find({"Host", nullptr, "1"}), OrvInvalidArgument);
    EXPECT_EQ(mRegistry.find(kHostTable, nullptr), OrvInvalidArgument);
}

TEST_F(ComponentRegistryTest, Find_Unknown_LeavesResultAlone) {
    mFound = this;
    EXPECT_EQ(mRegistry.find(kMissing, &mFound), OrvNotExist);
    EXPECT_EQ(mFound, this);
}

TEST_F(ComponentRegistryTest, Find_ComponentNotStarted_IsNotFoundUntilItIs) {
    mRegistry.registerComponent(&mSound);
    EXPECT_EQ(find(kOffered), OrvNotExist);
    startAll();
    EXPECT_EQ(codeWhileStarting, OrvNotExist);
    EXPECT_EQ(find(kOffered), OrvOk);
    EXPECT_EQ(mFound, &kOffered);
    mRegistry.stopAll(OrvStateChangeReasonRequested);
    EXPECT_EQ(find(kOffered), OrvNotExist);
}

TEST_F(ComponentRegistryTest, Register_IncompleteRecord_IsInvalidArgument) {
    OrvMgmtSpiComponent_1 nameless = mSound;
    nameless.componentName = nullptr;
    OrvMgmtSpiComponent_1 startless = mSound;
    startless.start = nullptr;
    OrvMgmtSpiComponent_1 stopless = mSound;
    stopless.stop = nullptr;
    EXPECT_EQ(mRegistry.registerComponent(nullptr), OrvInvalidArgument);
    EXPECT_EQ(mRegistry.registerComponent(&nameless), OrvInvalidArgument);
    EXPECT_EQ(mRegistry.registerComponent(&startless), OrvInvalidArgument);
    EXPECT_EQ(mRegistry.registerComponent(&stopless), OrvInvalidArgument);
    EXPECT_THAT(mRegistry.components(), IsEmpty());
}

TEST_F(ComponentRegistryTest, Register_SameRecordTwice_IsOneComponent) {
    EXPECT_EQ(mRegistry.registerComponent(&mSound), OrvOk);
    EXPECT_EQ(mRegistry.registerComponent(&mSound), OrvOk);
    EXPECT_EQ(mRegistry.components().size(), 1u);
}

TEST_F(ComponentRegistryTest, Register_NameTaken_IsRefused) {
    OrvMgmtSpiComponent_1 copy = mSound;
    mRegistry.registerComponent(&mSound);
    EXPECT_EQ(mRegistry.registerComponent(&copy), OrvAlreadyExist);
}

TEST_F(ComponentRegistryTest, Unregister_StartedOrUnknown_IsRefused) {
    EXPECT_EQ(mRegistry.unregisterComponent(&mSound), OrvNotExist);
    mRegistry.registerComponent(&mSound);
    startAll();
    EXPECT_EQ(mRegistry.unregisterComponent(&mSound), OrvFailure);
    mRegistry.stopAll(OrvStateChangeReasonRequested);
    EXPECT_EQ(mRegistry.unregisterComponent(&mSound), OrvOk);
    EXPECT_THAT(mRegistry.components(), IsEmpty());
}

TEST_F(ComponentRegistryTest, StartAll_DependencyRegisteredLater_StartsItFirstAndStopsItLast) {
    mRegistry.registerComponent(&mOther);
    mRegistry.registerComponent(&mSound);
    startAll();
    mRegistry.stopAll(OrvStateChangeReasonHostShutdown);
    EXPECT_THAT(events, ElementsAre("start sound", "start other", "stop other", "stop sound"));
}

TEST_F(ComponentRegistryTest, StartAll_Twice_StartsOnce) {
    mRegistry.registerComponent(&mSound);
    startAll();
    const auto reports = startAll();
    EXPECT_THAT(events, ElementsAre("start sound"));
    EXPECT_EQ(reports[0].state, ComponentState::Started);
}

TEST_F(ComponentRegistryTest, StartAll_CodeFromStart_IsReportedAndDependentsWait) {
    mSound.start = &refuse;
    mRegistry.registerComponent(&mOther);
    mRegistry.registerComponent(&mSound);
    const auto reports = startAll();
    ASSERT_EQ(reports.size(), 2u);
    EXPECT_EQ(reports[0].state, ComponentState::Failed);
    EXPECT_EQ(reports[0].code, OrvNotActive);
    EXPECT_EQ(reports[0].problem, "start answered OrvNotActive (2)");
    EXPECT_EQ(reports[1].state, ComponentState::Blocked);
    EXPECT_EQ(reports[1].problem, "requires component Sound, which is not started");
    EXPECT_THAT(events, IsEmpty());
}

TEST_F(ComponentRegistryTest, StartAll_AfterAFailure_TriesAgain) {
    mSound.start = &refuse;
    mRegistry.registerComponent(&mOther);
    mRegistry.registerComponent(&mSound);
    startAll();
    mSound.start = &startSound;
    startAll();
    EXPECT_THAT(events, ElementsAre("start sound", "start other"));
}

TEST_F(ComponentRegistryTest, StartAll_ExceptionsFromStart_AreReported) {
    mSound.start = &throwStandard;
    mOther.start = &throwOther;
    mOther.dependencyArray = nothing;
    mRegistry.registerComponent(&mSound);
    mRegistry.registerComponent(&mOther);
    const auto reports = startAll();
    EXPECT_EQ(reports[0].problem, "start threw an exception: broken inside");
    EXPECT_EQ(reports[1].problem, "start threw something that is no std::exception");
    EXPECT_EQ(reports[1].state, ComponentState::Failed);
}

TEST_F(ComponentRegistryTest, StartAll_MissingRequirement_DoesNotCallStart) {
    mSound.dependencyArray = needsMissing;
    mRegistry.registerComponent(&mSound);
    const auto reports = startAll();
    EXPECT_EQ(reports[0].state, ComponentState::Blocked);
    EXPECT_THAT(reports[0].problem, HasSubstr("Nobody/Missing version 1"));
    EXPECT_THAT(events, IsEmpty());
}

TEST_F(ComponentRegistryTest, StopAll_CodeFromStop_IsReportedAndTheOthersStop) {
    mRegistry.registerComponent(&mSound);
    mRegistry.registerComponent(&mOther);
    startAll();
    const auto reports = mRegistry.stopAll(OrvStateChangeReasonRequested);
    ASSERT_EQ(reports.size(), 2u);
    EXPECT_EQ(reports[0].problem, "stop answered OrvFailure (-1)");
    EXPECT_EQ(reports[1].problem, "");
    EXPECT_EQ(mRegistry.components()[0].state, ComponentState::Registered);
}

TEST_F(ComponentRegistryTest, Drop_StartedComponentOfOwner_StopsAndForgetsOnlyThat) {
    {
        const ComponentRegistry::OwnerScope scope(mRegistry, this);
        mRegistry.registerComponent(&mSound);
    }
    mOther.dependencyArray = nothing;
    mRegistry.registerComponent(&mOther);
    startAll();
    mRegistry.drop(this);
    EXPECT_THAT(events, ElementsAre("start sound", "start other", "stop sound"));
    ASSERT_EQ(mRegistry.components().size(), 1u);
    EXPECT_EQ(mRegistry.components()[0].name, "Other");
}

}
}
