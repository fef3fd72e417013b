// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The commits that somebody asked to see.

#include "Program.h"

#include <gmock/gmock.h>

namespace SystemTest {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

const std::string kEquipment = "ManagedElement=Harbour,Equipment=1";
const std::string kUnit = kEquipment + ",RadioUnit=1";
const std::string kAntenna = kEquipment + ",AntennaUnit=1,Antenna=1";
const std::string kSet = "set " + kUnit + " userLabel=Pier";
const std::string kSeen = "commit 1:\n~ " + kUnit + "\n    userLabel: \"Crane mast\" -> \"Pier\"\n";

ProgramResult watching(const std::vector<std::string>& commands, bool isJson = false) {
    std::vector<std::string> arguments = withHarbour({});
    if (isJson) {
        arguments.emplace_back("--json");
    }
    for (const std::string& command : commands) {
        arguments.insert(arguments.end(), {"-c", command});
    }
    return runOrvhost(arguments);
}

TEST(OrvhostWatchTest, Watch_ACommitOfTheObject_IsShownAfterTheCommand) {
    EXPECT_EQ(watching({"watch " + kUnit, kSet}).out, kUnit + "\nset and committed\n" + kSeen);
    EXPECT_EQ(watching({"watch " + kUnit, "begin", kSet, "commit"}).out,
              kUnit + "\ntransaction t1\nset\ncommitted\n" + kSeen);
}

TEST(OrvhostWatchTest, Watch_AnObjectAbove_SeesWhatIsBelowIt) {
    EXPECT_EQ(watching({"watch " + kEquipment, kSet}).out,
              kEquipment + "\nset and committed\n" + kSeen);
}

TEST(OrvhostWatchTest, Watch_AnotherObject_SeesNothing) {
    const std::string other = kEquipment + ",RadioUnit=2";
    EXPECT_EQ(watching({"watch " + other, kSet}).out, other + "\nset and committed\n");
}

TEST(OrvhostWatchTest, Watch_TheOtherSide_SeesTheBackPointerWithExternalDns) {
    const auto result = watching({"watch " + kAntenna, "set " + kUnit + " antennaRef=null"});
    EXPECT_EQ(result.out, kAntenna + "\nset and committed\ncommit 1:\n~ " + kAntenna +
                              "\n    radioUnitRef: [\"" + kUnit + "\"] -> []\n");
}

TEST(OrvhostWatchTest, Watch_CreatedAndDeletedObjects_AreShownWhole) {
    const std::string unit = kEquipment + ",RadioUnit=9";
    const auto result =
        watching({"watch " + unit, "create " + unit + " userLabel=New", "delete " + unit});
    EXPECT_THAT(result.out, StartsWith(unit + "\ncreated and committed\ncommit 1:\n+ " + unit));
    EXPECT_THAT(result.out, HasSubstr("\ndeleted and committed\ncommit 2:\n- " + unit));
    EXPECT_THAT(result.out, HasSubstr("    userLabel: \"New\"\n"));
}

TEST(OrvhostWatchTest, Watch_AnAbortedOrRefusedTransaction_IsNotShown) {
    EXPECT_EQ(watching({"watch /", "begin", kSet, "abort"}).out,
              "/\ntransaction t1\nset\naborted\n");
}

TEST(OrvhostWatchTest, Off_OneOrAll_EndsIt) {
    EXPECT_EQ(watching({"watch /", "watch " + kUnit, "watch --off /", "watch --off", kSet}).out,
              "/\n/\n" + kUnit + "\n" + kUnit + "\nset and committed\n");
    const auto unknown = watching({"watch --off " + kUnit});
    EXPECT_THAT(unknown.err, HasSubstr(kUnit + " is not watched"));
    EXPECT_EQ(unknown.status, 1);
}

TEST(OrvhostWatchTest, Watch_WhatTheModelHasNoPlaceFor_IsRefused) {
    const auto result = watching({"watch " + kEquipment + ",Mast=1"});
    EXPECT_THAT(result.err, HasSubstr("Mast"));
    EXPECT_NE(result.status, 0);
}

TEST(OrvhostWatchTest, Watch_InJson_IsADocumentOfItsOwn) {
    const auto result = watching({"watch " + kUnit, kSet}, true);
    EXPECT_THAT(
        result.out,
        HasSubstr(R"({"command":"watch","commit":1,"author":"","differences":[{"change":)"
                  R"("changed","dn":")" +
                  kUnit +
                  R"(","attributes":{"userLabel":{"before":"Crane mast","after":"Pier"}}}]})"
                  "\n"));
}

TEST(OrvhostWatchTest, Watch_AnExpectation_SeesOnlyItsCommandsAnswer) {
    const auto result = watching({"watch " + kUnit, "expect output 'set and committed' : " + kSet});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr(kSeen));
}

}
}
