// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Component.h"

#include <cstddef>
#include <cstring>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace {

// A host that keeps what it was asked, in order.
struct ScriptedHost {
    std::vector<std::string> calls;
    bool hasPortal1 = true;
    bool hasPortal3 = true;
    OrvReturnT registerCode = OrvOk;
    OrvMgmtSpiComponent_1* record = nullptr;
    OrvMgmtSpiComponent_1* unregistered = nullptr;
};

ScriptedHost* host = nullptr;

OrvReturnT registerThrough(const char* portal, OrvMgmtSpiComponent_1* record) {
    host->calls.push_back(std::string("register ") + portal);
    host->record = record;
    return host->registerCode;
}
OrvReturnT unregisterThrough(const char* portal, OrvMgmtSpiComponent_1* record) {
    host->calls.push_back(std::string("unregister ") + portal);
    host->unregistered = record;
    return OrvOk;
}

OrvReturnT register1(OrvMgmtSpiComponent_1* record) {
    return registerThrough("1", record);
}
OrvReturnT register3(OrvMgmtSpiComponent_1* record) {
    return registerThrough("3", record);
}
OrvReturnT unregister1(OrvMgmtSpiComponent_1* record) {
    return unregisterThrough("1", record);
}
OrvReturnT unregister3(OrvMgmtSpiComponent_1* record) {
    return unregisterThrough("3", record);
}

OrvMgmtSpiInterfacePortal_1 portal1 = {{}, nullptr, nullptr, &register1, &unregister1};
OrvMgmtSpiInterfacePortal_3 portal3 = {{}, nullptr, nullptr, &register3, &unregister3};

void* getPortal(const char* version) {
    const std::string wanted = version;
    host->calls.push_back("portal " + wanted);
    if (wanted == "1") {
        return host->hasPortal1 ? &portal1 : nullptr;
    }
    return wanted == "3" && host->hasPortal3 ? &portal3 : nullptr;
}

OrvMgmtSpiInterfacePortalAccessor accessor = {&getPortal};

VekMgmtSpiInterface_1 offered1 = {"TheComponent", "One", "1"};
VekMgmtSpiInterface_1 offered2 = {"TheComponent", "Two", "2"};
VekMgmtSpiInterface_1 required = {nullptr, "Three", nullptr};

// A component lives as long as the process, so each test has one of its own: `Tag` is the test's.
template <class Tag>
class ScriptedComponent : public Orv::Component<ScriptedComponent<Tag>> {
public:
    using Base = Orv::Component<ScriptedComponent<Tag>>;

    ScriptedComponent() : Base("TheComponent") {
        if (constructorThrows) {
            throw std::runtime_error("construction");
        }
        this->mInterfaces = {&offered1, &offered2};
        this->mDependencies = {&required};
    }

    static inline bool constructorThrows = false;
    OrvReturnT initializeCode = OrvOk;
    OrvReturnT startCode = OrvOk;
    bool throws = false;
    bool throwsSomethingElse = false;
    std::string argument;
    std::vector<OrvStateChangeReason> reasons;

    using Base::mDependencyArray;
    using Base::mEmptyArray;
    using Base::mInterfaceArray;
    using Base::mPortal1;
    using Base::mPortal3;
    using Base::mPortalAccessor;
    using Base::mRecord;

private:
    OrvReturnT initialize(const char* text) override {
        host->calls.push_back("initialize");
        argument = text;
        return answer(initializeCode);
    }
    void terminate() override { host->calls.push_back("terminate"); }
    OrvReturnT start(OrvStateChangeReason reason) override {
        reasons.push_back(reason);
        return answer(startCode);
    }
    OrvReturnT stop(OrvStateChangeReason reason) override {
        reasons.push_back(reason);
        return answer(startCode);
    }
    OrvReturnT answer(OrvReturnT code) const {
        if (throws) {
            throw std::runtime_error("scripted");
        }
        if (throwsSomethingElse) {
            throw 7;
        }
        return code;
    }
};

class ComponentTest : public ::testing::Test {
protected:
    void SetUp() override { host = &scripted; }
    void TearDown() override { host = nullptr; }

