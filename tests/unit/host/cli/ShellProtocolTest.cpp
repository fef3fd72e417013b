// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// What a server's shell and its client say to each other.

#include "cli/remote/ShellProtocol.h"

#include "cli/remote/Frame.h"

#include <gmock/gmock.h>

using namespace OrvHost;
using testing::ElementsAre;

TEST(FrameReader, BytesOneByOne_GiveTheFrames) {
    FrameReader reader(10);
    const std::string bytes = frameBytes('a', "one") + frameBytes('b', "") + frameBytes('c', "x");
    std::string seen;
    for (const char byte : bytes) {
        reader.add({&byte, 1});
        while (const auto frame = reader.next()) {
            seen += frame->kind + frame->body + ";";
        }
    }
    EXPECT_EQ(seen, "aone;b;cx;");
    EXPECT_FALSE(reader.isInFrame());
}

TEST(FrameReader, HalfAFrame_IsKept) {
    FrameReader reader(10);
    reader.add(frameBytes('a', "one").substr(0, 6));
    EXPECT_FALSE(reader.next().has_value());
    EXPECT_TRUE(reader.isInFrame());
}

TEST(FrameReader, BodyThatIsTooLong_IsRefusedBeforeItComes) {
    FrameReader reader(3);
    reader.add(frameBytes('a', "one"));
    EXPECT_TRUE(reader.next().has_value());
    reader.add(frameBytes('a', "four").substr(0, 5));
    EXPECT_THROW(reader.next(), FrameError);
    FrameReader other(3);
    other.allow(4);
    other.add(frameBytes('a', "four"));
    EXPECT_TRUE(other.next().has_value());
}

TEST(ShellProtocol, Bodies_ComeBackAsTheyWere) {
    const ShellHello hello =
        helloFrom(toBody(ShellHello{1, {true, false, true, false, false}, "3"}));
    EXPECT_TRUE(hello.look.json && !hello.look.echo && hello.look.answerColours &&
                !hello.look.errorColours && !hello.look.isTyped);
    EXPECT_EQ(hello.interface, "3");

    const ShellWelcome welcome = welcomeFrom(toBody(ShellWelcome{1, "hello\n", "> "}));
    EXPECT_EQ(welcome.greeting + welcome.prompt, "hello\n> ");

    const ShellState state = stateFrom(toBody(ShellState{2, true, "> ", {{"t1", 7}}}));
    EXPECT_TRUE(state.status == 2 && state.isEnded && state.prompt == "> ");
    ASSERT_EQ(state.uncommitted.size(), 1U);
    EXPECT_EQ(state.uncommitted.front().transaction, "t1");
    EXPECT_EQ(state.uncommitted.front().writes, 7U);

    const Completion completion = completionFrom(toBody(Completion{4, {"get", "graph"}, true, 1}));
    EXPECT_TRUE(completion.start == 4 && completion.canGoOn && completion.shownFrom == 1);
    EXPECT_THAT(completion.candidates, ElementsAre("get", "graph"));

    const ScriptLine line = lineFrom(toBody(ScriptLine{std::string("a\0b\xff", 4), "file:1"}));
    EXPECT_EQ(line.line, std::string("a\0b\xff", 4));
    EXPECT_EQ(line.place, "file:1");

    EXPECT_THAT(wordsFrom(toBody(std::vector<std::string>{"set", "", "x"})),
                ElementsAre("set", "", "x"));
}

TEST(ShellProtocol, HelloOfAnotherVersion_GivesItsVersion) {
    EXPECT_EQ(helloFrom(R"({"version": 7, "json": "new"})").version, 7);
    EXPECT_EQ(welcomeFrom(R"({"version": 7})").version, 7);
}

TEST(ShellProtocol, BodiesOfAnotherForm_AreRefused) {
    for (const std::string body :
         {"", "[]", "7", "{}", R"({"version": "1"})", "\xff", R"({"version": 1, "json": 1})"}) {
        EXPECT_THROW(helloFrom(body), FrameError) << body;
        EXPECT_THROW(welcomeFrom(body), FrameError) << body;
        EXPECT_THROW(stateFrom(body), FrameError) << body;
        EXPECT_THROW(completionFrom(body), FrameError) << body;
    }
    EXPECT_THROW(lineFrom("no place"), FrameError);
}

TEST(ShellProtocol, TooManyCandidates_FitAndBeginAsAllDo) {
    Completion completion{4, {}, true, 2};
    for (char mark = 'a'; mark <= 'k'; ++mark) {
        completion.candidates.push_back("Unit=" + std::string(1 << 20, '\1') + mark);
    }
    completion.candidates.push_back("Unit=7");
    const Completion shorter = shortened(completion);
    EXPECT_LT(toBody(shorter).size(), kLongestAnswer);
    EXPECT_GT(shorter.candidates.size(), 5U);
    EXPECT_EQ(commonPrefix(shorter.candidates), "Unit=");
    EXPECT_EQ(shorter.start, 4U);
    EXPECT_TRUE(shorter.canGoOn && shorter.shownFrom == 2);
}

TEST(ShellProtocol, CandidatesThatFit_StayAsTheyAre) {
    EXPECT_THAT(shortened({0, {"a", "b"}}).candidates, ElementsAre("a", "b"));
    EXPECT_TRUE(shortened({0, {}}).candidates.empty());
}

TEST(ShellProtocol, CandidatesThatAreTooLong_AreNotOffered) {
    const std::string longOne(kLongestAnswer, 'x');
    EXPECT_TRUE(shortened({0, {longOne, longOne + "y"}}).candidates.empty());
    EXPECT_TRUE(shortened({0, {longOne}}).candidates.empty());
}
