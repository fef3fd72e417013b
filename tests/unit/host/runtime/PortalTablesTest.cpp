// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "runtime/PortalTables.h"

#include "Portal.h"
#include "VekMgmtSpiThreadContext_2.h"
#include "runtime/ComponentRegistry.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace OrvHost {
namespace {

OrvReturnT doNothing(OrvStateChangeReason) {
    return OrvOk;
}

class PortalTablesTest : public testing::Test {
protected:
    PortalTablesTest() {
        mThreadContext.identity = VekMgmtSpiThreadContext_2_Id;
        mRegistry.offer(&mThreadContext.identity);
        mComponent.componentName = "Component";
        mComponent.start = &doNothing;
        mComponent.stop = &doNothing;
    }

    template <class Portal>
    static Portal* portal(PortalTables& tables, const char* version) {
        return static_cast<Portal*>(tables.accessor()->getPortal(version));
    }

    ComponentRegistry mRegistry;
    VekMgmtSpiThreadContext_2 mThreadContext = {};
    OrvMgmtSpiComponent_1 mComponent = {};
};

TEST_F(PortalTablesTest, GetPortal_KnownVersions_GiveTablesWithTheirIdentity) {
    PortalTables tables(mRegistry);
    auto* portal1 = portal<OrvMgmtSpiInterfacePortal_1>(tables, "1");
    auto* portal3 = portal<OrvMgmtSpiInterfacePortal_3>(tables, "3");
    ASSERT_NE(portal1, nullptr);
    ASSERT_NE(portal3, nullptr);
    EXPECT_STREQ(portal1->identity.interfaceVersion, "1");
    EXPECT_STREQ(portal3->identity.interfaceVersion, "3");
}

TEST_F(PortalTablesTest, GetPortal_OtherVersionOrNull_GivesNull) {
    PortalTables tables(mRegistry);
    EXPECT_EQ(tables.accessor()->getPortal("2"), nullptr);
    EXPECT_EQ(tables.accessor()->getPortal(nullptr), nullptr);
}

TEST_F(PortalTablesTest, GetPortal_VersionNotOffered_GivesNull) {
    {
        PortalTables onlyThree(mRegistry, {false, true});
        EXPECT_EQ(onlyThree.accessor()->getPortal("1"), nullptr);
        EXPECT_NE(onlyThree.accessor()->getPortal("3"), nullptr);
    }
    PortalTables onlyOne(mRegistry, {true, false});
    EXPECT_NE(onlyOne.accessor()->getPortal("1"), nullptr);
    EXPECT_EQ(onlyOne.accessor()->getPortal("3"), nullptr);
}

TEST_F(PortalTablesTest, GetInterface_ThroughEitherPortal_FindsHostTable) {
    PortalTables tables(mRegistry);
    void* found1 = nullptr;
    void* found3 = nullptr;
    EXPECT_EQ(portal<OrvMgmtSpiInterfacePortal_1>(tables, "1")
                  ->getInterface(mThreadContext.identity, &found1),
              OrvOk);
    EXPECT_EQ(portal<OrvMgmtSpiInterfacePortal_3>(tables, "3")
                  ->getInterface(mThreadContext.identity, &found3),
              OrvOk);
    EXPECT_EQ(found1, &mThreadContext);
    EXPECT_EQ(found3, &mThreadContext);
}

TEST_F(PortalTablesTest, Register_ThroughOnePortal_IsSeenByTheOther) {
    PortalTables tables(mRegistry);
    EXPECT_EQ(portal<OrvMgmtSpiInterfacePortal_1>(tables, "1")->registerComponent(&mComponent),
              OrvOk);
    EXPECT_EQ(mRegistry.components().size(), 1u);
    EXPECT_EQ(portal<OrvMgmtSpiInterfacePortal_3>(tables, "3")->unregisterComponent(&mComponent),
              OrvOk);
    EXPECT_TRUE(mRegistry.components().empty());
}

TEST_F(PortalTablesTest, HelperPortal_WhileTablesLive_LooksUpThroughThem) {
    {
        PortalTables tables(mRegistry);
        EXPECT_EQ(Orv::Portal::instance()->getInterface<VekMgmtSpiThreadContext_2>(
                      mThreadContext.identity),
                  &mThreadContext);
    }
    EXPECT_EQ(Orv::Portal::instance()->lookup(), nullptr);
    EXPECT_EQ(
        Orv::Portal::instance()->getInterface<VekMgmtSpiThreadContext_2>(mThreadContext.identity),
        nullptr);
}

TEST_F(PortalTablesTest, Construct_SecondInProcess_IsRefusedAndTheFirstStays) {
    PortalTables tables(mRegistry);
    EXPECT_THROW(PortalTables second(mRegistry), std::logic_error);
    EXPECT_NE(tables.accessor()->getPortal("1"), nullptr);
}

}
}
