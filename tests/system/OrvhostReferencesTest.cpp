// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// What refers to an object, what refers to nothing, and how much is below a cut.

#include "Program.h"
#include "Terminal.h"

#include <gmock/gmock.h>

namespace SystemTest {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char* kNote = "\x1b[33mnote: references to objects that do not exist:\r\n";
constexpr const char* kLost =
    "  ManagedElement=east,Antenna=2 seen -> ManagedElement=east,Mast=z\r\n";

TEST(OrvhostReferencesTest, Who_AnObject_ListsObjectsAndAttributes) {
    const auto result = runCommands({"who ManagedElement=east,Mast=b"});
    EXPECT_EQ(result.out, "ManagedElement=east,Mast=a position.nearest\n"
                          "ManagedElement=east,Antenna=1 seen\n");
    EXPECT_EQ(runCommands({"who ManagedElement=east"}).out, "");
    const auto missing = runCommands({"who ManagedElement=east,Mast=z"});
    EXPECT_THAT(missing.err, HasSubstr("OrvNotExist"));
    EXPECT_EQ(missing.status, 1);
}

TEST(OrvhostReferencesTest, Audit_AfterADeletion_ListsWhatRefersToIt) {
    const auto result = runCommands({"audit", "begin", "delete ManagedElement=east,Antenna=2",
                                     "audit", "audit ManagedElement=east,Mast=a"});
    EXPECT_THAT(result.out,
                HasSubstr("deleted\nManagedElement=east,Antenna=1 seen -> ManagedElement=east,"
                          "Antenna=2\n"));
    EXPECT_THAT(result.out, testing::StartsWith("transaction t1\n"));
}

TEST(OrvhostReferencesTest, MissingTarget_InAScript_ChangesNoAnswer) {
    const auto result =
        runCommands({"begin", "set ManagedElement=east,Antenna=2 seen=ManagedElement=east,Mast=z",
                     "expect output valid : validate", "expect output committed : commit",
                     "delete ManagedElement=east,Antenna=2"});
    EXPECT_EQ(result.out, "transaction t1\nset\nvalid\ncommitted\ndeleted and committed\n");
    EXPECT_EQ(result.err, "");
}

TEST(OrvhostReferencesTest, MissingTarget_AtThePrompt_IsNotedOnceForATransaction) {
    Terminal terminal(withSite({"--history", ""}));
    ASSERT_TRUE(terminal.waitFor("orvhost> ")) << terminal.seen();
    terminal.type("begin\r");
    ASSERT_TRUE(terminal.waitFor("orvhost[t1]> ")) << terminal.seen();
    terminal.type("set ManagedElement=east,Antenna=2 seen=ManagedElement=east,Mast=z\r");
    ASSERT_TRUE(terminal.waitFor("orvhost[t1]> ")) << terminal.seen();
    terminal.type("validate\r");
    ASSERT_TRUE(terminal.waitFor("valid\r\n" + std::string(kNote) + kLost)) << terminal.seen();
    ASSERT_TRUE(terminal.waitFor("orvhost[t1]> ")) << terminal.seen();
    terminal.type("set ManagedElement=east label=x\r");
    ASSERT_TRUE(terminal.waitFor("orvhost[t1]> ")) << terminal.seen();
    terminal.type("validate\r");
    ASSERT_TRUE(terminal.waitFor(kLost)) << terminal.seen(); // there are new writes
    ASSERT_TRUE(terminal.waitFor("orvhost[t1]> ")) << terminal.seen();
    terminal.type("commit\r");
    ASSERT_TRUE(terminal.waitFor("orvhost> ")) << terminal.seen();
    EXPECT_THAT(terminal.seen(), HasSubstr("committed\r\n"));
    EXPECT_THAT(terminal.seen(), Not(HasSubstr("note:")));
}

TEST(OrvhostReferencesTest, DeletedTarget_AtThePrompt_IsNotedAtTheWrite) {
    Terminal terminal(withSite({"--history", ""}));
    ASSERT_TRUE(terminal.waitFor("orvhost> ")) << terminal.seen();
    terminal.type("delete ManagedElement=east,Antenna=2\r");
    EXPECT_TRUE(terminal.waitFor("deleted and committed\r\n" + std::string(kNote) +
                                 "  ManagedElement=east,Antenna=1 seen -> "
                                 "ManagedElement=east,Antenna=2\r\n"))
        << terminal.seen();
}

TEST(OrvhostReferencesTest, DeletedTarget_AtThePromptInJson_IsInTheDocument) {
    Terminal terminal(withSite({"--history", "", "--json"}));
    ASSERT_TRUE(terminal.waitFor("orvhost> ")) << terminal.seen();
    terminal.type("delete ManagedElement=east,Antenna=2\r");
    EXPECT_TRUE(
        terminal.waitFor(R"("missing":[{"dn":"ManagedElement=east,Antenna=1",)"
                         R"("attribute":"seen","target":"ManagedElement=east,Antenna=2"}])"))
        << terminal.seen();
}

TEST(OrvhostReferencesTest, TreeDepth_Below_CountsAllLevels) {
    EXPECT_EQ(runCommands({"tree --depth 0"}).out, "/ (8 below)\n");
    EXPECT_THAT(runCommands({"tree --depth 1"}).out, HasSubstr("ManagedElement=east (7 below)"));
    EXPECT_THAT(runCommands({"tree --depth 0"}, {"--json"}).out, HasSubstr("\"below\":8"));
}

}
}
