// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// What the commands print, for people.

#include "Program.h"

#include <gmock/gmock.h>

#include <sstream>

namespace SystemTest {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

TEST(OrvhostCommandsTest, Exists_ObjectThereOrNot_AnswersYesOrNo) {
    const auto result =
        runCommands({"exists ManagedElement=east,Mast=a", "exists ManagedElement=east,Mast=x"});
    EXPECT_EQ(result.out, "yes\nno\n");
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.status, 0);
}

TEST(OrvhostCommandsTest, Count_OneClassAndEach_CountsChildren) {
    const auto result = runCommands({"count ManagedElement=east Mast", "count ManagedElement=east",
                                     "count", "count / ManagedElement"});
    EXPECT_EQ(result.out, "2\n"
                          "Mast     2\n"
                          "Antenna  2\n"
                          "Battery  1\n"
                          "ManagedElement  1\n"
                          "1\n");
}

TEST(OrvhostCommandsTest, Get_AllAttributes_AreAlignedWithReferencesInExternalForm) {
    const auto result = runCommands({"get ManagedElement=east,Mast=a"});
    EXPECT_EQ(result.out, "mastId    a\n"
                          "height    30\n"
                          "active    true\n"
                          "kind      LATTICE\n"
                          "tilt      2.5\n"
                          "offset    -7\n"
                          "colour    red\n"
                          "          white\n"
                          "position\n"
                          "  latitude  59.3293\n"
                          "  nearest   ManagedElement=east,Mast=b\n"
                          "antennas  ManagedElement=east,Antenna=1\n"
                          "          ManagedElement=east,Antenna=2\n");
}

TEST(OrvhostCommandsTest, Get_OneAttribute_IsTheBareValue) {
    const auto result = runCommands(
        {"get ManagedElement=east,Mast=b height", "get ManagedElement=east,Mast=a colour",
         "get ManagedElement=east,Mast=b kind", "get ManagedElement=east label"});
    EXPECT_EQ(result.out, "12\nred\nwhite\n-\nLighthouse \"east\"\n");
}

TEST(OrvhostCommandsTest, Get_SeveralAttributes_ComeInTheOrderAsked) {
    const auto result = runCommands({"get ManagedElement=east,Mast=b height mastId"});
    EXPECT_EQ(result.out, "height  12\nmastId  b\n");
}

TEST(OrvhostCommandsTest, Get_RootsName_IsTheExternalIdentity) {
    const auto result = runCommands({"get ManagedElement=east managedElementId"});
    EXPECT_EQ(result.out, "east\n");
}

TEST(OrvhostCommandsTest, List_AllClassesAndOne_PrintsDns) {
    const auto result =
        runCommands({"ls", "ls ManagedElement=east", "ls ManagedElement=east Antenna",
                     "ls ManagedElement=east,Mast=b"});
    EXPECT_EQ(result.out, "ManagedElement=east\n"
                          "ManagedElement=east,Mast=a\n"
                          "ManagedElement=east,Mast=b\n"
                          "ManagedElement=east,Antenna=1\n"
                          "ManagedElement=east,Antenna=2\n"
                          "ManagedElement=east,Battery=main\n"
                          "ManagedElement=east,Antenna=1\n"
                          "ManagedElement=east,Antenna=2\n");
}

TEST(OrvhostCommandsTest, List_NamesWithBlanks_CanBeUsedInQuotes) {
    const auto result = runCommands({"exists 'ManagedElement=east,Mast=a,Lamp=half way'",
                                     "exists ManagedElement=east,Mast=a,Lamp=half\\ way"});
    EXPECT_EQ(result.out, "yes\nyes\n");
}

TEST(OrvhostCommandsTest, Tree_Whole_ShowsNesting) {
    const auto result = runCommands({"tree"});
    EXPECT_EQ(result.out, "/\n"
                          "└── ManagedElement=east\n"
                          "    ├── Mast=a\n"
                          "    │   ├── Lamp=top\n"
                          "    │   └── Lamp=half way\n"
                          "    ├── Mast=b\n"
                          "    ├── Antenna=1\n"
                          "    ├── Antenna=2\n"
                          "    └── Battery=main\n");
}

