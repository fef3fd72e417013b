// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "cli/graph/TableLabel.h"

#include <gmock/gmock.h>

namespace OrvHost {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

TEST(TableLabelTest, Wrapped_EndsLinesAfterBlanksAndCommasOrElseAnywhere) {
    EXPECT_THAT(wrapped("one two three", 8), ElementsAre("one two ", "three"));
    EXPECT_THAT(wrapped("Site=1,Mast=2", 8), ElementsAre("Site=1,", "Mast=2"));
    EXPECT_THAT(wrapped("abcdefghij", 4), ElementsAre("abcd", "efgh", "ij"));
    EXPECT_THAT(wrapped("exactly8 more", 8), ElementsAre("exactly8 ", "more"));
    EXPECT_THAT(wrapped("exactly8", 8), ElementsAre("exactly8"));
    EXPECT_THAT(wrapped("a\nb", 8), ElementsAre("a", "b"));
    EXPECT_THAT(wrapped("", 8), ElementsAre(""));
}

TEST(TableLabelTest, Wrapped_CountsLettersAndKeepsThemWhole) {
    EXPECT_THAT(wrapped("Höhe塔🗼", 5), ElementsAre("Höhe塔", "🗼"));
}

TEST(TableLabelTest, Wrapped_WhatIsNotUtf8IsReplacedAndControlsGo) {
    EXPECT_THAT(wrapped("a\xff\x62\x1b\x63\xe4\xb8", 20), ElementsAre("a\uFFFDbc\uFFFD\uFFFD"));
    // An overlong form, a half of a pair, and a number beyond the last letter.
    EXPECT_THAT(wrapped("\xe0\x80\x80", 20), ElementsAre("\uFFFD\uFFFD\uFFFD"));
    EXPECT_THAT(wrapped("\xed\xa0\x80", 20), ElementsAre("\uFFFD\uFFFD\uFFFD"));
    EXPECT_THAT(wrapped("\xf4\x90\x80\x80", 20), ElementsAre("\uFFFD\uFFFD\uFFFD\uFFFD"));
}

TEST(TableLabelTest, MarkupText_SignsOfMarkupMeanThemselvesAndNoTextIsABlank) {
    EXPECT_EQ(markupText("<b> & \"c\"", 20), "&lt;b&gt; &amp; &quot;c&quot;");
    EXPECT_EQ(markupText("", 20), " ");
}

TEST(TableLabelTest, Port_TheSameTextAndColourIsOneRow) {
    TableLabel label("box");
    EXPECT_EQ(label.port("a", "red"), "p0");
    EXPECT_EQ(label.port("a", "blue"), "p1");
    EXPECT_EQ(label.port("a", "red"), "p0");
    label.note("said", "green");
    EXPECT_THAT(label.markup({}), AllOf(HasSubstr("PORT=\"title\""), HasSubstr("<B>box</B>"),
                                        HasSubstr("PORT=\"p1\"><FONT COLOR=\"blue\""),
                                        HasSubstr("COLOR=\"green\" POINT-SIZE=\"8\">said<"),
                                        Not(HasSubstr("PORT=\"p2\"")), Not(HasSubstr("DASHED"))));
}

}
}
