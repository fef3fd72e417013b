// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "base/Suggestion.h"
#include "cli/errors/CliErrors.h"
#include "cli/input/LogLevel.h"
#include "cli/input/WordSplitter.h"
#include "cli/input/Words.h"
#include "cli/output/AlignedText.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <memory>

namespace OrvHost {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> wordsOf(const std::string& line) {
    return splitWords(line).words;
}

TEST(WordSplitterTest, Split_Blanks_PartWords) {
    EXPECT_THAT(wordsOf("  get\tA=1,B=2   label \r"), ElementsAre("get", "A=1,B=2", "label"));
    EXPECT_THAT(wordsOf(" \t "), IsEmpty());
}

TEST(WordSplitterTest, Split_Quotes_KeepBlanksAndJoinWithWhatTouches) {
    EXPECT_THAT(wordsOf("get A='half way',B=\"x y\""), ElementsAre("get", "A=half way,B=x y"));
    EXPECT_THAT(wordsOf("a \"\" ''"), ElementsAre("a", "", ""));
}

TEST(WordSplitterTest, Split_Backslash_EscapesOutsideAndInDoubleQuotesOnly) {
    EXPECT_THAT(wordsOf(R"(a\ b "c\"d" 'e\f')"), ElementsAre("a b", "c\"d", "e\\f"));
}

TEST(WordSplitterTest, Split_HashAtStartOfWord_BeginsAComment) {
    EXPECT_THAT(wordsOf("ls # all of them"), ElementsAre("ls"));
    EXPECT_THAT(wordsOf("# nothing"), IsEmpty());
    EXPECT_THAT(wordsOf("get a#b '#c'"), ElementsAre("get", "a#b", "#c"));
}

TEST(WordSplitterTest, Split_OpenQuoteOrBackslash_IsDistinguished) {
    EXPECT_TRUE(splitWords("get 'A").isOpen);
    EXPECT_TRUE(splitWords("get \"A\\\"").isOpen);
    EXPECT_TRUE(splitWords("get A\\").isOpen);
    EXPECT_FALSE(splitWords("get 'A'").isOpen);
}

TEST(WordSplitterTest, Split_Positions_TellWhereWordsBegin) {
    const SplitLine split = splitWords("get  A=1 ");
    EXPECT_THAT(split.starts, ElementsAre(0u, 5u));
    EXPECT_FALSE(split.endsInWord);
    EXPECT_TRUE(splitWords("get  A=1").endsInWord);
}

TEST(AlignedTextTest, Columns_HaveOneWidthAndFillLines) {
    const std::vector<std::string> texts{"a", "bcd", "\u00e9", "f", "g"};
    EXPECT_EQ(layOutColumns(texts, 13), "a    bcd  \u00e9\nf    g\n");
    EXPECT_EQ(layOutColumns(texts, 12), "a    bcd\n\u00e9    f\ng\n");
    EXPECT_EQ(layOutColumns(texts, 1), "a\nbcd\n\u00e9\nf\ng\n");
    EXPECT_EQ(layOutColumns({}, 80), "");
}

TEST(WordSplitterTest, Quote_AnyWord_ComesBackAsOneWord) {
    for (const std::string word : {"plain", "two words", "", "#x", "a'b", "q\"q", "back\\slash"}) {
        EXPECT_THAT(wordsOf(quoteWord(word)), ElementsAre(word));
    }
    EXPECT_EQ(quoteWord("A=1,B=2"), "A=1,B=2");
}

/// What a POSIX shell makes of the words of \p line, each in a line of its own.
std::string wordsInShell(const std::string& line) {
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(("printf '%s\\n' " + line).c_str(), "r"),
                                                     pclose);
    std::string text;
    for (int letter = 0; pipe && (letter = std::fgetc(pipe.get())) != EOF;) {
        text += static_cast<char>(letter);
    }
    return text;
}

TEST(WordSplitterTest, QuoteForTyping_IsOneWordAtThePromptAndInAShell) {
    for (const std::string word :
         {"plain", "two words", "",    "#x",    "a'b",  "q\"q",  "back\\slash", "$HOME",
          "`id`",  "$(id)",     "a;b", "a&b|c", "<x>",  "a*?",   "[a-z]",       "{a,b}",
          "~",     "a!b",       "!",   "\\!",   "Höhe", "tab\tx"}) {
        const std::string typed = quoteForTyping(word);
        EXPECT_THAT(wordsOf(typed), ElementsAre(word)) << typed;
        EXPECT_EQ(wordsInShell(typed), word + "\n") << typed;
    }
    EXPECT_EQ(quoteForTyping("A=1,B=x-2.c"), "A=1,B=x-2.c");
    EXPECT_EQ(quoteForTyping("A=a!b"), "\"A=a\"\\!\"b\"") << "no history inside quotes";
}

TEST(SuggestionTest, Closest_NearAndFar_FindsOnlyTheNear) {
    const std::vector<std::string> names{"get", "exists", "count"};
    EXPECT_EQ(closest("gte", names), "get");
    EXPECT_EQ(closest("exsits", names), "exists");
    EXPECT_EQ(closest("COUNT", names), "count");
    EXPECT_EQ(closest("frobnicate", names), "");
    EXPECT_EQ(closest("xyz", names), "");
    EXPECT_EQ(closest("a", {"b"}), "");
}

