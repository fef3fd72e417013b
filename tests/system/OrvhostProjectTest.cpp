// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Project files, and options from the environment.

#include "Program.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <fstream>

namespace SystemTest {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kModel = "path = [\n  \"" TEST_DATA_DIR "/models\", # all\n]\n"
                               "model = [\"site\", \"power\"]\n"
                               "data = \"" TEST_DATA_DIR "/network\"\n";

class OrvhostProjectTest : public testing::Test {
protected:
    void project(const std::string& more) { mDirectory.file("orvhost.toml", kModel + more); }

    ProgramResult runIn(const std::vector<std::string>& arguments) const {
        return runOrvhostIn(mDirectory, arguments);
    }

    TemporaryDirectory mDirectory;
};

TEST_F(OrvhostProjectTest, File_InTheFolder_IsReadAndReported) {
    project("me-id = \"west\"\nyang-rules = false\n");
    const auto result = runIn({"ls"});
    EXPECT_EQ(result.out, "ManagedElement=west\n");
    EXPECT_EQ(result.err,
              "orvhost: note: read orvhost.toml: data, me-id, model, path, yang-rules\n");
    EXPECT_EQ(result.status, 0);
}

TEST_F(OrvhostProjectTest, Store_IsUsedWhereItIsOfUse) {
    project("me-id = \"west\"\nstore = \"net.store\"\n");
    EXPECT_EQ(runIn({"set", "ManagedElement=west", "label=kept"}).status, 0);
    const auto again = runIn({"get", "ManagedElement=west", "label"});
    EXPECT_EQ(again.out, "kept\n");
    EXPECT_THAT(again.err, HasSubstr("the data is left out: the store has objects already"));
    const auto info = runIn({"store", "info", "net.store"});
    EXPECT_THAT(info.out, HasSubstr("commits      1\n")) << info.err;
    const auto exported = runIn({"store", "export", "net.store", "out.json"});
    EXPECT_EQ(exported.status, 0) << exported.err;
    mDirectory.file("fresh", "get ManagedElement=west label\n");
    const auto check = runIn({"check", "fresh"});
    EXPECT_EQ(check.status, 0) << check.out << check.err;
}

TEST_F(OrvhostProjectTest, CommandLineAndVariable_WinInThatOrder) {
    project("me-id = \"west\"\n");
    EXPECT_EQ(runIn({"--me-id", "north", "ls"}).out, "ManagedElement=north\n");
    setenv("ORVHOST_ME_ID", "south", 1);
    const auto byVariable = runIn({"ls"});
    const auto byLine = runIn({"--me-id=north", "ls"});
    unsetenv("ORVHOST_ME_ID");
    EXPECT_EQ(byVariable.out, "ManagedElement=south\n");
    EXPECT_THAT(byVariable.err, HasSubstr("read the variable ORVHOST_ME_ID\n"));
    EXPECT_EQ(byLine.out, "ManagedElement=north\n");
}

TEST_F(OrvhostProjectTest, Variables_Lists_AreSeparatedByColons) {
    setenv("ORVHOST_MODEL", "site:power", 1);
    setenv("ORVHOST_PATH", TEST_DATA_DIR "/models", 1);
    setenv("ORVHOST_STRICT", "yes", 1);
    const auto wrong = runIn({"ls"});
    setenv("ORVHOST_STRICT", "0", 1);
    const auto right = runIn({"model", "Battery"});
    unsetenv("ORVHOST_MODEL");
    unsetenv("ORVHOST_PATH");
    unsetenv("ORVHOST_STRICT");
    EXPECT_EQ(wrong.err, "orvhost: the variable ORVHOST_STRICT: 0 or 1 was expected, not 'yes'\n");
    EXPECT_EQ(wrong.status, 2);
    EXPECT_THAT(right.out, HasSubstr("capacity"));
}

TEST_F(OrvhostProjectTest, Variable_ThatIsNone_IsNoted) {
    project("");
    setenv("ORVHOST_MODLE", "site", 1);
    const auto result = runIn({"help", "quit"});
    unsetenv("ORVHOST_MODLE");
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.err, HasSubstr("note: the variable ORVHOST_MODLE is none of orvhost. Did "
                                      "you mean ORVHOST_MODEL?\n"));
    EXPECT_THAT(runIn({"help", "quit"}).err, Not(HasSubstr("variable")));
}

TEST_F(OrvhostProjectTest, Named_PathsAreRelativeToIt) {
    mDirectory.file("here.yang",
                    "module here { namespace \"urn:here\"; prefix h; list Site { key id; leaf id "
                    "{ type string; } } }");
    const std::string file = mDirectory.file("other.toml", "model = \"./here.yang\"\n");
    EXPECT_THAT(runOrvhost({"--project", file, "model"}).out, HasSubstr("Site"));
    project("");
    const auto none = runIn({"--project", "", "ls"});
    EXPECT_THAT(none.err, HasSubstr("no model was named"));
    EXPECT_THAT(none.err, Not(HasSubstr("orvhost.toml")));
}

