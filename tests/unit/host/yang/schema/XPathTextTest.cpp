// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "yang/schema/XPathText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvHost {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(XPathText, RelativePaths_ClimbAndDescend) {
    const XPathMoves moves = movesOf("../../m:Cell[id = current()/../ref]/kind = 'up/down'");
    EXPECT_EQ(moves.climbs, 3U);
    EXPECT_THAT(moves.descends, ElementsAre("Cell", "id", "kind", "ref"));
    EXPECT_FALSE(moves.isUnbounded);
    EXPECT_FALSE(moves.climbsFar);
}

TEST(XPathText, WordsOfTheLanguage_AreNoNames) {
    const XPathMoves moves = movesOf("div div mod * 2 and or or not(text()) or 1.5 - a-b.c");
    EXPECT_THAT(moves.descends, ElementsAre("a-b.c", "div", "mod", "or"));
    EXPECT_FALSE(moves.isUnbounded);
}

TEST(XPathText, Axes_LeadUpOrDown) {
    EXPECT_TRUE(movesOf("ancestor::Site/mode").climbsFar);
    EXPECT_THAT(movesOf("ancestor::Site/mode").descends, ElementsAre("mode"));
    EXPECT_EQ(movesOf("parent::node/x").climbs, 1U);
    EXPECT_THAT(movesOf("self::x").descends, IsEmpty());
    EXPECT_THAT(movesOf("child::x").descends, ElementsAre("x"));
}

TEST(XPathText, WhatLeadsAnywhere) {
    for (const char* text :
         {"/m:top/x", "x = /top", "(/top)", ".//x", "../*", "m:* = 1", "deref(.)/../x",
          "preceding-sibling::x", "descendant::x", "node()", "1 + count(*)"}) {
        EXPECT_TRUE(movesOf(text).isUnbounded) << text;
    }
    for (const char* text : {"2 * x", "../x * ../y", "(x)/y", "x[1]/y", "'//*'", "\"/a\" = ./x"}) {
        EXPECT_FALSE(movesOf(text).isUnbounded) << text;
    }
}

TEST(XPathText, CutOff_Ends) {
    EXPECT_TRUE(movesOf("x = 'open").descends.count("x") > 0);
    EXPECT_THAT(movesOf("").descends, IsEmpty());
}

}
}
