// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// orvhost called from a shell: its options, and those of its commands.

#include "Program.h"

#include <gmock/gmock.h>

#include <sstream>

namespace SystemTest {
namespace {

using testing::HasSubstr;

constexpr const char* kMark = "\xEF\xBB\xBF";

TEST(OrvhostShellTest, OptionsOfACommand_AfterIt_AreItsOwn) {
    const auto result =
        runOrvhost(withSite({"tree", "--depth", "0", "ManagedElement=east,Mast=a"}));
    EXPECT_EQ(result.out, "ManagedElement=east,Mast=a (2 below)\n");
    const auto unknown = runOrvhost(withSite({"tree", "--dept", "0"}));
    EXPECT_THAT(unknown.err, HasSubstr("tree: there is no option '--dept'. Did you mean --depth?"));
    EXPECT_EQ(unknown.status, 2);
}

TEST(OrvhostShellTest, Json_AfterTheCommand_IsUnderstood) {
    const auto result = runOrvhost(withSite({"exists", "ManagedElement=east", "--json"}));
    EXPECT_EQ(result.out,
              "{\"command\":\"exists\",\"dn\":\"ManagedElement=east\",\"exists\":true}\n");
}

TEST(OrvhostShellTest, OptionOfTheProgram_AfterTheCommand_IsRefused) {
    const auto result = runOrvhost({"-I", "models", "-m", "site", "ls", "-d", "network"});
    EXPECT_THAT(result.err, HasSubstr("-d (it must come before the command 'ls')"));
    EXPECT_EQ(result.status, 2);
}

TEST(OrvhostShellTest, TwoDashes_BeforeTheCommand_MakeAllWordsItsOwn) {
    const auto result = runOrvhost(withSite({"--", "expect", "output", "--json", ":", "ls"}));
    EXPECT_THAT(result.err, HasSubstr("expected: output \"--json\""));
    EXPECT_EQ(runOrvhost(withSite({"--", "tree", "--depth", "0"})).out, "/ (8 below)\n");
}

TEST(OrvhostShellTest, UnknownOption_BeforeTheCommand_IsNamed) {
    const auto result = runOrvhost(withSite({"--bogus", "ls"}));
    EXPECT_THAT(result.err, HasSubstr("--bogus"));
    EXPECT_EQ(result.status, 2);
}

TEST(OrvhostShellTest, UnknownOption_BeforeTheCommand_IsNamedAlone) {
    const auto result = runOrvhost(withSite({"--jsn", "get"}));
    EXPECT_THAT(result.err, HasSubstr("not expected: --jsn. Did you mean --json?"));
    EXPECT_THAT(runOrvhost(withSite({"-x", "get"})).err, HasSubstr("not expected: -x\n"));
}

TEST(OrvhostShellTest, Help_AfterACommand_IsThatOfTheCommand) {
    const std::string help = runOrvhost({"help", "tree"}).out;
    EXPECT_THAT(help, HasSubstr("--depth"));
    for (const std::string option : {"--help", "-h"}) {
        const auto result = runOrvhost(withSite({"tree", "/", option}));
        EXPECT_EQ(result.out, help) << result.err;
        EXPECT_EQ(result.status, 0);
    }
    EXPECT_EQ(runOrvhost({"export", "--help"}).out, runOrvhost({"help", "save"}).out);
}

TEST(OrvhostShellTest, OptionWithEquals_OfACommand_HasThatValue) {
    EXPECT_EQ(runOrvhost(withSite({"tree", "--depth=0"})).out, "/ (8 below)\n");
    EXPECT_EQ(runCommands({"tree --depth=0"}).out, "/ (8 below)\n");
    EXPECT_THAT(runOrvhost(withSite({"ls", "--model=x"})).err,
                HasSubstr("--model=x (it must come before the command 'ls')"));
}

TEST(OrvhostShellTest, ValueThatBeginsLikeAnOption_IsAValueAfterTwoDashes) {
    EXPECT_EQ(runCommands({"begin --x.1"}).out, "transaction --x.1\n");
    EXPECT_EQ(runCommands({"begin -- --x"}).out, "transaction --x\n");
    EXPECT_EQ(runOrvhost(withSite({"begin", "--", "--json"})).out, "transaction --json\n");
    EXPECT_EQ(runCommands({"begin", "set ManagedElement=east label=--x",
                           "find -- ManagedElement.label = --x"})
                  .out,
              "transaction t1\nset\nManagedElement=east\n");
    EXPECT_EQ(runCommands({"tree -- --depth 0"}).status, 2);
}

TEST(OrvhostShellTest, EmptyValue_WithEquals_IsTheValue) {
    const auto result = runOrvhost(withSite({"--history=", "exists", "ManagedElement=east"}));
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, "yes\n");
}

TEST(OrvhostShellTest, Exit_InTheMiddle_IsQuit) {
    const auto result = runCommands({"exit", "exists ManagedElement=east"});
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.status, 0);
}

