// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "runtime/PackedValues.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace OrvHost {
namespace {

std::vector<NamedValue> manyKinds() {
    const AttributeValue inner{ValueKind::String, {Value(std::string("in a struct"))}};
    const AttributeValue none{ValueKind::MoRef, {}};
    const StructValue whole({{"first", inner}, {"second", none}});
    const StructValue outer({{"whole", {ValueKind::Struct, {Value(whole), Value(StructValue())}}}});
    return {{"flags", {ValueKind::Bool, {Value(true), Value(false)}}},
            {"numbers",
             {ValueKind::Int,
              {Value(std::int64_t{0}), Value(std::int64_t{-1}),
               Value(std::numeric_limits<std::int64_t>::min()),
               Value(std::numeric_limits<std::int64_t>::max())}}},
            {"counts",
             {ValueKind::Uint,
              {Value(std::uint64_t{127}), Value(std::uint64_t{128}),
               Value(std::numeric_limits<std::uint64_t>::max())}}},
            {"reals", {ValueKind::Double, {Value(0.1), Value(-1e300)}}},
            {"names", {ValueKind::Enumeration, {Value(std::string("ENABLED"))}}},
            {"texts", {ValueKind::String, {Value(std::string()), Value(std::string("a\0b", 3))}}},
            {"references", {ValueKind::MoRef, {Value(std::string("Network=1,Node=1"))}}},
            {"outer", {ValueKind::Struct, {Value(outer)}}},
            {"nothing", {ValueKind::Struct, {}}}};
}

TEST(PackedValues, ValuesOfEachKind_ComeBack) {
    PackedValues packed;
    const std::string bytes = packed.pack(manyKinds());
    EXPECT_EQ(packed.unpack(bytes), manyKinds());
}

TEST(PackedValues, WhatFitsNoModel_ComesBack) {
    PackedValues packed;
    const std::vector<NamedValue> odd = {{"", {ValueKind::Int, {Value(std::string("a text"))}}},
                                         {"twice", {ValueKind::Bool, {Value(1.5)}}},
                                         {"twice", {ValueKind::Bool, {Value(true)}}}};
    EXPECT_EQ(packed.unpack(packed.pack(odd)), odd);
    EXPECT_TRUE(packed.unpack(packed.pack({})).empty());
}

// What is in the place that is written to must not show.
TEST(PackedValues, Unpack_IntoOtherValues_ReplacesThem) {
    PackedValues packed;
    const std::string many = packed.pack(manyKinds());
    const std::vector<NamedValue> few = {{"texts", {ValueKind::String, {Value(std::string("x"))}}}};
    const std::string one = packed.pack(few);
    std::vector<NamedValue> values;
    for (int round = 0; round < 2; ++round) {
        packed.unpack(many, values);
        EXPECT_EQ(values, manyKinds());
        packed.unpack(one, values);
        EXPECT_EQ(values, few);
    }
}

TEST(PackedValues, Names_AreKeptOnce) {
    PackedValues packed;
    const std::string name(1000, 'n');
    const std::vector<NamedValue> values = {{name, {ValueKind::Uint, {Value(std::uint64_t{1})}}}};
    EXPECT_LT(packed.pack(values).size(), 10U);
    EXPECT_LT(packed.pack(values).size(), 10U);
    EXPECT_EQ(packed.unpack(packed.pack(values)), values);
}

}
}
