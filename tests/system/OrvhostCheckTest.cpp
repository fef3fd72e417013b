// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Scripts with expectations, and the command check, which runs them as tests.

#include "Program.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <sys/stat.h>

namespace SystemTest {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class OrvhostCheckTest : public testing::Test {
protected:
    std::string scenario(const std::string& name, const std::string& text) const {
        return mDirectory.file(name, text);
    }

    /// Runs check on the example network.
    static ProgramResult check(const std::vector<std::string>& words) {
        std::vector<std::string> arguments = withHarbour({"check"});
        arguments.insert(arguments.end(), words.begin(), words.end());
        return runOrvhost(arguments);
    }

    TemporaryDirectory mDirectory;
    const std::string mGood =
        scenario("good.orv", "expect output yes : exists ManagedElement=Harbour\n");
    const std::string mBad =
        scenario("bad.orv", "# a comment\n"
                            "expect output no : exists ManagedElement=Harbour\n"
                            "frobnicate\n");
};

TEST_F(OrvhostCheckTest, Expect_Met_PrintsWhatTheCommandAnswered) {
    const auto result =
        runOnHarbour("expect output Harbour : get ManagedElement=Harbour userLabel\n"
                     "expect OrvNotExist : get ManagedElement=Harbour x\n");
    EXPECT_THAT(result.out, StartsWith("Harbour\nget: getMoAttribute ManagedElement=Harbour x: "
                                       "OrvNotExist (-2)\n"));
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.status, 0);
}

TEST_F(OrvhostCheckTest, OutputThatIsNotAsExpected_IsLong_IsCut) {
    const auto result = runOnHarbour("expect output x : help\n");
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr(" bytes)\"\n"));
    EXPECT_LT(result.err.size(), 1500U);
}

TEST_F(OrvhostCheckTest, Expect_NotMet_TellsFileLineExpectedAndGot) {
    const auto result = runOnHarbour("\nexpect output Pier : get ManagedElement=Harbour userLabel\n"
                                     "expect : get ManagedElement=Harbour x\n"
                                     "expect OrvNotExist : get ManagedElement=Harbour userLabel\n");
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "stdin:2: expect: get ManagedElement=Harbour userLabel\n"
                          "  expected: output \"Pier\"\n"
                          "  got:      output \"Harbour\"\n"
                          "stdin:3: expect: get ManagedElement=Harbour x\n"
                          "  expected: ok\n"
                          "  got:      OrvNotExist (-2)\n"
                          "stdin:4: expect: get ManagedElement=Harbour userLabel\n"
                          "  expected: OrvNotExist (-2)\n"
                          "  got:      ok\n");
    EXPECT_EQ(result.status, 1);
}

TEST_F(OrvhostCheckTest, Expect_OfUsageOrNothingUnderstood_IsDistinguished) {
    const auto result = runOnHarbour("expect usage : gte x\nexpect usage : commit\nexpect ok\n"
                                     "expect foo : commit\nexpect ok :\n");
    EXPECT_THAT(result.out, StartsWith("gte: there is no command 'gte'."));
    EXPECT_THAT(result.err, AllOf(StartsWith("stdin:3: expect: the ':' in front of the command"),
                                  HasSubstr("stdin:4: expect: 'foo' is neither"),
                                  HasSubstr("stdin:5: expect: the command is missing")));
    EXPECT_EQ(result.status, 2);
}

TEST_F(OrvhostCheckTest, Expect_Json_WrapsTheAnswer) {
    const auto result = runOnHarbour("expect : exists ManagedElement=Harbour\n"
                                     "expect -2 : get ManagedElement=Harbour x\n",
                                     {"--json"});
    std::istringstream lines(result.out);
    std::string line;
    ASSERT_TRUE(std::getline(lines, line));
    EXPECT_EQ(nlohmann::json::parse(line)["answer"]["exists"], true);
    ASSERT_TRUE(std::getline(lines, line));
    EXPECT_EQ(nlohmann::json::parse(line)["answer"]["error"]["code"], -2);
}

TEST_F(OrvhostCheckTest, Check_GoodAndBad_RunsAllAndTellsBoth) {
    const auto result = check({mBad, mGood});
    EXPECT_THAT(result.out,
                AllOf(StartsWith("FAILED  " + mBad + " (1 command, "),
                      HasSubstr("  " + mBad +
                                ":2: expect: exists ManagedElement=Harbour\n"
                                "    expected: output \"no\"\n    got:      output \"yes\"\n"),
                      Not(HasSubstr("frobnicate")), HasSubstr("ok      " + mGood + " (1 command, "),
                      HasSubstr("2 scenarios, 1 failed\n")));
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(check({mGood}).status, 0);
}

TEST_F(OrvhostCheckTest, Check_KeepGoing_TellsAllFailuresOfAScenario) {
    const auto result = check({mBad, "--keep-going"});
    EXPECT_THAT(result.out, HasSubstr(mBad + ":3: frobnicate: there is no command 'frobnicate'."));
}

TEST_F(OrvhostCheckTest, Check_EachScenario_BeginsWithFreshData) {
    const std::string change =
        scenario("change.orv", "expect output Harbour : get ManagedElement=Harbour userLabel\n"
                               "set ManagedElement=Harbour userLabel=Pier\nbegin open\n");
    const auto result = check({change, change});
    EXPECT_THAT(result.out, HasSubstr("2 scenarios, 0 failed\n"));
    EXPECT_EQ(result.status, 0);
}

