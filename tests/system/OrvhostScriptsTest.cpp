// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Scripts, standard input, and the effect of errors in them.

#include "Program.h"

#include <gmock/gmock.h>

namespace SystemTest {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

TEST(OrvhostScriptsTest, Script_CommentsBlanksAndQuotes_AreUnderstood) {
    const TemporaryDirectory directory;
    const std::string script =
        directory.file("script", "# a script\n"
                                 "\n"
                                 "   exists ManagedElement=east   # the root\n"
                                 "exists \"ManagedElement=east,Mast=a,Lamp=half way\"\r\n"
                                 "count ManagedElement=east Mast");
    const auto result = runOrvhost(withSite({"-f", script}));
    EXPECT_EQ(result.out, "yes\nyes\n2\n");
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.status, 0);
}

TEST(OrvhostScriptsTest, Script_CommandFails_StopsWithFileAndLine) {
    const TemporaryDirectory directory;
    const std::string script = directory.file("script", "exists ManagedElement=east\n"
                                                        "get ManagedElement=east,Mast=z\n"
                                                        "exists ManagedElement=east\n");
    const auto result = runOrvhost(withSite({"-f", script}));
    EXPECT_EQ(result.out, "yes\n");
    EXPECT_THAT(result.err, StartsWith(script + ":2: get: "));
    EXPECT_EQ(result.status, 1);
}

TEST(OrvhostScriptsTest, Script_KeepGoing_RunsAllAndKeepsTheFirstStatus) {
    const TemporaryDirectory directory;
    const std::string script = directory.file("script", "frobnicate\n"
                                                        "get ManagedElement=east,Mast=z\n"
                                                        "exists ManagedElement=east\n");
    const auto result = runOrvhost(withSite({"--keep-going", "-f", script}));
    EXPECT_EQ(result.out, "yes\n");
    EXPECT_THAT(result.err, HasSubstr(script + ":1: frobnicate: "));
    EXPECT_THAT(result.err, HasSubstr(script + ":2: get: "));
    EXPECT_EQ(result.status, 2);
}

TEST(OrvhostScriptsTest, Script_QuoteLeftOpen_IsUsage) {
    const TemporaryDirectory directory;
    const std::string script = directory.file("script", "exists 'ManagedElement=east\n");
    const auto result = runOrvhost(withSite({"-f", script}));
    EXPECT_THAT(result.err, StartsWith(script + ":1: the line ends inside a quoted text"));
    EXPECT_EQ(result.status, 2);
}

TEST(OrvhostScriptsTest, Input_NoTerminal_IsReadAsAScript) {
    const auto result = runOrvhost(withSite({}), "exists ManagedElement=east\nget\n");
    EXPECT_EQ(result.out, "yes\n");
    EXPECT_THAT(result.err, StartsWith("stdin:2: get: the DN is missing. Usage: get DN"));
    EXPECT_EQ(result.status, 2);
}

TEST(OrvhostScriptsTest, Input_Dash_IsStandardInput) {
    const auto result = runOrvhost(withSite({"-f", "-"}), "exists ManagedElement=east\n");
    EXPECT_EQ(result.out, "yes\n");
}

TEST(OrvhostScriptsTest, CommandsAndScripts_Together_RunInThatOrderUntilAnError) {
    const TemporaryDirectory directory;
    const std::string script = directory.file("script", "count / ManagedElement\n");
    const auto result = runOrvhost(withSite({"-f", script, "-c", "exists ManagedElement=east"}));
    EXPECT_EQ(result.out, "yes\n1\n");
    const auto failing = runOrvhost(withSite({"-f", script, "-c", "exists"}));
    EXPECT_EQ(failing.out, "");
    EXPECT_EQ(failing.status, 2);
}

}
}
