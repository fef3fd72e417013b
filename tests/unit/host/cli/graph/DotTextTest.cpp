// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "cli/graph/DotText.h"

#include <gmock/gmock.h>

namespace OrvHost {
namespace {

TEST(DotTextTest, Quoted_QuotesAndBackslashes_MeanThemselves) {
    EXPECT_EQ(dotQuoted(R"(say "A\N")"), R"("say \"A\\N\"")");
}

TEST(DotTextTest, Quoted_Entities_AreNotReadAsSuch) {
    EXPECT_EQ(dotQuoted("a&lt;b <c>"), "\"a&amp;lt;b <c>\"");
}

TEST(DotTextTest, Quoted_LineEnd_BeginsALineAndOtherControlsGo) {
    EXPECT_EQ(dotQuoted("one\ntwo\t\x1b\x7f!"), "\"one\\ntwo!\"");
}

TEST(DotTextTest, Quoted_OtherAlphabets_StayAsTheyAre) {
    EXPECT_EQ(dotQuoted("Höhe 塔"), "\"Höhe 塔\"");
}

TEST(DotTextTest, Text_Statements_ComeInTheirOrderWithoutEmptyAttributes) {
    DotText dot;
    dot.set("node", {{"shape", "box"}});
    dot.node("a", {{"label", "A"}, {"color", ""}});
    dot.node("b", {});
    dot.edge("a", "b", {{"label", "to"}, {"style", "dashed"}});
    EXPECT_EQ(dot.text(), "digraph orv {\n"
                          "  node [shape=\"box\"];\n"
                          "  a [label=\"A\"];\n"
                          "  b;\n"
                          "  a -> b [label=\"to\", style=\"dashed\"];\n"
                          "}\n");
}

TEST(DotTextTest, Frames_HoldWhatIsWrittenWhileTheyAreOpen) {
    DotText dot;
    dot.openFrame("a", {{"color", "red"}});
    dot.node("b", {{"label", "<B>b</B>", DotText::Form::Markup}});
    dot.closeFrame();
    dot.node("c", {});
    EXPECT_EQ(dot.text(), "digraph orv {\n"
                          "  subgraph cluster_a {\n"
                          "    graph [color=\"red\"];\n"
                          "    b [label=<<B>b</B>>];\n"
                          "  }\n"
                          "  c;\n"
                          "}\n");
}

}
}
