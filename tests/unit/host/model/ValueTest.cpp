// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "model/Value.h"
#include "model/ValueCheck.h"

#include "SampleModel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace OrvHost {

namespace {

AttributeValue textValue(std::vector<Value> values) {
    return {ValueKind::String, std::move(values)};
}

const AttributeDef& cellAttribute(const Model& model, const char* name) {
    return *model.classes[*model.findClass("Cell")].findAttribute(name);
}

Value place(std::vector<NamedValue> members) {
    return StructValue{std::move(members)};
}

}

TEST(ValueText, EveryAlternative_ReadsAsAPersonWritesIt) {
    EXPECT_EQ(toText(Value(true)), "true");
    EXPECT_EQ(toText(Value(false)), "false");
    EXPECT_EQ(toText(Value(std::int64_t{-5})), "-5");
    EXPECT_EQ(toText(Value(std::uint64_t{18446744073709551615U})), "18446744073709551615");
    EXPECT_EQ(toText(Value(0.25)), "0.25");
    EXPECT_EQ(toText(Value(1e300)), "1e+300");
    EXPECT_EQ(toText(Value("plain")), "plain");
    EXPECT_EQ(toText(place({})), "{}");
    EXPECT_EQ(toText(place({{"town", textValue({"Oslo"})}, {"zip", textValue({"1", "2"})}})),
              "{town=Oslo, zip=[1, 2]}");
    EXPECT_EQ(toText(place({{"town", textValue({})}})), "{town=[]}");
}

TEST(ValueEquality, DifferentKindOrMember_IsDifferent) {
    EXPECT_TRUE(textValue({"a"}) == textValue({"a"}));
    EXPECT_FALSE(textValue({"a"}) == (AttributeValue{ValueKind::MoRef, {"a"}}));
    EXPECT_FALSE(textValue({"a"}) == textValue({"a", "a"}));
    EXPECT_TRUE(place({{"x", textValue({"a"})}}) == place({{"x", textValue({"a"})}}));
    EXPECT_FALSE(place({{"x", textValue({"a"})}}) == place({{"y", textValue({"a"})}}));
}

TEST(ValueKinds, EveryKind_HasAnAlternativeAndAName) {
    const std::vector<std::pair<ValueKind, Value>> samples = {{ValueKind::Bool, true},
                                                              {ValueKind::Int, std::int64_t{1}},
                                                              {ValueKind::Uint, std::uint64_t{1}},
                                                              {ValueKind::Double, 1.0},
                                                              {ValueKind::Enumeration, "a"},
                                                              {ValueKind::String, "a"},
                                                              {ValueKind::MoRef, "a"},
                                                              {ValueKind::Struct, StructValue{}}};
    for (const auto& [kind, value] : samples) {
        EXPECT_TRUE(isOfKind(value, kind)) << kindName(kind);
        EXPECT_FALSE(isOfKind(value, kind == ValueKind::Bool ? ValueKind::Int : ValueKind::Bool));
    }
}

TEST(WhyRefused, FittingValues_AreAccepted) {
    const Model model = sampleModel();
    EXPECT_EQ(whyRefused(cellAttribute(model, "labels"), textValue({"a", "b"})), "");
    EXPECT_EQ(whyRefused(cellAttribute(model, "labels"), textValue({})), "");
    EXPECT_EQ(whyRefused(cellAttribute(model, "state"), {ValueKind::Enumeration, {"busy"}}), "");
    EXPECT_EQ(whyRefused(cellAttribute(model, "place"),
                         {ValueKind::Struct, {place({{"town", textValue({"Oslo"})}})}}),
              "");
}

TEST(WhyRefused, WrongKind_NamesBothKinds) {
    const Model model = sampleModel();
    EXPECT_EQ(whyRefused(cellAttribute(model, "next"), textValue({"a"})),
              "the value is a text, expected a reference");
    EXPECT_EQ(whyRefused(cellAttribute(model, "offset"), {ValueKind::Int, {"a"}}),
              "\"a\" is not a whole number");
}

TEST(WhyRefused, WrongCount_NamesCountAndBounds) {
    const Model model = sampleModel();
    EXPECT_EQ(whyRefused(cellAttribute(model, "locked"), {ValueKind::Bool, {}}),
              "0 values, expected 1");
    EXPECT_EQ(whyRefused(cellAttribute(model, "offset"),
                         {ValueKind::Int, {std::int64_t{1}, std::int64_t{2}}}),
              "2 values, expected 0..1");
}

TEST(WhyRefused, UnknownEnumerator_ListsThePermittedOnes) {
    const Model model = sampleModel();
    EXPECT_EQ(whyRefused(cellAttribute(model, "state"), {ValueKind::Enumeration, {"off"}}),
              "\"off\" is none of the permitted names: idle, busy");
}

TEST(WhyRefused, UnknownEnumeratorOfMany_ListsTheFirstOnes) {
    AttributeDef def;
    def.type.kind = ValueKind::Enumeration;
    for (int i = 0; i < 22; ++i) {
        def.type.enumerators.push_back("e" + std::to_string(i));
    }
    EXPECT_THAT(whyRefused(def, {ValueKind::Enumeration, {"off"}}),
                testing::EndsWith(", e18, e19 and 2 more"));
}

TEST(WhyRefused, Structs_AreJudgedMemberByMember) {
    const Model model = sampleModel();
    const AttributeDef& def = cellAttribute(model, "place");
    const NamedValue town{"town", textValue({"Oslo"})};
    const auto why = [&](std::vector<NamedValue> members) {
        return whyRefused(def.type, place(std::move(members)));
    };
    EXPECT_EQ(why({}), "the member \"town\" is missing");
    EXPECT_EQ(why({town, {"zip", textValue({"1"})}}), "the struct has no member \"zip\"");
    EXPECT_EQ(why({town, town}), "the member \"town\" is there more than once");
    EXPECT_EQ(why({town, {"node", textValue({"Node=1"})}}),
              "member \"node\": the value is a text, expected a reference");
}

TEST(WhyRefused, CheckOfTheType_JudgesTheTextForm) {
    AttributeDef def;
    def.type.kind = ValueKind::Int;
    def.type.check = [](const std::string& text) {
        return text == "7" ? std::string("seven is out of range") : std::string();
    };
    EXPECT_EQ(whyRefused(def, {ValueKind::Int, {std::int64_t{7}}}), "seven is out of range");
    EXPECT_EQ(whyRefused(def, {ValueKind::Int, {std::int64_t{8}}}), "");
}

}