TEST(OrvhostCommandsTest, Tree_WithDepth_CutsAndCountsWhatIsBelow) {
    const auto result = runCommands(
        {"tree --depth 1 ManagedElement=east", "tree ManagedElement=east,Mast=a --depth 0"});
    EXPECT_EQ(result.out, "ManagedElement=east\n"
                          "├── Mast=a (2 below)\n"
                          "├── Mast=b\n"
                          "├── Antenna=1\n"
                          "├── Antenna=2\n"
                          "└── Battery=main\n"
                          "ManagedElement=east,Mast=a (2 below)\n");
}

TEST(OrvhostCommandsTest, Model_Classes_AreListedWithTheirPlace) {
    const auto result = runCommands({"model"});
    EXPECT_EQ(result.out, "CLASS           NAMED BY          STANDS UNDER\n"
                          "ManagedElement  managedElementId  (top level)\n"
                          "Mast            mastId            ManagedElement\n"
                          "Lamp            lampId            Mast\n"
                          "Antenna         antennaId         ManagedElement\n"
                          "Battery         batteryId         ManagedElement\n");
}

TEST(OrvhostCommandsTest, Model_OneClass_TellsAttributesAndAssociations) {
    const auto result = runCommands({"model Antenna"});
    EXPECT_THAT(result.out, StartsWith("Antenna, named by antennaId\n"));
    EXPECT_THAT(result.out, HasSubstr("  antennaId  1                naming  string\n"));
    EXPECT_THAT(result.out, HasSubstr("  mast       0..1                     reference to Mast\n"));
    EXPECT_THAT(result.out,
                HasSubstr("  seen       0..*                     reference to Mast, Antenna\n"));
    EXPECT_THAT(result.out, HasSubstr("Antenna  mast       Mast       0..1   antennas\n"));
    EXPECT_THAT(result.out, HasSubstr("Antenna  seen       Antenna    0..*   (one way)\n"));
}

TEST(OrvhostCommandsTest, Model_Associations_AreShownFromEachSide) {
    const auto result = runCommands({"model --associations"});
    EXPECT_EQ(result.out, "CLASS    ATTRIBUTE  POINTS AT  COUNT  POINTED BACK BY\n"
                          "Mast     antennas   Antenna    0..*   mast\n"
                          "Antenna  mast       Mast       0..1   antennas\n"
                          "Antenna  seen       Mast       0..*   (one way)\n"
                          "Antenna  seen       Antenna    0..*   (one way)\n");
}

TEST(OrvhostCommandsTest, Components_Loaded_ShowsTheirState) {
    const auto result = runCommands({"components"});
    EXPECT_THAT(result.out, HasSubstr("OrvOamSpiExtCmRouterService  started\n"));
}

TEST(OrvhostCommandsTest, Log_LevelAndTail_ShowsWhatTheComponentWrote) {
    const auto result =
        runCommands({"log", "log level trace", "exists ManagedElement=east", "log tail 100"});
    EXPECT_THAT(result.out, StartsWith("level 4 (warning)\nlevel 8 (trace)\nyes\n"));
    EXPECT_THAT(result.out, HasSubstr("dn: ManagedElement=east"));
    EXPECT_THAT(result.err, HasSubstr("dn: ManagedElement=east"));
}

TEST(OrvhostCommandsTest, Log_ToAFileInJson_LeavesStandardErrorAlone) {
    const TemporaryDirectory directory;
    const std::string file = (directory.path() / "log").string();
    const auto result =
        runCommands({"exists ManagedElement=east"},
                    {"--log-file", file, "--log-format", "json", "--log-level", "trace"});
    EXPECT_EQ(result.err, "");
    EXPECT_THAT(readFile(file), HasSubstr("\"levelName\":\"trace\""));
}

TEST(OrvhostCommandsTest, Help_AllAndOne_TellUsage) {
    const auto result = runCommands({"help", "help tree"});
    EXPECT_THAT(result.out,
                AllOf(HasSubstr("\nget           read attributes"), HasSubstr("tree [DN]")));
    EXPECT_THAT(result.out, HasSubstr("--depth cuts it off"));
}

