// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// What the interface versions have in common: opening steps, and the attributes known by name.

#include "KnownAttributes.h"
#include "OpeningSteps.h"

#include <gtest/gtest.h>

#include <string>

using namespace OrvExtCmRouterService;

namespace {

class StepsTest : public testing::Test {
protected:
    StepsTest() { Orv::MeIdTranslator::instance()->configure("paris", ""); }
    ~StepsTest() override { Orv::MeIdTranslator::instance()->configure("", ""); }

    IdMappings mappings{Orv::MeIdTranslator::instance()};
    std::string dn = "untouched";
};

constexpr char kForeign[] = "ManagedElement=london"; // translates in neither direction

}

TEST_F(StepsTest, ConvertDn_GoesBothWays) {
    EXPECT_EQ(mappings.convertDn("ManagedElement=paris", IdMappings::ToInternal),
              "ManagedElement=1");
    EXPECT_EQ(mappings.convertDn("ManagedElement=1", IdMappings::ToExternal),
              "ManagedElement=paris");
    static_assert(IdMappings::ToInternal == 0 && IdMappings::ToExternal == 1);
}

TEST_F(StepsTest, OpenOperation_AllOutcomes) {
    EXPECT_EQ(openOperation(false, mappings, "A=1", dn), OrvNotActive);
    EXPECT_EQ(dn, "untouched");
    EXPECT_EQ(openOperation(true, mappings, kForeign, dn), OrvNotExist);
    EXPECT_EQ(openOperation(true, mappings, "", dn), OrvNotExist);
    EXPECT_EQ(openOperation(true, mappings, "ManagedElement=paris,A=1", dn), OrvOk);
    EXPECT_EQ(dn, "ManagedElement=1,A=1");
}

TEST_F(StepsTest, OpenWalk_EmptyDn_IsTheTopLevel) {
    EXPECT_EQ(openWalk(false, mappings, "", dn), OrvNotActive);
    EXPECT_EQ(openWalk(true, mappings, "", dn), OrvOk);
    EXPECT_EQ(dn, "");
    EXPECT_EQ(openWalk(true, mappings, kForeign, dn), OrvNotExist);
    EXPECT_EQ(openWalk(true, mappings, "A=1", dn), OrvOk);
    EXPECT_EQ(dn, "A=1");
}

TEST_F(StepsTest, OpenCreation_EmptyDn_TakesWhatTheTranslatorGives) {
    EXPECT_EQ(openCreation(false, mappings, "", dn), OrvNotActive);
    EXPECT_EQ(openCreation(true, mappings, "", dn), OrvOk);
    EXPECT_EQ(dn, "");
    EXPECT_EQ(openCreation(true, mappings, kForeign, dn), OrvNotExist);
    EXPECT_EQ(openCreation(true, mappings, "A=1", dn), OrvOk);
}

TEST_F(StepsTest, IsRootId_TestsNamePrefixAndCommas) {
    EXPECT_TRUE(isRootId("managedElementId", "ManagedElement=1"));
    EXPECT_TRUE(isRootId("managedElementId", "ManagedElementExtra=1"));
    EXPECT_TRUE(isRootId("managedElementId", "ManagedElement"));
    EXPECT_FALSE(isRootId("managedElementId", "ManagedElement=1,Sub=2"));
    EXPECT_FALSE(isRootId("managedElementId", "managedElement=1"));
    EXPECT_FALSE(isRootId("managedElementId", "Managed"));
    EXPECT_FALSE(isRootId("ManagedElementId", "ManagedElement=1"));
    EXPECT_FALSE(isRootId("managedElementIdX", "ManagedElement=1"));
}

TEST_F(StepsTest, IsOneText_TestsTypeAndCount) {
    const OrvMoAttributeValueContainer_3 one{OrvMoAttributeTypeString_3, 1, nullptr};
    EXPECT_TRUE(isOneText(&one));
    const OrvMoAttributeValueContainer two{OrvMoAttributeTypeString_3, 2, nullptr};
    const OrvMoAttributeValueContainer ref{OrvMoAttributeTypeMoRef_3, 1, nullptr};
    EXPECT_FALSE(isOneText(&two));
    EXPECT_FALSE(isOneText(&ref));
}

TEST_F(StepsTest, ExternalRootId_IsWhatStandsBehindTheFirstEqualsSign) {
    EXPECT_EQ(externalRootId(mappings, "1"), "paris");
    EXPECT_EQ(externalRootId(mappings, "london"), "") << "cannot be translated";
    Orv::MeIdTranslator::instance()->configure("a=b", "");
    EXPECT_EQ(externalRootId(mappings, "1"), "a=b");
}

TEST_F(StepsTest, FirstText_LooksAtNeitherTypeNorCount) {
    OrvMoAttributeValue_3 slot{};
    slot.string = "x";
    const OrvMoAttributeValueContainer_3 lying{200, 0, &slot};
    EXPECT_STREQ(firstText(&lying), "x");
    const OrvMoAttributeValueContainer_3 bare{OrvMoAttributeTypeString_3, 1, nullptr};
    EXPECT_EQ(firstText(&bare), nullptr);
    EXPECT_EQ(firstText(static_cast<const OrvMoAttributeValueContainer_3*>(nullptr)), nullptr);
}

TEST_F(StepsTest, IsRefusedAsId_OnlyATextThatIsNoNamingValue) {
    EXPECT_FALSE(isRefusedAsId(nullptr));
    EXPECT_FALSE(isRefusedAsId(""));
    EXPECT_FALSE(isRefusedAsId("paris"));
    EXPECT_TRUE(isRefusedAsId("a,b"));
    EXPECT_TRUE(isNetworkManagedElementId("networkManagedElementId"));
    EXPECT_FALSE(isNetworkManagedElementId("networkManagedElementId2"));
}
