// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "cli/input/ValueParser.h"
#include "cli/errors/CliErrors.h"
#include "cli/input/Assignments.h"

#include <gmock/gmock.h>

namespace OrvHost {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::ThrowsMessage;

AttributeDef attribute(ValueKind kind, std::int64_t upper = 1) {
    AttributeDef def;
    def.name = "x";
    def.type.kind = kind;
    def.multiplicity = {0, upper};
    return def;
}

AttributeValue parsed(const std::string& text, const AttributeDef* def) {
    return toAttributeValue(parseValue(text, def), def);
}

AttributeValue parsed(const std::string& text, ValueKind kind, std::int64_t upper = 1) {
    const AttributeDef def = attribute(kind, upper);
    return parsed(text, &def);
}

AttributeValue one(ValueKind kind, Value value) {
    return {kind, {std::move(value)}};
}

TEST(ValueParserTest, Value_OfEachKind_HasTheKindOfTheModel) {
    using Kind = ValueKind;
    EXPECT_EQ(parsed("true", Kind::Bool), one(Kind::Bool, true));
    EXPECT_EQ(parsed("-7", Kind::Int), one(Kind::Int, std::int64_t{-7}));
    EXPECT_EQ(parsed("7", Kind::Int), one(Kind::Int, std::int64_t{7}));
    EXPECT_EQ(parsed("18446744073709551615", Kind::Uint), one(Kind::Uint, UINT64_MAX));
    EXPECT_EQ(parsed("5", Kind::Double), one(Kind::Double, 5.0));
    EXPECT_EQ(parsed("-0.25", Kind::Double), one(Kind::Double, -0.25));
    EXPECT_EQ(parsed("LOCKED", Kind::Enumeration), one(Kind::Enumeration, std::string("LOCKED")));
    EXPECT_EQ(parsed("A=1,B=2", Kind::MoRef), one(Kind::MoRef, std::string("A=1,B=2")));
}

TEST(ValueParserTest, Text_ThatLooksLikeSomethingElse_StaysText) {
    for (const std::string text : {"7", "true", "[a]", "{", ""}) {
        EXPECT_EQ(parsed(text, ValueKind::String), one(ValueKind::String, text)) << text;
    }
    EXPECT_EQ(parsed("\"null\"", ValueKind::String), one(ValueKind::String, std::string("null")));
}

TEST(ValueParserTest, Null_OfAnyKind_IsNoValueOfThatKind) {
    EXPECT_EQ(parsed("null", ValueKind::Uint), (AttributeValue{ValueKind::Uint, {}}));
    EXPECT_EQ(parsed("null", ValueKind::MoRef, 4), (AttributeValue{ValueKind::MoRef, {}}));
    EXPECT_EQ(parsed("[]", ValueKind::MoRef, 4), (AttributeValue{ValueKind::MoRef, {}}));
    EXPECT_EQ(parsed("null", nullptr), (AttributeValue{ValueKind::String, {}}));
}

TEST(ValueParserTest, List_OfTheModelsKind_KeepsItsOrder) {
    const AttributeValue value = parsed("[3, 1]", ValueKind::Uint, 4);
    EXPECT_EQ(value.kind, ValueKind::Uint);
    EXPECT_THAT(value.values, ElementsAre(Value(std::uint64_t{3}), Value(std::uint64_t{1})));
    EXPECT_EQ(parsed("[3, 1]", ValueKind::Uint), value);
    EXPECT_EQ(parsed("A=1", ValueKind::MoRef, 4), one(ValueKind::MoRef, std::string("A=1")));
}

TEST(ValueParserTest, Struct_WithMembers_TypesThemByTheModel) {
    AttributeDef def = attribute(ValueKind::Struct);
    def.type.members = {attribute(ValueKind::MoRef)};
    const AttributeValue value = parsed(R"({"x": "A=1", "other": 2})", &def);
    const auto& members = std::get<StructValue>(value.values.at(0)).members;
    ASSERT_EQ(members.size(), 2U);
    EXPECT_EQ(members[0].second, one(ValueKind::MoRef, std::string("A=1")));
    EXPECT_EQ(members[1].second, one(ValueKind::Int, std::int64_t{2}));
}

TEST(ValueParserTest, WrongType_ForTheModel_KeepsItsOwnForTheComponentToRefuse) {
    EXPECT_EQ(parsed("tall", ValueKind::Uint), one(ValueKind::String, std::string("tall")));
    EXPECT_EQ(parsed("-1", ValueKind::Uint), one(ValueKind::Int, std::int64_t{-1}));
    EXPECT_EQ(parsed("1.5", ValueKind::Int), one(ValueKind::Double, 1.5));
    EXPECT_EQ(parsed("18446744073709551615", ValueKind::Int), one(ValueKind::Uint, UINT64_MAX));
    EXPECT_EQ(parsed("99999999999999999999999", ValueKind::Uint),
              one(ValueKind::Double, 99999999999999999999999.0));
    EXPECT_EQ(parsed("yes", ValueKind::Bool), one(ValueKind::String, std::string("yes")));
}

TEST(ValueParserTest, Unknown_Attribute_IsOfTheTypeThatItLooksLike) {
    EXPECT_EQ(parsed("7", nullptr), one(ValueKind::Int, std::int64_t{7}));
    EXPECT_EQ(parsed("false", nullptr), one(ValueKind::Bool, false));
    EXPECT_EQ(parsed("some text", nullptr), one(ValueKind::String, std::string("some text")));
    EXPECT_EQ(parsed(R"(["a"])", nullptr), one(ValueKind::String, std::string("a")));
}

TEST(ValueParserTest, Json_Unparsable_IsUsageAndHintsAtQuotes) {
    EXPECT_THAT([] { parsed("{latitude: 1}", ValueKind::Struct); },
                ThrowsMessage<UsageError>(HasSubstr("needs single quotes around it")));
    EXPECT_THROW(parsed("[1, 2", ValueKind::Uint, 4), UsageError);
    EXPECT_THROW(parsed("\"open", ValueKind::String), UsageError);
    EXPECT_THROW(parsed("[", nullptr), UsageError);
}

TEST(ValueParserTest, List_OfSeveralTypes_IsUsage) {
    EXPECT_THROW(parsed("[1, \"a\"]", ValueKind::Uint, 4), UsageError);
    EXPECT_THROW(parsed("[[1], [2]]", ValueKind::Uint, 4), UsageError);
    EXPECT_THROW(parsed("[null]", ValueKind::Uint, 4), UsageError);
}

// The JSON parser alone would take the last one.
TEST(ValueParserTest, Object_WithANameTwice_IsUsage) {
    EXPECT_THAT([] { parseValue(R"({"a": 1, "b": {"a": 2}, "a": 3})", nullptr); },
                ThrowsMessage<UsageError>(HasSubstr("\"a\" stands twice in one JSON object")));
    EXPECT_NO_THROW(parseValue(R"([{"a": 1}, {"a": {"a": 2}}])", nullptr));
}

TEST(ValueParserTest, Json_NestedTooDeep_IsUsage) {
    const auto nested = [](std::size_t depth) {
        return std::string(depth, '[') + std::string(depth, ']');
    };
    EXPECT_NO_THROW(parseValue(nested(200), nullptr));
    for (const std::size_t depth : {300U, 200000U}) {
        EXPECT_THAT([&] { parseValue(nested(depth), nullptr); },
                    ThrowsMessage<UsageError>(HasSubstr("nested deeper than 256 levels")));
    }
}

std::vector<NamedValue> assigned(const std::vector<std::string>& words) {
    return parseAssignments(words, [](const std::string& name) -> const AttributeDef* {
        static const AttributeDef number = attribute(ValueKind::Uint);
        static const AttributeDef texts = attribute(ValueKind::String, 4);
        return name == "number" ? &number : (name == "texts" ? &texts : nullptr);
    });
}

TEST(AssignmentsTest, Words_NamesAndValues_KeepTheirOrder) {
    EXPECT_THAT(assigned({"texts=a=b", "number=3"}),
                ElementsAre(NamedValue("texts", one(ValueKind::String, std::string("a=b"))),
                            NamedValue("number", one(ValueKind::Uint, std::uint64_t{3}))));
}

TEST(AssignmentsTest, Name_Again_AddsToItsValues) {
    const AttributeValue expected{
        ValueKind::String,
        {Value(std::string("a")), Value(std::string("b")), Value(std::string("c"))}};
    EXPECT_THAT(assigned({"texts=a", "texts=b", "texts=c"}),
                ElementsAre(NamedValue("texts", expected)));
    EXPECT_THAT(assigned({"texts=a", R"(texts=["b", "c"])"}),
                ElementsAre(NamedValue("texts", expected)));
}

TEST(AssignmentsTest, Object_WithSeveralNames_IsTakenApart) {
    EXPECT_THAT(assigned({R"({"number": 3, "texts": ["a"]})"}),
                ElementsAre(NamedValue("number", one(ValueKind::Uint, std::uint64_t{3})),
                            NamedValue("texts", one(ValueKind::String, std::string("a")))));
}

TEST(AssignmentsTest, Word_WithoutNameOrValue_IsUsage) {
    EXPECT_THROW(assigned({"number"}), UsageError);
    EXPECT_THROW(assigned({"=3"}), UsageError);
    EXPECT_THROW(assigned({""}), UsageError);
    EXPECT_THROW(assigned({"{number: 3}"}), UsageError);
}

}
}