TEST_F(OrvhostProjectTest, Found_LoadsNoSharedObjectUntilItIsTrusted) {
    project("component = [\"none.so\"]\n");
    const auto found = runIn({"ls"});
    EXPECT_EQ(found.status, 0);
    EXPECT_THAT(found.err, AllOf(HasSubstr("orvhost.toml: left out, because the file was found and "
                                           "not named: component. If you trust it: --trust"),
                                 Not(HasSubstr("none.so"))));
    const auto named = runIn({"--project", "orvhost.toml", "ls"});
    EXPECT_EQ(named.status, 3);
    EXPECT_THAT(named.err, HasSubstr("none.so"));
    EXPECT_EQ(runIn({"ls"}).status, 0); // naming is for once
    const auto trusting = runIn({"--trust", "ls"});
    EXPECT_EQ(trusting.status, 3);
    EXPECT_THAT(trusting.err, HasSubstr("orvhost.toml is trusted from now on"));
    EXPECT_EQ(runIn({"ls"}).status, 3); // trust lasts
    project("component = [\"none.so\", \"more.so\"]\n");
    EXPECT_EQ(runIn({"ls"}).status, 0); // until the file is changed
}

TEST_F(OrvhostProjectTest, Found_LogsInToNoDatabaseUntilItIsTrusted) {
    project("store = \"postgresql:host=/no/such/folder dbname=none\"\n");
    const auto found = runIn({"ls"});
    EXPECT_EQ(found.status, 0);
    EXPECT_THAT(found.err, HasSubstr("not named: store. If you trust it"));
    EXPECT_EQ(runIn({"--project", "orvhost.toml", "ls"}).status, 3);
}

TEST_F(OrvhostProjectTest, Mistakes_AreReportedWithTheLine) {
    const auto errorOf = [&](const std::string& text) {
        mDirectory.file("orvhost.toml", text);
        const auto result = runIn({"ls"});
        EXPECT_EQ(result.status, 2) << text;
        return result.err;
    };
    EXPECT_THAT(errorOf("\nmodle = \"site\"\n"),
                AllOf(HasSubstr("orvhost.toml:2: a project has no 'modle'"),
                      HasSubstr("Did you mean model?")));
    EXPECT_THAT(errorOf("model = 5\n"),
                HasSubstr("orvhost.toml:1: model: a text, or a list of texts was expected"));
    EXPECT_THAT(errorOf("strict = \"yes\"\n"), HasSubstr("strict: true or false was expected"));
    EXPECT_THAT(errorOf("strict = 1\n\nmodle = \"site\"\ndata = 5\n"),
                AllOf(HasSubstr("orvhost.toml:1: strict: "),
                      HasSubstr("\norvhost.toml:3: a project"),
                      HasSubstr("\norvhost.toml:4: data: ")));
    EXPECT_THAT(errorOf("model = [\"a\"\n"),
                AllOf(HasSubstr("orvhost.toml:"), HasSubstr(": is no TOML: ")));
    EXPECT_THAT(runIn({"--project", "none.toml", "ls"}).err,
                HasSubstr("none.toml: cannot be read: there is no such file"));
}

TEST_F(OrvhostProjectTest, Init_WritesATemplateThatCanBeRead) {
    const auto elsewhere = runIn({"init", "folder"});
    EXPECT_THAT(elsewhere.err,
                HasSubstr("init takes no words: it writes orvhost.toml in the working folder"));
    EXPECT_EQ(elsewhere.status, 2);
    EXPECT_EQ(runIn({"init"}).out, "orvhost.toml is written\n");
    const auto again = runIn({"init"});
    EXPECT_THAT(again.err, HasSubstr("orvhost.toml is there already"));
    EXPECT_EQ(again.status, 3);
    const auto next = runIn({"-I", TEST_DATA_DIR "/models", "-m", "site", "-m", "power", "model"});
    EXPECT_EQ(next.status, 0) << next.err;
    EXPECT_THAT(next.err, HasSubstr("read orvhost.toml: nothing"));
}

TEST_F(OrvhostProjectTest, Template_WithoutItsMarks_SetsWhatItNames) {
    runIn({"init"});
    std::ifstream file(mDirectory.path() / "orvhost.toml");
    std::string text;
    for (std::string line; std::getline(file, line);) {
        const bool isSetting = line.size() > 1 && line.front() == '#' && line[1] != ' ';
        text += (isSetting ? line.substr(1) : line) + "\n";
    }
    EXPECT_THAT(text, AllOf(HasSubstr("\npath ="), HasSubstr("\nstore ="), Not(HasSubstr("\n#d"))));
    mDirectory.file("orvhost.toml", text);
    EXPECT_THAT(runIn({"ls"}).err, HasSubstr("my-module"));
}

}
}