    std::vector<std::string> takeCalls() {
        std::vector<std::string> taken;
        taken.swap(scripted.calls);
        return taken;
    }

    ScriptedHost scripted;
};

using Calls = std::vector<std::string>;

template <class Entry>
std::vector<Entry> entriesOf(Entry* array) {
    std::vector<Entry> entries;
    for (; *array != nullptr; ++array) {
        entries.push_back(*array);
    }
    return entries;
}

}

TEST_F(ComponentTest, LcmInit_BothPortals_RegistersWithTheNewerAndThenInitializes) {
    using Tested = ScriptedComponent<struct BothPortals>;
    EXPECT_EQ(Tested::lcmInit(&accessor, "argument"), OrvOk);
    EXPECT_EQ(takeCalls(), (Calls{"portal 1", "portal 3", "register 3", "initialize"}));
    EXPECT_EQ(Tested::instance().argument, "argument");
}

TEST_F(ComponentTest, LcmInit_Record_HoldsWhatTheComponentNamed) {
    using Tested = ScriptedComponent<struct RecordTag>;
    ASSERT_EQ(Tested::lcmInit(&accessor, ""), OrvOk);
    const OrvMgmtSpiComponent_1& record = *scripted.record;
    EXPECT_STREQ(record.componentName, "TheComponent");
    EXPECT_STREQ(record.interfaceName, "OrvMgmtSpiComponent");
    EXPECT_STREQ(record.interfaceVersion, "1");
    EXPECT_EQ(entriesOf(record.interfaceArray),
              (std::vector<VekMgmtSpiInterface_1*>{&offered1, &offered2}));
    EXPECT_EQ(entriesOf(record.dependencyArray), (std::vector<VekMgmtSpiInterface_1*>{&required}));
    EXPECT_EQ(record.emptyInterfaceArray[0], nullptr);
    EXPECT_FALSE(record.componentFlag);
    EXPECT_NE(record.start, nullptr);
    EXPECT_NE(record.stop, nullptr);
}

TEST_F(ComponentTest, LcmInit_SecondRun_DoublesNothing) {
    using Tested = ScriptedComponent<struct SecondRun>;
    ASSERT_EQ(Tested::lcmInit(&accessor, "first"), OrvOk);
    ASSERT_EQ(Tested::lcmInit(&accessor, "second"), OrvOk);
    EXPECT_EQ(entriesOf(scripted.record->interfaceArray).size(), 2U);
    EXPECT_EQ(entriesOf(scripted.record->dependencyArray).size(), 1U);
    EXPECT_EQ(entriesOf(scripted.record->emptyInterfaceArray).size(), 0U);
    EXPECT_EQ(Tested::instance().argument, "second");
}

TEST_F(ComponentTest, LcmInit_OlderPortalOnly_RegistersThere) {
    using Tested = ScriptedComponent<struct OlderOnly>;
    scripted.hasPortal3 = false;
    EXPECT_EQ(Tested::lcmInit(&accessor, ""), OrvOk);
    EXPECT_EQ(takeCalls(), (Calls{"portal 1", "portal 3", "register 1", "initialize"}));
}

TEST_F(ComponentTest, LcmInit_NewerPortalOnly_IsRefusedAndRegistersNothing) {
    using Tested = ScriptedComponent<struct NewerOnly>;
    scripted.hasPortal1 = false;
    EXPECT_EQ(Tested::lcmInit(&accessor, ""), OrvFailure);
    EXPECT_EQ(takeCalls(), (Calls{"portal 1", "portal 3"}));
}

