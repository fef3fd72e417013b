// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "client/ReadValue.h"

#include <gtest/gtest.h>

#include <vector>

namespace OrvHost {
namespace {

OrvMoAttributeValueContainer_3 container(std::int32_t type,
                                         std::vector<OrvMoAttributeValue_3>& slots) {
    return {type, static_cast<std::uint32_t>(slots.size()), slots.data()};
}

OrvMoAttributeValue_3 text(const char* value) {
    OrvMoAttributeValue_3 slot{};
    slot.string = value;
    return slot;
}

TEST(ReadValueTest, ToAttributeValue_AStruct_LeavesOutMembersWithoutValues) {
    std::vector<OrvMoAttributeValue_3> inner{text("x")};
    OrvMoAttributeValueContainer_3 value = container(OrvMoAttributeTypeString_3, inner);
    OrvMoStructMember_3 unset{"unset", nullptr, nullptr};
    OrvMoStructMember_3 name{"name", &value, &unset};
    std::vector<OrvMoAttributeValue_3> slots(1);
    slots[0].structValue = &name;
    const OrvMoAttributeValueContainer_3 read = container(OrvMoAttributeTypeStruct_3, slots);
    const auto result = toAttributeValue(toReadValue(&read, nullptr), ValueKind::Struct);
    ASSERT_TRUE(result.has_value());
    const StructValue expected({{"name", {ValueKind::String, {Value(std::string("x"))}}}});
    EXPECT_EQ(*result, (AttributeValue{ValueKind::Struct, {Value(expected)}}));
}

TEST(ReadValueTest, ToAttributeValue_NoValues_HasTheKindThatIsAskedFor) {
    const OrvMoAttributeValueContainer_3* none = nullptr;
    EXPECT_EQ(toAttributeValue(toReadValue(none, nullptr), ValueKind::MoRef),
              (AttributeValue{ValueKind::MoRef, {}}));
}

TEST(ReadValueTest, ToAttributeValue_ANullTextOrAnUnknownType_IsNothing) {
    std::vector<OrvMoAttributeValue_3> nulls{text(nullptr)};
    const OrvMoAttributeValueContainer_3 null = container(OrvMoAttributeTypeString_3, nulls);
    EXPECT_FALSE(toAttributeValue(toReadValue(&null, nullptr), ValueKind::String).has_value());
    std::vector<OrvMoAttributeValue_3> bytes{text("x")};
    const OrvMoAttributeValueContainer_3 unknown = container(200, bytes);
    EXPECT_FALSE(toAttributeValue(toReadValue(&unknown, nullptr), ValueKind::String).has_value());
}

TEST(ReadValueTest, IsList_SeveralValuesOrADefinitionThatAllowsThem_IsTrue) {
    std::vector<OrvMoAttributeValue_3> one{text("a")};
    std::vector<OrvMoAttributeValue_3> two{text("a"), text("b")};
    const OrvMoAttributeValueContainer_3 single = container(OrvMoAttributeTypeString_3, one);
    const OrvMoAttributeValueContainer_3 several = container(OrvMoAttributeTypeString_3, two);
    AttributeDef many;
    many.multiplicity = {0, kUnbounded};
    EXPECT_FALSE(toReadValue(&single, nullptr).isList);
    EXPECT_TRUE(toReadValue(&single, &many).isList);
    EXPECT_TRUE(toReadValue(&several, nullptr).isList);
}

}
}