TEST_F(OrvhostCheckTest, Check_EmptyOrMissingScenario_FailsWithoutStoppingTheOthers) {
    const std::string empty = scenario("empty.orv", "# nothing\n\n");
    const auto result = check({empty, "no-such.orv", mDirectory.path().string(), mGood});
    EXPECT_THAT(result.out,
                AllOf(HasSubstr("  " + empty + ": there is no command in it\n"),
                      HasSubstr("  no-such.orv: cannot be read: there is no such file\n"),
                      HasSubstr("  " + mDirectory.path().string() +
                                ": cannot be read: it is a directory\n"),
                      HasSubstr("ok      " + mGood), HasSubstr("4 scenarios, 3 failed\n")));
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(check({empty}).status, 1);
}

TEST_F(OrvhostCheckTest, Check_QuoteLeftOpen_IsAFailureWithItsLine) {
    const std::string open = scenario("open.orv", "\nset ManagedElement=Harbour 'userLabel=x\n");
    EXPECT_THAT(check({open}).out, HasSubstr(open + ":2: the line ends inside a quoted text"));
}

TEST_F(OrvhostCheckTest, Check_ModelThatCannotBeLoaded_FailsEachScenario) {
    const auto result = runOrvhost({"-m", "no-such-module", "check", mGood});
    EXPECT_THAT(result.out, AllOf(StartsWith("FAILED  " + mGood), HasSubstr("no-such-module")));
    EXPECT_EQ(result.status, 3);
}

TEST_F(OrvhostCheckTest, Report_Tap_IsNumberedWithDiagnostics) {
    const auto result = check({"--report", "tap", mGood, mBad});
    EXPECT_THAT(result.out, AllOf(StartsWith("TAP version 14\n1..2\nok 1 - " + mGood + "\n"),
                                  HasSubstr("not ok 2 - " + mBad + "\n  ---\n"),
                                  HasSubstr("    - at: \"" + mBad + ":2\"\n")));
    EXPECT_EQ(result.status, 1);
}

TEST_F(OrvhostCheckTest, Report_JUnitInAFile_LeavesThePeopleTheirs) {
    const std::string file = (mDirectory.path() / "report.xml").string();
    const auto result = check({"--report", "junit", "--report-file", file, mGood, mBad});
    EXPECT_THAT(result.out, HasSubstr("2 scenarios, 1 failed\n"));
    EXPECT_THAT(readFile(file),
                AllOf(StartsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites "),
                      HasSubstr("tests=\"2\" failures=\"1\" errors=\"0\""),
                      HasSubstr("expected: output &quot;no&quot;&#10;"),
                      HasSubstr("</testsuites>\n")));
}

TEST_F(OrvhostCheckTest, Report_Json_IsADocumentForEachScenario) {
    const auto result = check({"--json", mGood});
    EXPECT_EQ(nlohmann::json::parse(result.out)["passed"], true);
}

TEST_F(OrvhostCheckTest, Words_NotUnderstood_AreUsage) {
    EXPECT_EQ(check({}).status, 2);
    EXPECT_EQ(check({"--report", "html", mGood}).status, 2);
    EXPECT_EQ(check({mGood, "-c", "tree"}).status, 2);
    EXPECT_EQ(runOrvhost(withHarbour({"--report", "tap", "tree"})).status, 2);
    const auto result = check({"--report-file", "no/such/file", mGood});
    EXPECT_THAT(result.err, HasSubstr("no/such/file: cannot be opened for writing"));
    EXPECT_EQ(result.status, 3);
}

TEST_F(OrvhostCheckTest, Echo_OfAScript_ShowsLinesAsAtThePrompt) {
    const auto result =
        runOnHarbour("# look\nbegin a\nexists ManagedElement=Harbour\n", {"--echo"});
    EXPECT_EQ(result.out, "# look\norvhost> begin a\ntransaction a\n"
                          "orvhost[a]> exists ManagedElement=Harbour\nyes\n");
}

TEST_F(OrvhostCheckTest, Quit_BeforeTheLastCommand_IsAFailure) {
    const TemporaryDirectory directory;
    const std::string early =
        directory.file("early.orv", "exists ManagedElement=Harbour\nquit\n# end\nnonsense\n");
    const std::string late = directory.file("late.orv", "exists ManagedElement=Harbour\nquit\n");
    const auto result = runOrvhost(withHarbour({"check", early, late}));
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.out,
                testing::HasSubstr("early.orv:2: the scenario ends here, before the command in "
                                   "line 4"));
    EXPECT_THAT(result.out, testing::HasSubstr("2 scenarios, 1 failed"));
}

TEST_F(OrvhostCheckTest, Timeout_Exceeded_EndsTheScenarioAndOthersRun) {
    const TemporaryDirectory directory;
    const std::string pipe = (directory.path() / "pipe").string();
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const std::string endless =
        directory.file("endless.orv", "log\n# then\n\nsource " + pipe + "\n");
    const std::string good = directory.file("good.orv", "exists ManagedElement=Harbour\n");
    const auto result = runOrvhost(withHarbour({"check", "--timeout", "1", endless, good}));
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(
        result.out,
        testing::HasSubstr("endless.orv:4: not done after 1 second, the limit of --timeout\n"));
    EXPECT_THAT(result.out, testing::ContainsRegex("endless.orv \\(2 commands, "));
    EXPECT_THAT(result.out, testing::HasSubstr("2 scenarios, 1 failed"));
}

TEST_F(OrvhostCheckTest, Timeout_WhileLoading_IsToldAsThat) {
    const TemporaryDirectory directory;
    const std::string pipe = (directory.path() / "endless.json").string();
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const std::string good = directory.file("good.orv", "exists ManagedElement=Harbour\n");
    const auto result =
        runOrvhost({"-I", "models", "-m", "site", "-d", pipe, "check", "--timeout", "1", good});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.out, testing::HasSubstr("good.orv: not done after 1 second, the limit of "
                                               "--timeout: no command was begun"));
    EXPECT_THAT(result.out, testing::ContainsRegex("good.orv \\(0 commands, "));
}

}
}