TEST(OrvhostCommandsTest, Quit_InTheMiddle_LeavesTheRest) {
    const auto result = runCommands({"quit", "exists ManagedElement=east"});
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.status, 0);
}

TEST(OrvhostCommandsTest, Words_AfterTheOptions_AreOneCommand) {
    const auto result =
        runOrvhost(withSite({"tree", "ManagedElement=east,Mast=a", "--depth", "0"}));
    EXPECT_EQ(result.out, "ManagedElement=east,Mast=a (2 below)\n");
    const auto blank = runOrvhost(withSite({"exists", "ManagedElement=east,Mast=a,Lamp=half way"}));
    EXPECT_EQ(blank.out, "yes\n");
}

TEST(OrvhostCommandsTest, Identity_FallbackOnly_IsUsed) {
    const auto result = runOrvhost({"-I", "models", "-m", "site", "-m", "power", "-d", "network",
                                    "--me-id-fallback", "north", "ls"});
    EXPECT_EQ(result.out, "ManagedElement=north\n");
}

TEST(OrvhostCommandsTest, VersionAndHelp_Asked_ArePrinted) {
    const auto version = runOrvhost({"--version"});
    EXPECT_THAT(version.out, StartsWith("orvhost "));
    EXPECT_EQ(version.status, 0);
    const auto help = runOrvhost({"--help"});
    EXPECT_THAT(help.out, AllOf(HasSubstr("--me-id"), HasSubstr("Exit status")));
    EXPECT_EQ(help.status, 0);
    std::istringstream lines(help.out);
    for (std::string line; std::getline(lines, line);) {
        EXPECT_LE(line.size(), 80U) << line;
    }
}

TEST(OrvhostCommandsTest, Interceptor_LoadedBeside_ServesItsAttributeAndPassesTheRestOn) {
    const std::string cell = "ManagedElement=1,GNBDUFunction=1,NRCellDU=";
    const std::vector<std::string> options{"-m", "cells/cells.yang", "-d", "cells/cells.json"};
    const std::vector<std::string> commands{"-c", "get " + cell + "open operationalState",
                                            "-c", "get " + cell + "shut operationalState",
                                            "-c", "get " + cell + "open administrativeState",
                                            "-c", "get " + cell + "shut"};
    const auto run = [&](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), options.begin(), options.end());
        arguments.insert(arguments.end(), commands.begin(), commands.end());
        return runOrvhost(arguments);
    };
    const auto without = run({});
    EXPECT_THAT(without.out, StartsWith("-\n-\nUNLOCKED\n"));
    const auto with = run({"-C", INTERCEPTOR_PATH});
    EXPECT_EQ(with.out, "ENABLED\nDISABLED\nUNLOCKED\n"
                        "nRCellDUId           shut\n"
                        "administrativeState  LOCKED\n"
                        "operationalState     DISABLED\n");
    EXPECT_EQ(with.err, "");
    EXPECT_EQ(with.status, 0);
}

TEST(OrvhostCommandsTest, Interceptor_RefusesAValue_TheClientSeesWhy) {
    const std::string shut = "ManagedElement=1,GNBDUFunction=1,NRCellDU=1";
    for (const std::string version : {"3", "3_1"}) {
        const auto result = runOrvhost({"-I",
                                        EXAMPLES_DIR "/models",
                                        "-m",
                                        "ran-element",
                                        "-m",
                                        "ran-function",
                                        "-m",
                                        "ran-equipment",
                                        "-d",
                                        EXAMPLES_DIR "/data/harbour.json",
                                        "--interface",
                                        version,
                                        "-C",
                                        INTERCEPTOR_PATH,
                                        "--keep-going",
                                        "-c",
                                        "begin",
                                        "-c",
                                        "set " + shut + " administrativeState=LOCKED",
                                        "-c",
                                        "set " + shut + " administrativeState=SHUTTINGDOWN",
                                        "-c",
                                        "get " + shut + " administrativeState",
                                        "-c",
                                        "abort"});
        EXPECT_THAT(result.err,
                    HasSubstr("host: a cell that is LOCKED has nothing to shut down: only one"))
            << version;
        EXPECT_THAT(result.out, HasSubstr("LOCKED\n")) << version;
    }
}

}
}
