// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// cd, DNs that begin at the object where the session stands, find, and source.

#include "Program.h"
#include "Terminal.h"

#include <gmock/gmock.h>

namespace SystemTest {
namespace {

using testing::HasSubstr;

TEST(OrvhostPlacesTest, Cd_AnObject_DnsBeginBelowIt) {
    const auto result =
        runCommands({"cd ManagedElement=east", "get Mast=b height", "cd Mast=a", "get . kind",
                     "get ..,Mast=b height", "exists ../Antenna=1",
                     "exists ManagedElement=east,Mast=b", "exists /ManagedElement=east", "ls",
                     "tree", "count . Lamp", "cd ..", "cd ..", "ls", "cd Mast=b"},
                    {"--keep-going"});
    EXPECT_EQ(result.out, "ManagedElement=east\n12\nManagedElement=east,Mast=a\nLATTICE\n12\nyes\n"
                          "yes\nyes\n"
                          "ManagedElement=east,Mast=a,Lamp=top\n"
                          "ManagedElement=east,Mast=a,Lamp=half way\n"
                          "ManagedElement=east,Mast=a\n├── Lamp=top\n└── Lamp=half way\n"
                          "2\nManagedElement=east\n/\nManagedElement=east\n");
    EXPECT_THAT(result.err, HasSubstr("objects of class Mast do not stand at the top level"));
}

TEST(OrvhostPlacesTest, Cd_AboveTheTopOrToNothing_StaysWhereItIs) {
    const auto result =
        runCommands({"cd ..", "cd ManagedElement=east,Mast=z", "ls"}, {"--keep-going"});
    EXPECT_THAT(result.err, HasSubstr("'..' leads above the top level"));
    EXPECT_THAT(result.err, HasSubstr("there is no object ManagedElement=east,Mast=z"));
    EXPECT_EQ(result.out, "ManagedElement=east\n");
}

TEST(OrvhostPlacesTest, Cd_AtThePrompt_ShowsTheObjectAndCompletesBelowIt) {
    Terminal terminal(withSite({"--history", ""}));
    ASSERT_TRUE(terminal.waitFor("orvhost> ")) << terminal.seen();
    terminal.type("cd ManagedElement=east\r");
    ASSERT_TRUE(terminal.waitFor("orvhost ManagedElement=east> ")) << terminal.seen();
    terminal.type("begin work\r");
    ASSERT_TRUE(terminal.waitFor("orvhost[work] ManagedElement=east> ")) << terminal.seen();
    terminal.type("get Mas\t");
    ASSERT_TRUE(terminal.waitFor("t=")) << terminal.seen();
    terminal.type("b hei\t\r");
    EXPECT_TRUE(terminal.waitFor("\n12\r\n")) << terminal.seen();
    terminal.type("quit\r");
    EXPECT_EQ(terminal.finish(), 0);
}

TEST(OrvhostPlacesTest, Find_ClassesAndConditions_ListsWhatFits) {
    const std::string a = "ManagedElement=east,Mast=a\n";
    const std::string b = "ManagedElement=east,Mast=b\n";
    const std::vector<std::pair<std::string, std::string>> cases{
        {"find Mast", a + b},
        {"find M*t", "ManagedElement=east\n" + a + b},
        {"find ManagedElement=east,Mast=b Mast", b},
        {"find Mast.height >= 13", a},
        {"find 'Mast.height<13'", b},
        {"find Mast.height != 30", b},
        {"find Mast.kind = LAT*", a},
        {"find Mast.kind != LATTICE", b},
        {"find Mast.colour=white", a},
        {"find Mast.tilt = 2.5", a},
        {"find Mast.active = true", a},
        {"find Mast.position.latitude > 59", a},
        {"find *.label = *east*", "ManagedElement=east\n"},
        {"find Mast.height > 100", ""},
    };
    for (const auto& [command, expected] : cases) {
        const auto result = runCommands({command});
        EXPECT_EQ(result.out, expected) << command;
        EXPECT_EQ(result.err, "") << command;
    }
    EXPECT_EQ(runCommands({"find Lamp"}, {"--json"}).out,
              R"({"command":"find","dn":"","objects":["ManagedElement=east,Mast=a,Lamp=top",)"
              R"("ManagedElement=east,Mast=a,Lamp=half way"]})"
              "\n");
}

TEST(OrvhostPlacesTest, Find_WhatTheModelLacks_IsAnError) {
    EXPECT_THAT(runCommands({"find Mst"}).err, HasSubstr("Did you mean Mast?"));
    EXPECT_THAT(runCommands({"find Mast.weight > 1"}).err,
                HasSubstr("no class Mast has an attribute weight"));
    EXPECT_THAT(runCommands({"find Mast.height => 1"}).err, HasSubstr("'=>' does not compare"));
    EXPECT_THAT(runCommands({"find Mast.height ~ 1"}).err, HasSubstr("'~' does not compare"));
    EXPECT_THAT(runCommands({"find Mast.height > tall"}).err,
                HasSubstr("'tall' is no number, and height is one"));
    EXPECT_EQ(runCommands({"find Mast.height = tall"}).status, 0);
    EXPECT_THAT(runCommands({"find Mast.height"}).err, HasSubstr("a condition on height"));
    EXPECT_THAT(runCommands({"find"}).err, HasSubstr("the CLASS is missing"));
}

TEST(OrvhostPlacesTest, Source_AScript_RunsItAndStopsAtItsError) {
    const TemporaryDirectory directory;
    const std::string inner = directory.file("inner", "exists ManagedElement=east\nnonsense\n");
    const std::string outer = directory.file("outer", "source " + inner + "\nls\n");
    const auto result = runCommands({"source " + outer, "ls"}, {"--keep-going"});
    EXPECT_EQ(result.out, "yes\nManagedElement=east\n");
    EXPECT_THAT(result.err, HasSubstr(inner + ":2: nonsense: "));
    EXPECT_EQ(result.status, 2);
    const std::string endless = directory.file("endless", "");
    directory.file("endless", "source " + endless + "\n");
    EXPECT_THAT(runCommands({"source " + endless}).err, HasSubstr("scripts run one another"));
    EXPECT_THAT(runCommands({"source /nowhere"}).err,
                HasSubstr("/nowhere: cannot be read: there is no such file"));
}

}
}
