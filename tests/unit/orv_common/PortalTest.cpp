// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Portal.h"

#include "LogCapture.h"
#include "OrvOamSpiManagedObject_3.h"
#include "VekMgmtSpiThreadContext_2.h"
#include "VekOamSpiManagedObject_3_1.h"
#include "VekOamSpiModelRepository_4.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

using Orv::Portal;

namespace {

const VekMgmtSpiInterface_1& routerId = OrvOamSpiManagedObject_3_RouterId;
const VekMgmtSpiInterface_1& otherRouterId = VekOamSpiManagedObject_3_RouterId;
const VekMgmtSpiInterface_1& router31Id = VekOamSpiManagedObject_3_1_RouterId;
const VekMgmtSpiInterface_1& modelId = VekOamSpiModelRepository_4_Id;
const VekMgmtSpiInterface_1& contextId = VekMgmtSpiThreadContext_2_Id;

OrvOamSpiManagedObject_3 router3 = {};
VekOamSpiManagedObject_3_1 router31 = {};
VekOamSpiModelRepository_4 model = {};
VekMgmtSpiThreadContext_2 context = {};

std::vector<std::string> asked;
OrvReturnT answer = OrvOk;
bool writes = true;

void* tableFor(const VekMgmtSpiInterface_1& id) {
    const std::string name = id.interfaceName;
    const std::string version = id.interfaceVersion;
    if (version == "3") {
        return &router3;
    }
    if (version == "3_1") {
        return &router31;
    }
    return name == "VekOamSpiModelRepository" ? static_cast<void*>(&model) : &context;
}

OrvReturnT lookUp(VekMgmtSpiInterface_1 id, void** result) {
    asked.push_back(std::string(id.componentName) + "/" + id.interfaceName + "/" +
                    id.interfaceVersion);
    if (writes) {
        *result = tableFor(id);
    }
    return answer;
}

class PortalTest : public ::testing::Test {
protected:
    void SetUp() override {
        asked.clear();
        answer = OrvOk;
        writes = true;
        portal.attach(&lookUp);
    }
    void TearDown() override { portal.detach(); }

    Portal& portal = *Portal::instance();
};

}

TEST_F(PortalTest, Instance_IsOne) {
    EXPECT_EQ(Portal::instance(), &portal);
}

TEST_F(PortalTest, GetInterface_EachTypeWithACache_GivesItsTable) {
    EXPECT_EQ(portal.getInterface<OrvOamSpiManagedObject_3>(routerId), &router3);
    EXPECT_EQ(portal.getInterface<VekOamSpiManagedObject_3_1>(router31Id), &router31);
    EXPECT_EQ(portal.getInterface<VekOamSpiModelRepository_4>(modelId), &model);
    EXPECT_EQ(portal.getInterface<VekMgmtSpiThreadContext_2>(contextId), &context);
    const std::vector<std::string> expected = {
        "OrvOamSpiCmRouterService/OrvOamSpiManagedObject/3",
        "VekOamSpiCmRouterService/VekOamSpiManagedObject/3_1",
        "VekOamSpiModelRepositoryService/VekOamSpiModelRepository/4",
        "VekMgmtSpiThreadContextService/VekMgmtSpiThreadContext/2"};
    EXPECT_EQ(asked, expected);
}

TEST_F(PortalTest, GetInterface_SecondTime_MakesNoCallToTheHost) {
    portal.getInterface<VekOamSpiModelRepository_4>(modelId);
    EXPECT_EQ(portal.getInterface<VekOamSpiModelRepository_4>(modelId), &model);
    EXPECT_EQ(asked.size(), 1U);
}

TEST_F(PortalTest, GetInterface_TwoIdentitiesOfOneType_ShareTheFirstAnswer) {
    portal.getInterface<OrvOamSpiManagedObject_3>(routerId);
    EXPECT_EQ(portal.getInterface<OrvOamSpiManagedObject_3>(otherRouterId), &router3);
    EXPECT_EQ(asked.size(), 1U);
}