TEST(SuggestionTest, NoClass_WithNamesakes_NamesThemAndGuessesNothingElse) {
    const std::vector<std::string> classes{"a:Cell", "b:Cell", "Mast", "Site:Port", "Cello"};
    EXPECT_EQ(noClass("Cell", classes), "there is no class Cell, but a:Cell, b:Cell");
    EXPECT_EQ(didYouMean("Cell", classes), "");
    EXPECT_EQ(noClass("a:Mast", classes), "there is no class a:Mast, but Mast");
    EXPECT_EQ(didYouMean("Port", classes), " Did you mean Site:Port?");
    EXPECT_EQ(noClass("Tree", classes), "there is no class Tree");
    EXPECT_EQ(didYouMean("Mats", classes), " Did you mean Mast?");
}

TEST(SuggestionTest, Enumerate_ManyNames_CutsAndCountsTheRest) {
    EXPECT_EQ(enumerate({}), "none");
    EXPECT_EQ(enumerate({"a", "b"}), "a, b");
    EXPECT_EQ(enumerate({"a", "b", "c"}, 2), "a, b and 1 more");
}

TEST(LayoutTest, LayOut_NestedValues_AlignsAndIndents) {
    const JsonValue object = {{"id", "a"},
                              {"colour", {"red", "white"}},
                              {"unset", nullptr},
                              {"none", JsonValue::array()},
                              {"empty", ""},
                              {"place", {{"x", 1}, {"inner", {{"y", true}}}}},
                              {"slices", {{{"sst", 1}}, {{"sst", 2}}}}};
    EXPECT_EQ(layOut(object), "id      a\n"
                              "colour  red\n"
                              "        white\n"
                              "unset   -\n"
                              "none    -\n"
                              "empty   \"\"\n"
                              "place\n"
                              "  x  1\n"
                              "  inner\n"
                              "    y  true\n"
                              "slices[0]\n"
                              "  sst  1\n"
                              "slices[1]\n"
                              "  sst  2\n");
}

TEST(LayoutTest, ScalarText_ControlCharacters_AreEscaped) {
    EXPECT_EQ(scalarText("one\ntwo\x1b[31m"), "one\\ntwo\\x1b[31m");
    EXPECT_EQ(scalarText(-7), "-7");
    EXPECT_EQ(scalarText(2.5), "2.5");
}

TEST(LayoutTest, WithoutControls_WhatATerminalWouldObey_IsShownAsACode) {
    EXPECT_EQ(withoutControls("a\tb\nc\rd\x1b]0;x\x07\x7f"), "a\tb\nc\\x0dd\\x1b]0;x\\x07\\x7f");
    EXPECT_EQ(withoutControls("caf\u00e9 \u009b31m \u00a0 \u20ac \xc2"),
              "caf\u00e9 \\x9b31m \u00a0 \u20ac \xc2");
    EXPECT_EQ(withoutControls("a\tb\nc", {}), "a\\x09b\\nc");
}

TEST(LayoutTest, Table_WideCharacters_StayAligned) {
    EXPECT_EQ(layOutTable({"A", "B"}, {{"é", "x"}, {"long", ""}}), "A     B\n"
                                                                   "é     x\n"
                                                                   "long\n");
}

TEST(WordsTest, Take_OptionsAnywhere_LeavesTheRest) {
    Words words({"a", "--depth", "3", "b"});
    EXPECT_EQ(words.takeNumber("--depth"), 3u);
    EXPECT_EQ(words.take("x"), "a");
    EXPECT_EQ(words.takeDnOrTop(Model()), "b");
    EXPECT_NO_THROW(words.end());
    EXPECT_THROW(words.take("the DN"), UsageError);
}

TEST(WordsTest, Take_WhatIsNoNumber_IsRefused) {
    for (const char* number : {"-1", "x", "", "1x", "99999999999999999999"}) {
        EXPECT_THROW(Words({"--depth", number}).takeNumber("--depth"), UsageError) << number;
    }
    EXPECT_THROW(Words({"--depth"}).takeNumber("--depth"), UsageError);
}

TEST(WordsTest, TopLevel_SlashEmptyOrNothing_AreTheSame) {
    EXPECT_EQ(Words({"/"}).takeDnOrTop(Model()), "");
    EXPECT_EQ(Words({""}).takeDnOrTop(Model()), "");
    EXPECT_EQ(Words({}).takeDnOrTop(Model()), "");
}

TEST(WordsTest, End_WordLeft_IsRefused) {
    EXPECT_THROW(Words({"more"}).end(), UsageError);
}

TEST(LogLevelTest, Parse_WordsAndNumbers_GiveTheGate) {
    EXPECT_EQ(parseLogLevel("off"), 0u);
    EXPECT_EQ(parseLogLevel("error"), 3u);
    EXPECT_EQ(parseLogLevel("warning"), 4u);
    EXPECT_EQ(parseLogLevel("info"), 6u);
    EXPECT_EQ(parseLogLevel("trace"), 8u);
    EXPECT_EQ(parseLogLevel("5"), 5u);
    EXPECT_THROW(parseLogLevel("loud"), UsageError);
    EXPECT_THROW(parseLogLevel(""), UsageError);
    EXPECT_THROW(parseLogLevel("-3"), UsageError);
}

TEST(LogLevelTest, Word_LevelBetween_IsTheOneBelow) {
    EXPECT_EQ(logLevelWord(0), "off");
    EXPECT_EQ(logLevelWord(5), "warning");
    EXPECT_EQ(logLevelWord(14), "trace");
}

}
}
