// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "store/AttributeBytes.h"
#include "SampleStore.h"

#include <gtest/gtest.h>

#include <limits>

namespace OrvHost {
namespace {

class AttributeBytesTest : public testing::Test {
protected:
    void write(const std::string& name, const AttributeValue& value) {
        AttributeBytes::write(moc, bytes, *moc.findAttributeIndex(name), value);
    }
    std::optional<AttributeValue> read(const std::string& name) const {
        return AttributeBytes::read(moc, bytes, *moc.findAttributeIndex(name));
    }
    void expectBack(const std::string& name, const AttributeValue& value) {
        write(name, value);
        const auto back = read(name);
        ASSERT_TRUE(back) << name;
        EXPECT_EQ(*back, value) << name;
    }

    const ClassDef& moc = sampleStoreModel().classes[*sampleStoreModel().findClass("Node")];
    std::string bytes;
};

TEST_F(AttributeBytesTest, Read_WhatWasWritten_IsTheSameForEveryKind) {
    expectBack("label", text("some text"));
    expectBack("label", text(""));
    expectBack("label", text(std::string(300, 'x')));
    for (const std::int64_t number :
         {std::int64_t{0}, std::int64_t{-1}, std::int64_t{63}, std::int64_t{-65},
          std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()}) {
        expectBack("height", integer(number));
    }
    expectBack("port", natural(0));
    expectBack("port", natural(std::numeric_limits<std::uint64_t>::max()));
    expectBack("power", {ValueKind::Double, {-0.125}});
    expectBack("enabled", {ValueKind::Bool, {true}});
    expectBack("enabled", {ValueKind::Bool, {false}});
    expectBack("mode", choice("blue"));
    expectBack("tags", texts({"a", "", "c"}));
    expectBack("peers", refs({"Network=1,Node=a", "Network=1,Node=b"}));
}

TEST_F(AttributeBytesTest, Read_NestedStructs_KeepMembersAndTheirOrder) {
    const StructValue inner{{{"depth", integer(-3)}}};
    const StructValue outer{{{"inner", {ValueKind::Struct, {inner, StructValue(), inner}}},
                             {"contact", refs({"Network=1,Node=a"})},
                             {"latitude", {ValueKind::Double, {1.5}}}}};
    expectBack("position", {ValueKind::Struct, {outer}});
}

TEST_F(AttributeBytesTest, Write_OneOfMany_LeavesTheOthers) {
    write("label", text("one"));
    write("height", integer(5));
    write("tags", texts({"x", "y"}));
    write("height", integer(50000));
    EXPECT_EQ(*read("label"), text("one"));
    EXPECT_EQ(*read("height"), integer(50000));
    EXPECT_EQ(*read("tags"), texts({"x", "y"}));
}

TEST_F(AttributeBytesTest, Write_NoValues_TakesTheAttributeOut) {
    write("label", text("one"));
    write("height", integer(5));
    write("label", none(ValueKind::String));
    EXPECT_FALSE(read("label"));
    EXPECT_EQ(*read("height"), integer(5));
    write("height", none(ValueKind::Int));
    EXPECT_EQ(bytes, "");
}

TEST_F(AttributeBytesTest, Write_SmallValues_TakeFewBytes) {
    write("height", integer(-60));
    EXPECT_EQ(bytes.size(), 4U); // index, length, count, number
    write("mode", choice("blue"));
    EXPECT_EQ(bytes.size(), 8U);
}

}
}
