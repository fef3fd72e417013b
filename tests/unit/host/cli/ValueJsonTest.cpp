// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "cli/output/ValueJson.h"

#include "model/building/ModelBuilder.h"

#include <gtest/gtest.h>

namespace OrvHost {
namespace {

/// A container for slots that the test owns.
OrvMoAttributeValueContainer_3 container(std::int32_t type,
                                         std::vector<OrvMoAttributeValue_3>& slots) {
    return {type, static_cast<std::uint32_t>(slots.size()), slots.data()};
}

OrvMoAttributeValue_3 text(const char* value) {
    OrvMoAttributeValue_3 slot{};
    slot.string = value;
    return slot;
}

JsonValue convert(std::int32_t type, std::vector<OrvMoAttributeValue_3> slots,
                  const AttributeDef* def = nullptr) {
    const OrvMoAttributeValueContainer_3 value = container(type, slots);
    return toJson(toReadValue(&value, def));
}

TEST(ValueJsonTest, Scalars_OfEachType_KeepTheirKind) {
    OrvMoAttributeValue_3 slot{};
    slot.boolean = true;
    EXPECT_EQ(convert(OrvMoAttributeTypeBool_3, {slot}), true);
    slot.int64 = INT64_MIN;
    EXPECT_EQ(convert(OrvMoAttributeTypeInt64_3, {slot}), INT64_MIN);
    slot.uint64 = UINT64_MAX;
    EXPECT_EQ(convert(OrvMoAttributeTypeUint64_3, {slot}), UINT64_MAX);
    slot.real = 0.25;
    EXPECT_EQ(convert(OrvMoAttributeTypeDouble_3, {slot}), 0.25);
    EXPECT_EQ(convert(OrvMoAttributeTypeString_3, {text("a")}), "a");
    EXPECT_EQ(convert(OrvMoAttributeTypeEnumeration_3, {text("LOCKED")}), "LOCKED");
    EXPECT_EQ(convert(OrvMoAttributeTypeMoRef_3, {text("A=1")}), "A=1");
}

TEST(ValueJsonTest, Nothing_NullContainerOrNoValues_IsNull) {
    const OrvMoAttributeValueContainer_3* none = nullptr;
    EXPECT_TRUE(toJson(toReadValue(none, nullptr)).isNull());
    EXPECT_TRUE(convert(OrvMoAttributeTypeString_3, {}).isNull());
    EXPECT_TRUE(convert(OrvMoAttributeTypeString_3, {text(nullptr)}).isNull());
}

TEST(ValueJsonTest, Version1_StructWithAReference_IsAnObject) {
    OrvMoAttributeValue slot{};
    slot.moRef = "A=1";
    OrvMoAttributeValueContainer inner{OrvMoAttributeTypeMoRef_3, 1, &slot};
    OrvMoStructMember member{"ref", &inner, nullptr};
    OrvMoAttributeValue head{};
    head.structValue = &member;
    const OrvMoAttributeValueContainer value{OrvMoAttributeTypeStruct_3, 1, &head};
    EXPECT_EQ(toJson(toReadValue(&value, nullptr)), JsonValue({{"ref", "A=1"}}));
}

TEST(ValueJsonTest, Multiplicity_GivenByTheModelOrElseByTheCount_DecidesForAnArray) {
    AttributeDef many;
    many.multiplicity = {0, kUnbounded};
    EXPECT_EQ(convert(OrvMoAttributeTypeString_3, {text("a")}, &many), JsonValue::array({"a"}));
    EXPECT_EQ(convert(OrvMoAttributeTypeString_3, {}, &many), JsonValue::array());
    EXPECT_EQ(convert(OrvMoAttributeTypeString_3, {text("a"), text("b")}),
              JsonValue::array({"a", "b"}));
}

TEST(ValueJsonTest, Struct_MembersAndEmpty_AreObjects) {
    std::vector<OrvMoAttributeValue_3> inner{text("x")};
    OrvMoAttributeValueContainer_3 value = container(OrvMoAttributeTypeString_3, inner);
    OrvMoStructMember_3 unset{"unset", nullptr, nullptr};
    OrvMoStructMember_3 name{"name", &value, &unset};
    OrvMoAttributeValue_3 slot{};
    slot.structValue = &name;
    EXPECT_EQ(convert(OrvMoAttributeTypeStruct_3, {slot}),
              (JsonValue{{"name", "x"}, {"unset", nullptr}}));
    slot.structValue = nullptr;
    EXPECT_EQ(convert(OrvMoAttributeTypeStruct_3, {slot}), JsonValue::object());
}

TEST(ValueJsonTest, UnknownType_Value_IsShownWithCodeAndBytes) {
    OrvMoAttributeValue_3 slot{};
    slot.uint64 = 99;
    EXPECT_EQ(convert(200, {slot}), (JsonValue{{"type", 200}, {"raw", 99}}));
}

}
}
