// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "model/KeyValues.h"

#include "DnUtil.h"

#include <gmock/gmock.h>

namespace {

using namespace OrvHost;
using testing::HasSubstr;

using Keys = std::vector<std::string>;

AttributeDef keyOf(const std::string& name, ValueKind kind = ValueKind::String) {
    AttributeDef def;
    def.name = name;
    def.type.kind = kind;
    return def;
}

TEST(KeyValues, Join_PlainValues_StandsBetweenBars) {
    EXPECT_EQ(joinKeys({"bgp", "main"}), "bgp|main");
    EXPECT_EQ(joinKeys({"10.0.0.0/8", "ge-0/0/1.7", "a b"}), "10.0.0.0/8|ge-0/0/1.7|a b");
}

TEST(KeyValues, Join_WhatANameCannotHold_IsEscaped) {
    EXPECT_EQ(joinKeys({"a|b", "50%"}), "a%7Cb|50%25");
    EXPECT_EQ(joinKeys({"x=1,y", "\"q\"\\"}), "x%3D1%2Cy|%22q%22%5C");
    EXPECT_EQ(joinKeys({" a", "b "}), "%20a|b%20");
    EXPECT_EQ(joinKeys({"tab\t", "line\n"}), "tab%09|line%0A");
    EXPECT_EQ(joinKeys({"", ""}), "|");
    EXPECT_EQ(joinKeys({"\xC3\xA9t\xC3\xA9", " "}), "\xC3\xA9t\xC3\xA9|%20");
}

// Every list of keys has one name, which can be in a DN, and every name one list of keys.
TEST(KeyValues, Split_OfAnyJoinedKeys_GivesTheSameKeys) {
    const std::string alphabet[] = {"", "|", "%", "%7C", ",", "=", " ", "a", "7C", "\x7f", "\t"};
    for (const std::string& first : alphabet) {
        for (const std::string& second : alphabet) {
            for (const std::string& third : alphabet) {
                const Keys keys{first + second, third + first, second};
                const std::string name = joinKeys(keys);
                EXPECT_EQ(splitKeys(name, 3), keys) << name;
                EXPECT_TRUE(Orv::DnUtil::validateMoNamingAttr(name.c_str())) << name;
            }
        }
    }
}

TEST(KeyValues, Split_OfWhatJoinDoesNotWrite_GivesNothing) {
    for (const char* name : {"a", "a|b|c", "", "a%41|b", "a%7c|b", "a%|b", "a%2|b", "a%zz|b",
                             "a,|b", " a|b", "a|b ", "a%FF|b"}) {
        EXPECT_EQ(splitKeys(name, 2), std::nullopt) << name;
    }
}

TEST(KeyValues, WhyNoKeys_SaysWhatWasExpected) {
    AttributeDef next = keyOf("next", ValueKind::Enumeration);
    next.type.enumerators = {"up", "down"};
    const std::vector<AttributeDef> keys{keyOf("prefix"), next};
    EXPECT_EQ(whyNoKeys(keys, "a|up"), "");
    EXPECT_EQ(whyNoKeys(keys, "a"), "expected the 2 key values prefix|next, got 1");
    EXPECT_EQ(whyNoKeys(keys, "a%41|up"), "these key values are written as \"aA|up\"");
    EXPECT_EQ(whyNoKeys(keys, "a%FF|up"), "these key values are written as \"a%25FF|up\"");
    EXPECT_THAT(whyNoKeys(keys, "a|left"),
                HasSubstr("key \"next\" of prefix|next: \"left\" is none of the permitted names"));
}

}
