// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "cli/commands/Expectation.h"

#include "base/HostReturn.h"
#include "cli/input/WordSplitter.h"

#include <gmock/gmock.h>

namespace OrvHost {
namespace {

using testing::AllOf;
using testing::HasSubstr;

Answer printed(const std::string& text) {
    return {text, std::nullopt};
}

Answer failed(OrvReturnT code, const std::vector<std::string>& messages = {}) {
    Failure failure;
    failure.code = code;
    failure.messages = messages;
    failure.text = "shown to a person";
    return {"", failure};
}

Answer notUnderstood() {
    Failure failure;
    failure.status = ExitUsage;
    return {"", failure};
}

/// How \p answer differs from the expectation, which is given without a command.
std::string missing(const std::string& clauses, const Answer& answer) {
    Words words(splitWords(clauses + " : get A=1").words);
    const Expectation expectation(words);
    EXPECT_EQ(words.takeRest(), (std::vector<std::string>{"get", "A=1"}));
    return expectation.compare(answer);
}

TEST(ExpectationTest, Outcome_NotGiven_IsOk) {
    EXPECT_EQ(missing("", printed("")), "");
    EXPECT_EQ(missing("", failed(OrvNotExist)), "  expected: ok\n  got:      OrvNotExist (-2)\n");
    EXPECT_EQ(missing("output a", failed(OrvNotExist)),
              "  expected: ok\n  got:      OrvNotExist (-2)\n"
              "  expected: output \"a\"\n  got:      output \"\"\n");
}

TEST(ExpectationTest, Outcome_CodeByNameOrNumber_IsMetByThatCodeOnly) {
    for (const std::string code : {"OrvNotExist", "-2"}) {
        EXPECT_EQ(missing(code, failed(OrvNotExist)), "");
        EXPECT_EQ(missing(code, failed(OrvFailure)),
                  "  expected: OrvNotExist (-2)\n  got:      OrvFailure (-1)\n");
        EXPECT_NE(missing(code, printed("")), "");
    }
    EXPECT_EQ(missing("OrvHostWriteConflict", failed(OrvHostWriteConflict)), "");
    EXPECT_EQ(missing("-4711", failed(-4711)), "");
    EXPECT_EQ(missing("0", printed("")), "");
}

TEST(ExpectationTest, Outcome_ErrorOrUsage_AreDistinguished) {
    EXPECT_EQ(missing("error", failed(OrvNotExist)), "");
    EXPECT_EQ(missing("error", notUnderstood()), "");
    EXPECT_EQ(missing("usage", notUnderstood()), "");
    EXPECT_EQ(missing("usage", failed(-2)), "  expected: usage\n  got:      OrvNotExist (-2)\n");
    EXPECT_EQ(missing("error", printed("x")), "  expected: error\n  got:      ok\n");
}

TEST(ExpectationTest, Message_WholeOrPart_MustBeAmongThem) {
    const Answer answer = failed(OrvValidationFailed, {"one thing", "other thing"});
    EXPECT_EQ(missing("-9 message 'other thing' message containing one", answer), "");
    EXPECT_EQ(missing("-9 message other", answer),
              "  expected: message \"other\"\n"
              "  got:      message \"one thing\", \"other thing\"\n");
    EXPECT_EQ(missing("message containing x", printed("")),
              "  expected: message containing \"x\"\n  got:      no message\n");
}

TEST(ExpectationTest, Messages_Number_MustBeExact) {
    EXPECT_EQ(missing("-9 messages 2", failed(-9, {"a", "b"})), "");
    EXPECT_NE(missing("-9 messages 1", failed(-9, {"a", "b"})), "");
    EXPECT_EQ(missing("messages 0", printed("")), "");
}

TEST(ExpectationTest, OutputAndExplanation_AreCompared) {
    EXPECT_EQ(missing("output 'two lines'", printed("two lines")), "");
    EXPECT_EQ(missing("output containing lin", printed("two lines")), "");
    EXPECT_EQ(missing("output lines", printed("two\nlines")),
              "  expected: output \"lines\"\n  got:      output \"two\\nlines\"\n");
    EXPECT_EQ(missing("-2 explanation containing person", failed(-2)), "");
    EXPECT_NE(missing("-2 explanation containing else", failed(-2)), "");
}

TEST(ExpectationTest, Words_NotUnderstood_AreUsage) {
    for (const std::string clauses : {"", "foo :", "ok error :", "message : get", "output",
                                      "messages x :", "output containing : get", "ok"}) {
        Words words(splitWords(clauses).words);
        EXPECT_THROW(Expectation{words}, UsageError) << clauses;
    }
}

}
}
