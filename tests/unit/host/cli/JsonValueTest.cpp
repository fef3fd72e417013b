// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "cli/output/JsonValue.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <vector>

namespace OrvHost {
namespace {

using testing::HasSubstr;
using testing::ThrowsMessage;

TEST(JsonValueTest, Braces_WithPairsOrWithout_AreAnObjectOrAnArray) {
    const std::vector<std::string> texts{"a", "b"};
    JsonValue document{{"name", "x"}, {"count", 3}, {"texts", texts}};
    document["more"].add({{"inner", {1, 2.5, true}}});
    document["more"].add({"p", "q"});
    document["name"] = nullptr;
    EXPECT_EQ(toLine(document), R"({"name":null,"count":3,"texts":["a","b"],)"
                                R"("more":[{"inner":[1,2.5,true]},["p","q"]]})");
    EXPECT_EQ(toLine(JsonValue::array()), "[]");
    EXPECT_EQ(toLine(JsonValue::object()), "{}");
}

TEST(JsonValueTest, Parse_AnyDocument_IsWrittenTheSame) {
    for (const char* const text :
         {"null", "true", "-9223372036854775808", "18446744073709551615", "0.25", "1e+30", "1.0",
          R"("a\"\\\n\u0001ä€")", "[]", "{}", R"({"b":[{"a":[[],{}]},-1],"a":{"b":false}})"}) {
        EXPECT_EQ(toLine(JsonValue::parse(text)), text);
    }
}

TEST(JsonValueTest, Parse_WhatIsNoDocument_SaysWhereOrWhy) {
    try {
        JsonValue::parse("[1, 2");
        FAIL() << "it is no JSON";
    } catch (const JsonSyntaxError& error) {
        EXPECT_EQ(error.at(), 6U);
    }
    EXPECT_THAT([] { JsonValue::parse(R"([{"a": 1, "a": 2}])"); },
                ThrowsMessage<JsonError>(HasSubstr("\"a\" stands twice")));
    EXPECT_THAT([] { JsonValue::parse(std::string(257, '[') + std::string(257, ']')); },
                ThrowsMessage<JsonError>(HasSubstr("deeper than 256 levels")));
    EXPECT_NO_THROW(JsonValue::parse(std::string(256, '[') + std::string(256, ']')));
}

TEST(JsonValueTest, Get_AnotherTypeOrSize_IsRefused) {
    EXPECT_EQ(JsonValue(-1).get<std::int64_t>(), -1);
    EXPECT_EQ(JsonValue(7).get<double>(), 7.0);
    EXPECT_THROW(JsonValue(-1).get<std::size_t>(), JsonError);
    EXPECT_THROW(JsonValue(INT64_MAX).get<int>(), JsonError);
    EXPECT_THROW(JsonValue("1").get<int>(), JsonError);
    EXPECT_THROW(JsonValue("1").get<double>(), JsonError);
    EXPECT_THROW(JsonValue(0).get<bool>(), JsonError);
    EXPECT_THROW(JsonValue(nullptr).get<std::string>(), JsonError);
    EXPECT_THROW(JsonValue({1, 2}).get<std::vector<std::string>>(), JsonError);
    EXPECT_THAT(
        [] {
            JsonValue({{"a", 1}}).at("b");
        },
        ThrowsMessage<JsonError>("an object with the member \"b\" was expected, not {\"a\":1}"));
    EXPECT_THROW(JsonValue(1)["a"], JsonError);
    EXPECT_THROW(JsonValue("a").add(1), JsonError);
}

TEST(JsonValueTest, Equal_NumbersAndMembers_ByWhatTheyMean) {
    EXPECT_EQ(JsonValue(3), JsonValue(3U));
    EXPECT_EQ(JsonValue(3), JsonValue(3.0));
    EXPECT_NE(JsonValue(-1), JsonValue(UINT64_MAX));
    EXPECT_EQ(JsonValue({{"a", 1}, {"b", 2}}), JsonValue({{"b", 2}, {"a", 1}}));
    EXPECT_NE(JsonValue({{"a", 1}}), JsonValue({{"a", 1}, {"b", 2}}));
    EXPECT_NE(JsonValue({1, 2}), JsonValue({2, 1}));
}

TEST(JsonValueTest, ToLine_TextThatIsNoUtf8_IsStillADocument) {
    EXPECT_EQ(toLine(JsonValue("broken \xff")), "\"broken \xef\xbf\xbd\"");
}

}
}
