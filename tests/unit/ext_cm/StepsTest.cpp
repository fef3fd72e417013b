// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// What the interface versions have in common: opening steps, and the attributes known by name.

#include "values/KnownAttributes.h"

#include <gtest/gtest.h>

#include <string>

using namespace OrvExtCmRouterService;

namespace {

class StepsTest : public testing::Test {
protected:
    StepsTest() { Orv::MeIdTranslator::instance()->configure("paris", ""); }
    ~StepsTest() override { Orv::MeIdTranslator::instance()->configure("", ""); }

    IdMappings mappings{Orv::MeIdTranslator::instance()};
};

}

TEST_F(StepsTest, ConvertDn_GoesBothWays) {
    EXPECT_EQ(mappings.convertDn("ManagedElement=paris", IdMappings::ToInternal),
              "ManagedElement=1");
    EXPECT_EQ(mappings.convertDn("ManagedElement=1", IdMappings::ToExternal),
              "ManagedElement=paris");
    static_assert(IdMappings::ToInternal == 0 && IdMappings::ToExternal == 1);
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

TEST_F(StepsTest, IsOneText_TestsTypeCountAndText) {
    OrvMoAttributeValue_3 slot{};
    OrvMoAttributeValue slot1{};
    slot.string = slot1.string = "x";
    const OrvMoAttributeValueContainer_3 one{OrvMoAttributeTypeString_3, 1, &slot};
    EXPECT_TRUE(isOneText(&one));
    const OrvMoAttributeValueContainer two{OrvMoAttributeTypeString_3, 2, &slot1};
    const OrvMoAttributeValueContainer ref{OrvMoAttributeTypeMoRef_3, 1, &slot1};
    const OrvMoAttributeValueContainer bare{OrvMoAttributeTypeString_3, 1, nullptr};
    EXPECT_FALSE(isOneText(&two));
    EXPECT_FALSE(isOneText(&ref));
    EXPECT_FALSE(isOneText(&bare));
    slot.string = nullptr;
    EXPECT_FALSE(isOneText(&one));
    EXPECT_FALSE(isOneText(static_cast<const OrvMoAttributeValueContainer*>(nullptr)));
}

TEST_F(StepsTest, ExternalRootId_IsWhatStandsBehindTheFirstEqualsSign) {
    EXPECT_EQ(externalRootId(mappings, "1"), "paris");
    EXPECT_EQ(externalRootId(mappings, "london"), "") << "cannot be translated";
    Orv::MeIdTranslator::instance()->configure("a=b", "");
    EXPECT_EQ(externalRootId(mappings, "1"), "a=b");
}

TEST_F(StepsTest, IdSlot_ReadsATextUnderTheCodesOfTextsOnly) {
    OrvMoAttributeValue_3 slot{};
    slot.string = "a,b";
    for (const std::int32_t type : {OrvMoAttributeTypeString_3, OrvMoAttributeTypeMoRef_3}) {
        const OrvMoAttributeValueContainer_3 uncounted{type, 0, &slot};
        EXPECT_STREQ(idSlotOf(&uncounted).text, "a,b");
        EXPECT_TRUE(idSlotOf(&uncounted).isRefused());
    }
    slot.uint64 = 1; // an address that must not be read
    const OrvMoAttributeValueContainer_3 foreign{200, 1, &slot};
    EXPECT_EQ(idSlotOf(&foreign).text, nullptr);
    EXPECT_TRUE(idSlotOf(&foreign).isRefused());
    slot.uint64 = 0;
    EXPECT_FALSE(idSlotOf(&foreign).isRefused());
    const OrvMoAttributeValueContainer_3 bare{OrvMoAttributeTypeString_3, 1, nullptr};
    EXPECT_FALSE(idSlotOf(&bare).isSet);
    EXPECT_FALSE(idSlotOf(static_cast<const OrvMoAttributeValueContainer_3*>(nullptr)).isRefused());
}

TEST_F(StepsTest, IdSlot_RefusesOnlyATextThatIsNoNamingValue) {
    const auto refused = [](const char* text) { return IdSlot{true, text}.isRefused(); };
    EXPECT_FALSE(refused(""));
    EXPECT_FALSE(refused("paris"));
    EXPECT_TRUE(refused("a,b"));
    EXPECT_TRUE(isNetworkManagedElementId("networkManagedElementId"));
    EXPECT_FALSE(isNetworkManagedElementId("networkManagedElementId2"));
}
