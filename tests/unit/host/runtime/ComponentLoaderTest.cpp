// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "runtime/ComponentLoader.h"

#include "components/TestComponent.h"
#include "runtime/ComponentRegistry.h"
#include "runtime/PortalTables.h"

#include <gmock/gmock.h>

#include <dlfcn.h>

namespace OrvHost {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using Reason = ComponentLoadError::Reason;

std::vector<std::string> events;

void record(const char* event) {
    events.emplace_back(event);
}

std::string pathOf(const std::string& component) {
    return std::string(TEST_COMPONENT_DIR) + "/" + component + ".so";
}

bool isOpen(const std::string& component) {
    void* handle = dlopen(pathOf(component).c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (handle != nullptr) {
        dlclose(handle);
    }
    return handle != nullptr;
}

class ComponentLoaderTest : public testing::Test {
protected:
    ComponentLoaderTest() {
        events.clear();
        mRegistry.offer(&mRecorder.identity);
    }

    ComponentLoadError failureOf(const std::string& component) {
        try {
            mLoader.load(pathOf(component));
        } catch (const ComponentLoadError& failure) {
            EXPECT_THAT(failure.what(), StartsWith(pathOf(component) + ": "));
            EXPECT_FALSE(isOpen(component));
            EXPECT_THAT(mLoader.loaded(), IsEmpty());
            EXPECT_THAT(mRegistry.components(), IsEmpty());
            return failure;
        }
        throw std::logic_error(component + " was loaded");
    }

    ComponentReport startOnly() {
        const auto reports = mRegistry.startAll(OrvStateChangeReasonHostStart);
        EXPECT_EQ(reports.size(), 1u);
        return reports.at(0);
    }

    TestComponents::Recorder mRecorder{TestComponents::kRecorderIdentity, &record};
    ComponentRegistry mRegistry;
    PortalTables mPortal{mRegistry};
    ComponentLoader mLoader{mRegistry, mPortal.accessor()};
};

TEST_F(ComponentLoaderTest, Load_NoSuchFile_SaysSo) {
    const auto failure = failureOf("NoSuchFile");
    EXPECT_EQ(failure.reason(), Reason::NotALibrary);
    EXPECT_THAT(failure.what(), HasSubstr("cannot be opened as a shared object"));
}

TEST_F(ComponentLoaderTest, Load_EmptyPath_SaysWhatIsExpected) {
    EXPECT_THAT([&] { mLoader.load(""); },
                testing::ThrowsMessage<ComponentLoadError>(
                    "(empty path): the path of a shared object was expected"));
    EXPECT_THAT(mLoader.loaded(), IsEmpty());
}

TEST_F(ComponentLoaderTest, Load_TextFile_IsNoLibrary) {
    EXPECT_EQ(failureOf("TextFile").reason(), Reason::NotALibrary);
}

TEST_F(ComponentLoaderTest, Load_WithoutInit_NamesTheEntryPoint) {
    const auto failure = failureOf("NoInit");
    EXPECT_EQ(failure.reason(), Reason::MissingEntryPoint);
    EXPECT_THAT(failure.what(), EndsWith("has no entry point orvLCMinit"));
}

TEST_F(ComponentLoaderTest, Load_WithoutTerminate_NamesTheEntryPoint) {
    const auto failure = failureOf("NoTerminate");
    EXPECT_EQ(failure.reason(), Reason::MissingEntryPoint);
    EXPECT_THAT(failure.what(), EndsWith("has no entry point orvLCMterminate"));
}

TEST_F(ComponentLoaderTest, Load_EntryPointsOfALinkedLibrary_AreNotTaken) {
    const auto failure = failureOf("Borrower");
    EXPECT_EQ(failure.reason(), Reason::MissingEntryPoint);
    EXPECT_THAT(failure.what(), AllOf(HasSubstr("has no entry point orvLCMinit of its own"),
                                      HasSubstr("Provider.so, which it was linked with")));
    EXPECT_THAT(events, IsEmpty());
}

TEST_F(ComponentLoaderTest, Load_InitFails_TellsTheCodeAndTerminates) {
    const auto failure = failureOf("InitFails");
    EXPECT_EQ(failure.reason(), Reason::InitRefused);
    EXPECT_EQ(failure.code(), OrvFailure);
    EXPECT_THAT(failure.what(), EndsWith("orvLCMinit answered OrvFailure (-1)"));
    EXPECT_THAT(events, ElementsAre("TestInitFails.init", "TestInitFails.terminate"));
}

TEST_F(ComponentLoaderTest, Load_InitFailsAfterRegistering_DropsTheRecord) {
    const auto failure = failureOf("InitFailsAfterRegistering");
    EXPECT_EQ(failure.reason(), Reason::InitRefused);
    EXPECT_EQ(failure.code(), OrvValidationFailed);
}

TEST_F(ComponentLoaderTest, Load_InitThrows_TellsTheTextAndDropsTheRecord) {
    const auto failure = failureOf("InitThrows");
    EXPECT_EQ(failure.reason(), Reason::InitThrew);
    EXPECT_THAT(failure.what(), EndsWith("orvLCMinit threw an exception: no init today"));
    EXPECT_THAT(events, ElementsAre("TestInitThrows.init", "TestInitThrows.terminate"));
}

TEST_F(ComponentLoaderTest, Load_SameFileTwice_IsRefusedAndTheFirstStays) {
    mLoader.load(pathOf("Provider"));
    try {
        mLoader.load(std::string(TEST_COMPONENT_DIR) + "/./Provider.so");
        FAIL() << "loaded twice";
    } catch (const ComponentLoadError& failure) {
        EXPECT_EQ(failure.reason(), Reason::AlreadyLoaded);
    }
    EXPECT_EQ(startOnly().state, ComponentState::Started);
}

TEST_F(ComponentLoaderTest, LoadAndUnload_SoundComponents_RunInOrder) {
    mLoader.load(pathOf("Dependent"));
    mLoader.load(pathOf("Provider"), "argument");
    mRegistry.startAll(OrvStateChangeReasonHostStart);
    EXPECT_THAT(mLoader.unloadAll(), IsEmpty());
    EXPECT_THAT(events,
                ElementsAre("TestDependent.init", "TestProvider.init", "TestProvider.argument",
                            "TestProvider.start", "TestDependent.start", "TestDependent.stop",
                            "TestProvider.stop", "TestProvider.terminate",
                            "TestDependent.terminate"));
    EXPECT_THAT(mRegistry.components(), IsEmpty());
    EXPECT_FALSE(isOpen("Provider"));
    EXPECT_FALSE(isOpen("Dependent"));
}

TEST_F(ComponentLoaderTest, Unload_LeftOpen_TerminatesAndKeepsTheLibrary) {
    mLoader.load(pathOf("Provider"));
    events.clear();
    mLoader.leaveOpen();
    EXPECT_THAT(mLoader.unloadAll(), IsEmpty());
    EXPECT_THAT(events, Contains("TestProvider.terminate"));
    EXPECT_THAT(mLoader.loaded(), IsEmpty());
    EXPECT_THAT(mRegistry.components(), IsEmpty());
    ASSERT_TRUE(isOpen("Provider"));
    void* const handle = dlopen(pathOf("Provider").c_str(), RTLD_LAZY | RTLD_NOLOAD);
    dlclose(handle);
    dlclose(handle); // for the other tests
    EXPECT_FALSE(isOpen("Provider"));
}

TEST_F(ComponentLoaderTest, Unload_RegistrationLeftBehind_IsDropped) {
    mLoader.load(pathOf("LeavesRegistration"));
    startOnly();
    EXPECT_THAT(mLoader.unloadAll(), IsEmpty());
    EXPECT_THAT(events, ElementsAre("TestLeavesRegistration.start", "TestLeavesRegistration.stop",
                                    "TestLeavesRegistration.terminate"));
    EXPECT_THAT(mRegistry.components(), IsEmpty());
    EXPECT_FALSE(isOpen("LeavesRegistration"));
}

TEST_F(ComponentLoaderTest, Unload_RegisteredDuringStart_IsDroppedToo) {
    mLoader.load(pathOf("RegistersInStart"));
    mRegistry.startAll(OrvStateChangeReasonHostStart);
    EXPECT_EQ(mRegistry.components().size(), 2u);
    mLoader.unloadAll();
    EXPECT_THAT(mRegistry.components(), IsEmpty());
}

TEST_F(ComponentLoaderTest, Unload_ThenLoadAgain_Works) {
    mLoader.load(pathOf("Provider"));
    mLoader.unloadAll();
    mLoader.load(pathOf("Provider"));
    EXPECT_EQ(startOnly().state, ComponentState::Started);
}

TEST_F(ComponentLoaderTest, Start_Fails_IsReportedAndDependentIsNotStarted) {
    mLoader.load(pathOf("Dependent"));
    mLoader.load(pathOf("StartFails"));
    const auto reports = mRegistry.startAll(OrvStateChangeReasonHostStart);
    ASSERT_EQ(reports.size(), 2u);
    EXPECT_EQ(reports[0].problem, "start answered OrvNotActive (2)");
    EXPECT_EQ(reports[1].problem, "requires component TestStartFails, which is not started");
}

TEST_F(ComponentLoaderTest, Start_Throws_IsReported) {
    mLoader.load(pathOf("StartThrows"));
    EXPECT_EQ(startOnly().problem, "start threw an exception: no start today");
}

TEST_F(ComponentLoaderTest, Start_RequirementMissing_IsReported) {
    mLoader.load(pathOf("NeedsSomethingMissing"));
    EXPECT_EQ(startOnly().problem, "requires Nowhere/Nothing version any, which nobody offers");
}

TEST_F(ComponentLoaderTest, Start_CycleOfTwo_IsReportedOnBoth) {
    mLoader.load(pathOf("CycleOne"));
    mLoader.load(pathOf("CycleTwo"));
    for (const auto& report : mRegistry.startAll(OrvStateChangeReasonHostStart)) {
        EXPECT_EQ(report.state, ComponentState::Blocked);
        EXPECT_THAT(report.problem, HasSubstr("TestCycleOne requires TestCycleTwo requires "
                                              "TestCycleOne"));
    }
}

TEST_F(ComponentLoaderTest, Unload_StopThrows_IsReportedAndUnloadGoesOn) {
    mLoader.load(pathOf("StopThrows"));
    startOnly();
    EXPECT_THAT(mLoader.unloadAll(),
                ElementsAre("TestStopThrows: stop threw something that is no std::exception"));
    EXPECT_FALSE(isOpen("StopThrows"));
}

TEST_F(ComponentLoaderTest, Unload_TerminateThrows_IsReportedAndUnloadGoesOn) {
    mLoader.load(pathOf("TerminateThrows"));
    EXPECT_THAT(mLoader.unloadAll(),
                ElementsAre(AllOf(StartsWith(pathOf("TerminateThrows")),
                                  EndsWith("orvLCMterminate threw an exception: no end today"))));
    EXPECT_FALSE(isOpen("TerminateThrows"));
    EXPECT_THAT(mRegistry.components(), IsEmpty());
}

}
}
