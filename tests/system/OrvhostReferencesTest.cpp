// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// What refers to an object, what refers to nothing, and how much is below a cut.

#include "Program.h"

#include <gmock/gmock.h>

namespace SystemTest {
namespace {

using testing::HasSubstr;

constexpr const char* kHint = "hint: references to objects that do not exist:\n";

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

TEST(OrvhostReferencesTest, ValidateAndCommit_MissingTarget_GiveAHint) {
    const std::string lost = "  ManagedElement=east,Antenna=2 seen -> ManagedElement=east,Mast=z\n";
    const auto result =
        runCommands({"begin", "set ManagedElement=east,Antenna=2 seen=ManagedElement=east,Mast=z",
                     "validate", "commit", "begin", "set ManagedElement=east label=x", "commit"});
    EXPECT_EQ(result.out, "transaction t1\nset\nvalid\n" + (kHint + lost) + "committed\n" + kHint +
                              lost + "transaction t2\nset\ncommitted\n")
        << result.err;
}

TEST(OrvhostReferencesTest, Commit_DeletedTarget_GivesAHint) {
    const auto result =
        runCommands({"begin", "delete ManagedElement=east,Antenna=2", "commit"}, {"--json"});
    EXPECT_THAT(result.out,
                HasSubstr(R"("missing":[{"dn":"ManagedElement=east,Antenna=1","attribute":"seen",)"
                          R"("target":"ManagedElement=east,Antenna=2"}])"))
        << result.err;
}

TEST(OrvhostReferencesTest, TreeDepth_Below_CountsAllLevels) {
    EXPECT_EQ(runCommands({"tree --depth 0"}).out, "/ (8 below)\n");
    EXPECT_THAT(runCommands({"tree --depth 1"}).out, HasSubstr("ManagedElement=east (7 below)"));
    EXPECT_THAT(runCommands({"tree --depth 0"}, {"--json"}).out, HasSubstr("\"below\":8"));
}

}
}