TEST_F(PortalTest, GetInterface_Refused_GivesNullAndLogsOnceInBothForms) {
    answer = OrvNotExist;
    writes = false;
    const LogCapture log(4);
    EXPECT_EQ(portal.getInterface<OrvOamSpiManagedObject_3>(routerId), nullptr);
    ASSERT_EQ(log.records.size(), 2U);
    const Orv::LogRecord& first = log.records[0];
    EXPECT_EQ(first.form, Orv::LogRecord::Form::Log);
    EXPECT_EQ(first.level, 4);
    EXPECT_EQ(first.flag, 1);
    EXPECT_EQ(first.text, "Interface OrvOamSpiManagedObject not found");
    const Orv::LogRecord& second = log.records[1];
    EXPECT_EQ(second.form, Orv::LogRecord::Form::TraceV2);
    EXPECT_EQ(second.subsystem, Orv::Trace::Common);
    EXPECT_EQ(second.level, 4);
    EXPECT_EQ(second.file, "src/common/inc/Portal");
    EXPECT_EQ(second.function, first.function);
    EXPECT_EQ(second.text, first.text);
}

TEST_F(PortalTest, GetInterface_RefusedAtLevel3_LogsNothing) {
    answer = OrvFailure;
    writes = false;
    const LogCapture log(3);
    EXPECT_EQ(portal.getInterface<OrvOamSpiManagedObject_3>(routerId), nullptr);
    EXPECT_TRUE(log.records.empty());
}

TEST_F(PortalTest, GetInterface_AfterARefusal_AsksAgain) {
    answer = OrvNotExist;
    writes = false;
    EXPECT_EQ(portal.getInterface<OrvOamSpiManagedObject_3>(routerId), nullptr);
    answer = OrvOk;
    writes = true;
    EXPECT_EQ(portal.getInterface<OrvOamSpiManagedObject_3>(otherRouterId), &router3);
    EXPECT_EQ(asked.size(), 2U);
}

TEST_F(PortalTest, GetInterface_RefusedButWritten_GivesNullThenWhatWasWritten) {
    answer = OrvFailure;
    EXPECT_EQ(portal.getInterface<OrvOamSpiManagedObject_3>(routerId), nullptr);
    EXPECT_EQ(portal.getInterface<OrvOamSpiManagedObject_3>(routerId), &router3);
    EXPECT_EQ(asked.size(), 1U);
}

TEST_F(PortalTest, GetInterface_AcceptedButNotWritten_GivesNullWithoutALog) {
    writes = false;
    const LogCapture log;
    EXPECT_EQ(portal.getInterface<OrvOamSpiManagedObject_3>(routerId), nullptr);
    EXPECT_TRUE(log.records.empty());
}

TEST_F(PortalTest, Detach_DropsLookupAndCache) {
    portal.getInterface<OrvOamSpiManagedObject_3>(routerId);
    portal.getInterface<VekOamSpiManagedObject_3_1>(router31Id);
    portal.getInterface<VekOamSpiModelRepository_4>(modelId);
    portal.getInterface<VekMgmtSpiThreadContext_2>(contextId);
    portal.detach();
    const LogCapture log;
    EXPECT_EQ(portal.lookup(), nullptr);
    EXPECT_EQ(portal.getInterface<OrvOamSpiManagedObject_3>(routerId), nullptr);
    EXPECT_EQ(portal.getInterface<VekOamSpiManagedObject_3_1>(router31Id), nullptr);
    EXPECT_EQ(portal.getInterface<VekOamSpiModelRepository_4>(modelId), nullptr);
    EXPECT_EQ(portal.getInterface<VekMgmtSpiThreadContext_2>(contextId), nullptr);
    EXPECT_EQ(asked.size(), 4U);
    EXPECT_EQ(log.records.size(), 8U);
}

TEST_F(PortalTest, Attach_Again_EmptiesTheCache) {
    portal.getInterface<OrvOamSpiManagedObject_3>(routerId);
    portal.attach(&lookUp);
    EXPECT_EQ(portal.getInterface<OrvOamSpiManagedObject_3>(routerId), &router3);
    EXPECT_EQ(asked.size(), 2U);
}

TEST_F(PortalTest, Lookup_IsWhatTheHostAttached) {
    EXPECT_EQ(portal.lookup(), &lookUp);
}
