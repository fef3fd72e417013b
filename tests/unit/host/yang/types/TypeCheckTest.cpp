// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "yang/types/TypeCheck.h"

#include "YangTestSupport.h"
#include "model/ValueCheck.h"

#include <gtest/gtest.h>

namespace OrvHost {
namespace {

std::string refusal(std::string_view attribute, const std::string& text) {
    const TypeDef& type = attributeOf(siteModel(), "Site", attribute).type;
    return type.check ? type.check(text) : "";
}

TEST(TypeCheck, Integers_AreHeldToTheirBitsAndRanges) {
    EXPECT_EQ(refusal("tiny", "-128"), "");
    EXPECT_EQ(refusal("tiny", "128"), "128 is not in the range -128..127");
    EXPECT_EQ(refusal("small", "255"), "");
    EXPECT_EQ(refusal("small", "256"), "256 is not in the range 0..255");
    EXPECT_EQ(refusal("small", "-1"), "\"-1\" is not a whole number of 0 or more");
    EXPECT_EQ(refusal("large", "-9223372036854775808"), "");
    EXPECT_EQ(refusal("huge", "18446744073709551615"), "");
    EXPECT_EQ(refusal("port", "20"), "");
    EXPECT_EQ(refusal("port", "15"), "15 is not in the range 1..10 | 20");
    EXPECT_EQ(refusal("tiny", "ten"), "\"ten\" is not a whole number");
}

TEST(TypeCheck, Decimals_AreHeldToRangeAndDigits) {
    EXPECT_EQ(refusal("ratio", "2.25"), "");
    EXPECT_EQ(refusal("ratio", "-1.5"), "");
    EXPECT_EQ(refusal("ratio", "0.125"), "");
    EXPECT_EQ(refusal("ratio", "2.251"), "2.251 is not in the range -1.5..2.25");
    EXPECT_EQ(refusal("ratio", "0.1234"), "0.1234 has more than 3 digits after the point");
    EXPECT_EQ(refusal("ratio", "inf"), "\"inf\" is not a decimal number");
    EXPECT_EQ(refusal("ratio", ""), "\"\" is not a decimal number");
}

TEST(TypeCheck, Decimals_WithoutRange_FitInto64Bits) {
    const TypeCheck::Function check = TypeCheck::ofDecimal({}, 2);
    EXPECT_EQ(check("92233720368547.75"), "");
    EXPECT_NE(check("1e30"), "");
}

TEST(TypeCheck, Texts_AreCountedByCharacters) {
    EXPECT_EQ(refusal("label", "åäöåäöåä"), "");
    EXPECT_EQ(refusal("label", "a"), "\"a\" has a length of 1, not of 2..8");
    EXPECT_NE(refusal("label", "nine char"), "");
}

TEST(TypeCheck, Texts_ThatNoFileCanHold_AreRefused) {
    const std::string reason = "the text holds a control character or is not valid UTF-8";
    EXPECT_EQ(refusal("other", "bell \x07"), reason);
    EXPECT_EQ(refusal("other", "\xC3"), reason);
    EXPECT_EQ(refusal("other", "\xC0\x80"), reason);
    EXPECT_EQ(refusal("other", "\xED\xA0\x80"), reason);
    EXPECT_EQ(refusal("other", "\xF4\x90\x80\x80"), reason);
    EXPECT_EQ(refusal("other", "tab\t and line\n"), "");
    EXPECT_EQ(refusal("other", "\xF0\x9F\x93\xA1"), "");
}

TEST(TypeCheck, PatternsUnionsBitsAndBinaries_AreChecked) {
    EXPECT_EQ(refusal("code", "AB12"), "");
    EXPECT_NE(refusal("code", "ab"), "");
    EXPECT_EQ(refusal("mixed", "AUTO"), "");
    EXPECT_EQ(refusal("mixed", "65535"), "");
    EXPECT_NE(refusal("mixed", "65536"), "");
    EXPECT_EQ(refusal("twoInts", "150"), "");
    EXPECT_NE(refusal("twoInts", "50"), "");
    EXPECT_EQ(refusal("flags", "up down"), "");
    EXPECT_NE(refusal("flags", "sideways"), "");
    EXPECT_EQ(refusal("blob", "AQID"), "");
    EXPECT_NE(refusal("blob", "AQIDBAUGBwg="), "");
}

TEST(TypeCheck, Keys_OfNumbers_MustBeCanonical) {
    const TypeDef& type = attributeOf(siteModel(), "Antenna", "number").type;
    EXPECT_EQ(type.kind, ValueKind::String);
    EXPECT_EQ(type.check("7"), "");
    EXPECT_EQ(type.check("007"), "\"007\" names an object as \"7\" only");
    EXPECT_NE(type.check("seven"), "");
}

TEST(TypeCheck, WholeValues_AreJudgedByTheModel) {
    const AttributeDef& bands = attributeOf(siteModel(), "Site", "bands");
    const Value number = std::uint64_t{7};
    EXPECT_EQ(whyRefused(bands, {ValueKind::Uint, {number, number, number}}), "");
    EXPECT_NE(whyRefused(bands, {ValueKind::Uint, {number, number, number, number}}), "");
    EXPECT_NE(whyRefused(bands, {ValueKind::Uint, {Value(std::uint64_t{70000})}}), "");
    const AttributeDef& mood = attributeOf(siteModel(), "Site", "mood");
    EXPECT_EQ(whyRefused(mood, {ValueKind::Enumeration, {Value(std::string("BAD"))}}), "");
    EXPECT_NE(whyRefused(mood, {ValueKind::Enumeration, {Value(std::string("SAD"))}}), "");
}

TEST(TypeCheck, Checks_OutliveTheReader) {
    std::function<std::string(const std::string&)> check;
    {
        const YangModel model = modelOfBody("list A { key id; leaf id { type string; }"
                                            " leaf b { type string { pattern 'x+'; } } }");
        check = attributeOf(model, "A", "b").type.check;
    }
    EXPECT_EQ(check("xx"), "");
    EXPECT_NE(check("y"), "");
}

}
}