TEST_F(ComponentTest, LcmInit_NewerPortalOnly_StoresThePortalsAndBuildsNoArrays) {
    using Tested = ScriptedComponent<struct NewerOnlyStored>;
    scripted.hasPortal1 = false;
    ASSERT_EQ(Tested::lcmInit(&accessor, ""), OrvFailure);
    const Tested& component = Tested::instance();
    EXPECT_EQ(component.mPortalAccessor, &accessor);
    EXPECT_EQ(component.mPortal1, nullptr);
    EXPECT_EQ(component.mPortal3, &portal3);
    EXPECT_TRUE(component.mInterfaceArray.empty());
    EXPECT_TRUE(component.mDependencyArray.empty());
    EXPECT_TRUE(component.mEmptyArray.empty());
    EXPECT_EQ(component.mRecord.interfaceArray, nullptr);
    EXPECT_EQ(component.mRecord.dependencyArray, nullptr);
    EXPECT_EQ(component.mRecord.emptyInterfaceArray, nullptr);
}

TEST_F(ComponentTest, LcmInit_FlagSetByTheHost_IsFalseAgainAfterTheNextRun) {
    using Tested = ScriptedComponent<struct FlagTag>;
    ASSERT_EQ(Tested::lcmInit(&accessor, ""), OrvOk);
    scripted.record->componentFlag = true;
    ASSERT_EQ(Tested::lcmInit(&accessor, ""), OrvOk);
    EXPECT_FALSE(scripted.record->componentFlag);
}

TEST_F(ComponentTest, LcmTerminate_NewerPortal_ForgetsOnlyThatOne) {
    using Tested = ScriptedComponent<struct TerminateForgets>;
    ASSERT_EQ(Tested::lcmInit(&accessor, ""), OrvOk);
    Tested::lcmTerminate();
    const Tested& component = Tested::instance();
    EXPECT_EQ(component.mPortalAccessor, &accessor);
    EXPECT_EQ(component.mPortal1, &portal1);
    EXPECT_EQ(component.mPortal3, nullptr);
}