TEST(OrvhostShellTest, ControlCharactersOfAScript_AreShownAsCodes) {
    const TemporaryDirectory directory;
    const std::string script = directory.file("script", "get \x1b]0;title\x07=1\n");
    const auto result = runOrvhost({"-I", TEST_DATA_DIR "/models", "-m", "site", "-m", "power",
                                    "-f", script, "--echo", "--keep-going"});
    EXPECT_NE(result.status, 0);
    EXPECT_THAT(result.out + result.err, AllOf(HasSubstr("get \\x1b]0;title\\x07=1"),
                                               Not(HasSubstr("\x1b")), Not(HasSubstr("\x07"))));
    const auto option = runOrvhost({"-m", "odd\x1b[31m", "ls"});
    EXPECT_THAT(option.err, AllOf(HasSubstr("odd\\x1b[31m"), Not(HasSubstr("\x1b"))));
}

TEST(OrvhostShellTest, ByteOrderMark_InEveryFile_IsSkipped) {
    const TemporaryDirectory directory;
    const std::string module = directory.file(
        "marked.yang", std::string(kMark) + "module marked { namespace \"urn:marked\"; prefix m;\n"
                                            "  list Site { key \"id\"; leaf id { type string; }\n"
                                            "    leaf label { type string; } } }\n");
    const std::string json = directory.file(
        "a.json", std::string(kMark) + R"({"marked:Site": [{"id": "1", "label": "one"}]})");
    const std::string xml = directory.file(
        "b.xml", std::string(kMark) + "<Site xmlns=\"urn:marked\"><id>2</id></Site>");
    const std::string script =
        directory.file("script", std::string(kMark) + "exists Site=1\nexists Site=2\n");
    const auto result = runOrvhost({"-m", module, "-d", json, "-d", xml, "-f", script});
    EXPECT_EQ(result.out, "yes\nyes\n");
    EXPECT_EQ(result.status, 0) << result.err;
}

TEST(OrvhostShellTest, Utf16_IsNamed) {
    const TemporaryDirectory directory;
    const std::string json = directory.file("a.json", std::string("\xFF\xFE{\0}\0", 6));
    const auto result = runOrvhost(withSite({"-d", json, "ls"}));
    EXPECT_THAT(result.err, HasSubstr("a.json: cannot be read: it is UTF-16; UTF-8 was expected"));
    EXPECT_EQ(result.status, 3);
}

TEST(OrvhostShellTest, Help_WithoutAModel_IsGiven) {
    EXPECT_THAT(runOrvhost({"help"}).out, HasSubstr("\ntree  "));
    EXPECT_THAT(runOrvhost({"help", "tree"}).out, HasSubstr("tree [DN] [--depth N]\n"));
    const auto unknown = runOrvhost({"help", "tee"});
    EXPECT_THAT(unknown.err, HasSubstr("Did you mean tree?"));
    EXPECT_EQ(unknown.status, 2);
}

TEST(OrvhostShellTest, Help_OfAllCommands_FitsEightyColumns) {
    const auto all = runCommands({"help"});
    std::istringstream lines(all.out);
    std::vector<std::string> each;
    for (std::string line; std::getline(lines, line);) {
        each.push_back("help " + line.substr(0, line.find(' ')));
        EXPECT_LE(line.size(), 80U) << line;
    }
    each.erase(each.begin());
    each.pop_back(); // the heading, and the line below the table
    ASSERT_GT(each.size(), 20U);
    const auto result = runCommands(each);
    EXPECT_EQ(result.status, 0) << result.err;
    std::istringstream details(result.out);
    for (std::string line; std::getline(details, line);) {
        EXPECT_LE(line.size(), 80U) << line;
    }
}

}
}