// A pointer to a virtual member holds its place in the table, plus one. The destructor comes last.
TEST_F(ComponentTest, VirtualOperations_StandInTheirOrder) {
    using Base = Orv::Component<ScriptedComponent<struct SlotsTag>>;
    const auto slotOf = [](auto member) {
        std::ptrdiff_t place = 0;
        std::memcpy(&place, &member, sizeof(place));
        return (place - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
    };
    EXPECT_EQ(slotOf(&Base::initialize), 0);
    EXPECT_EQ(slotOf(&Base::terminate), 1);
    EXPECT_EQ(slotOf(&Base::start), 2);
    EXPECT_EQ(slotOf(&Base::stop), 3);
    static_assert(std::has_virtual_destructor_v<Base>);
    static_assert(std::is_abstract_v<Base>);
}

TEST_F(ComponentTest, LcmInit_RegistrationRefused_GivesItsCodeWithoutInitialize) {
    using Tested = ScriptedComponent<struct Refused>;
    scripted.registerCode = -77;
    EXPECT_EQ(Tested::lcmInit(&accessor, ""), -77);
    EXPECT_EQ(takeCalls(), (Calls{"portal 1", "portal 3", "register 3"}));
    EXPECT_EQ(entriesOf(scripted.record->interfaceArray).size(), 2U);
}

TEST_F(ComponentTest, LcmInit_InitializeFails_GivesItsCode) {
    using Tested = ScriptedComponent<struct InitializeFails>;
    Tested::instance().initializeCode = -5;
    EXPECT_EQ(Tested::lcmInit(&accessor, ""), -5);
}

TEST_F(ComponentTest, LcmInit_InitializeThrows_Passes) {
    using Tested = ScriptedComponent<struct InitializeThrows>;
    Tested::instance().throws = true;
    EXPECT_THROW(Tested::lcmInit(&accessor, ""), std::runtime_error);
}

TEST_F(ComponentTest, LcmInit_ConstructionThrows_PassesAndMayBeTriedAgain) {
    using Tested = ScriptedComponent<struct ConstructionThrows>;
    Tested::constructorThrows = true;
    EXPECT_THROW(Tested::lcmInit(&accessor, ""), std::runtime_error);
    EXPECT_TRUE(takeCalls().empty());
    Tested::constructorThrows = false;
    EXPECT_EQ(Tested::lcmInit(&accessor, ""), OrvOk);
}

TEST_F(ComponentTest, LcmTerminate_NewerPortal_UnregistersOnce) {
    using Tested = ScriptedComponent<struct TerminateNewer>;
    ASSERT_EQ(Tested::lcmInit(&accessor, ""), OrvOk);
    takeCalls();
    Tested::lcmTerminate();
    EXPECT_EQ(takeCalls(), (Calls{"terminate", "unregister 3"}));
    EXPECT_EQ(scripted.unregistered, scripted.record);
    Tested::lcmTerminate();
    EXPECT_EQ(takeCalls(), (Calls{"terminate"}));
}

TEST_F(ComponentTest, LcmTerminate_OlderPortal_LeavesTheRegistration) {
    using Tested = ScriptedComponent<struct TerminateOlder>;
    scripted.hasPortal3 = false;
    ASSERT_EQ(Tested::lcmInit(&accessor, ""), OrvOk);
    takeCalls();
    Tested::lcmTerminate();
    EXPECT_EQ(takeCalls(), (Calls{"terminate"}));
}

// The portal was stored before the refusal, so it is called, although nothing was registered there.
TEST_F(ComponentTest, LcmTerminate_AfterARefusalForLackOfTheOlderPortal_TellsTheNewerPortal) {
    using Tested = ScriptedComponent<struct TerminateRefused>;
    scripted.hasPortal1 = false;
    ASSERT_EQ(Tested::lcmInit(&accessor, ""), OrvFailure);
    takeCalls();
    Tested::lcmTerminate();
    EXPECT_EQ(takeCalls(), (Calls{"terminate", "unregister 3"}));
}

TEST_F(ComponentTest, LcmTerminate_WithoutInit_OnlyTerminates) {
    using Tested = ScriptedComponent<struct TerminateOnly>;
    Tested::lcmTerminate();
    EXPECT_EQ(takeCalls(), (Calls{"terminate"}));
}

TEST_F(ComponentTest, LcmInit_AfterTerminate_RegistersAgain) {
    using Tested = ScriptedComponent<struct InitAgain>;
    ASSERT_EQ(Tested::lcmInit(&accessor, ""), OrvOk);
    Tested::lcmTerminate();
    takeCalls();
    EXPECT_EQ(Tested::lcmInit(&accessor, ""), OrvOk);
    EXPECT_EQ(takeCalls(), (Calls{"portal 1", "portal 3", "register 3", "initialize"}));
}

TEST_F(ComponentTest, StartAndStop_ReachTheComponentWithTheReasonAndGiveItsCode) {
    using Tested = ScriptedComponent<struct StartStop>;
    ASSERT_EQ(Tested::lcmInit(&accessor, ""), OrvOk);
    Tested::instance().startCode = -42;
    EXPECT_EQ(scripted.record->start(OrvStateChangeReasonRequested), -42);
    EXPECT_EQ(scripted.record->stop(OrvStateChangeReasonHostShutdown), -42);
    EXPECT_EQ(Tested::instance().reasons,
              (std::vector<OrvStateChangeReason>{OrvStateChangeReasonRequested,
                                                 OrvStateChangeReasonHostShutdown}));
}

TEST_F(ComponentTest, StartAndStop_StandardException_IsAnsweredWithFailure) {
    using Tested = ScriptedComponent<struct StartThrows>;
    ASSERT_EQ(Tested::lcmInit(&accessor, ""), OrvOk);
    Tested::instance().throws = true;
    EXPECT_EQ(scripted.record->start(OrvStateChangeReasonHostStart), OrvFailure);
    EXPECT_EQ(scripted.record->stop(OrvStateChangeReasonHostStart), OrvFailure);
}

TEST_F(ComponentTest, StartAndStop_SomethingElseThrown_Passes) {
    using Tested = ScriptedComponent<struct StartThrowsElse>;
    ASSERT_EQ(Tested::lcmInit(&accessor, ""), OrvOk);
    Tested::instance().throwsSomethingElse = true;
    EXPECT_THROW(scripted.record->start(OrvStateChangeReasonHostStart), int);
    EXPECT_THROW(scripted.record->stop(OrvStateChangeReasonHostStart), int);
}
