// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Pictures of objects and classes, as the current transaction sees them.

#include "Program.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

namespace SystemTest {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

const std::string kRed = "#d00000";

/// True if an XML parser accepts the text, and its root is <svg>.
bool isSvg(const std::string& text) {
    const TemporaryDirectory directory;
    const std::string file = directory.file("picture.svg", text);
    const std::string program = "import sys, xml.etree.ElementTree as tree; "
                                "sys.exit(tree.parse(sys.argv[1]).getroot().tag != "
                                "'{http://www.w3.org/2000/svg}svg')";
    const std::string line = std::string(PYTHON_PROGRAM) + " -c \"" + program + "\" " + file;
    return std::system(line.c_str()) == 0;
}

/// Lets PATH lead to one directory, for as long as it lives.
class OnlyPath {
public:
    explicit OnlyPath(const std::filesystem::path& directory) : mBefore(getenv("PATH")) {
        setenv("PATH", directory.c_str(), 1);
    }
    ~OnlyPath() { setenv("PATH", mBefore.c_str(), 1); }
    OnlyPath(const OnlyPath&) = delete;
    OnlyPath& operator=(const OnlyPath&) = delete;

private:
    std::string mBefore;
};

/// Of a process that got a signal that it cannot ignore. A process whose end nobody asks for stays
/// in the table.
bool hasEnded(int process) {
    const std::string file = "/proc/" + std::to_string(process) + "/stat";
    for (int attempt = 0; attempt < 1000; ++attempt) {
        std::ifstream stream(file);
        std::string text;
        if (!std::getline(stream, text) || text.substr(text.rfind(')'), 3) == ") Z") {
            return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

std::string errorOf(const std::string& command, int status) {
    const auto result = runCommands({command});
    EXPECT_EQ(result.status, status) << command;
    EXPECT_EQ(result.out, "") << command;
    return result.err;
}

TEST(OrvhostGraphTest, Dot_WholeTree_HasObjectsAndReferencesOnce) {
    const auto result = runCommands({"graph --dot"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out,
                AllOf(StartsWith("digraph orv {\n"), EndsWith("}\n"),
                      HasSubstr("<B>Lamp=half way</B>"), HasSubstr(">antennas<"),
                      HasSubstr(">mast<"), HasSubstr(">position.nearest<"),
                      HasSubstr("8 objects, 7 references, 0 violations"), Not(HasSubstr(kRed))));
}

TEST(OrvhostGraphTest, Svg_ObjectsAndClasses_AreWellFormed) {
    const auto objects = runCommands({"graph"});
    EXPECT_EQ(objects.err, "");
    EXPECT_TRUE(isSvg(objects.out));
    EXPECT_THAT(objects.out, AllOf(HasSubstr("Mast=a"), HasSubstr(">antennas<")));
    const auto classes = runCommands({"graph --classes"});
    EXPECT_TRUE(isSvg(classes.out));
    EXPECT_THAT(classes.out, AllOf(HasSubstr("Battery"), HasSubstr("antennas 0..*")));
}

TEST(OrvhostGraphTest, Svg_NamesThatMeanSomethingToGraphvizOrXml_AreShownAsTheyAre) {
    const auto result = runCommands(
        {"create ManagedElement=east,Mast=salt&pepper", "graph ManagedElement=east --depth 1"});
    EXPECT_EQ(result.err, "");
    EXPECT_THAT(result.out, HasSubstr("Mast=salt&amp;pepper"));
}

TEST(OrvhostGraphTest, SubTreeAndDepth_AreCutAndCounted) {
    const auto result =
        runCommands({"graph --dot --depth 2", "graph --dot ManagedElement=east,Mast=a"});
    EXPECT_THAT(result.out, AllOf(HasSubstr("Mast=a<BR ALIGN=\"LEFT\"/>(2 below)"),
                                  HasSubstr("ManagedElement=east: 6 objects"),
                                  HasSubstr("ManagedElement=east,Mast=a: 3 objects"),
                                  HasSubstr("<B>ManagedElement=east,Antenna=1</B>"),
                                  HasSubstr("STYLE=\"DASHED\"")));
}

TEST(OrvhostGraphTest, Violations_OfTheOpenTransaction_AreRedAndGoWithIt) {
    const TemporaryDirectory directory;
    const std::string file = (directory.path() / "picture.svg").string();
    const auto result = runCommands(
        {"begin", "set ManagedElement=east,Mast=b antennas=ManagedElement=east,Antenna=1",
         "set ManagedElement=east,Antenna=2 seen=ManagedElement=east,Mast=gone", "graph --dot",
         "graph -o " + file, "abort", "graph --dot"});
    EXPECT_EQ(result.err, "");
    const std::string wrongCount = "ManagedElement=east,Antenna=1: attribute mast names 2 of class "
                                   "Mast, expected 0..1.";
    EXPECT_THAT(result.out, AllOf(HasSubstr("8 objects, 10 references, 2 violations"),
                                  HasSubstr("<FONT COLOR=\"" + kRed + "\"><B>Antenna=1</B>"),
                                  HasSubstr(">attribute mast names 2 of class Mast, "),
                                  HasSubstr("Mast=gone<BR ALIGN=\"LEFT\"/>is not there"),
                                  HasSubstr("8 objects, 7 references, 0 violations")));
    EXPECT_THAT(result.out, HasSubstr(file +
                                      ": 8 objects, 10 references, 2 violations\n"
                                      "  " +
                                      wrongCount));
    EXPECT_TRUE(isSvg(readFile(file)));
    EXPECT_THAT(readFile(file), HasSubstr(kRed));
}

TEST(OrvhostGraphTest, Json_IsOneDocumentWithNumbersAndText) {
    const auto result = runCommands({"graph --dot", "graph --classes"}, {"--json"});
    const std::size_t end = result.out.find('\n');
    const auto objects = nlohmann::json::parse(result.out.substr(0, end));
    EXPECT_EQ(objects["command"], "graph");
    EXPECT_EQ(objects["objects"], 8);
    EXPECT_EQ(objects["folded"], false);
    EXPECT_EQ(objects["violations"], nlohmann::json::array());
    EXPECT_THAT(objects["dot"].get<std::string>(), StartsWith("digraph"));
    const auto classes = nlohmann::json::parse(result.out.substr(end + 1));
    EXPECT_EQ(classes["classes"], 5);
    EXPECT_TRUE(isSvg(classes["svg"].get<std::string>()));
}

TEST(OrvhostGraphTest, TooManyObjects_AreRefusedWithTheirNumbers) {
    EXPECT_THAT(errorOf("graph --limit 4", 1),
                HasSubstr("more than 4 objects; level by level: 1 + 5. Draw less with --depth"));
    EXPECT_THAT(errorOf("graph --limit 4", 1), HasSubstr("--html makes a page"));
    EXPECT_THAT(errorOf("graph --html --limit 4", 1),
                AllOf(HasSubstr("or raise --limit"), Not(HasSubstr("--html"))));
    EXPECT_THAT(errorOf("graph --unfold --limit 4", 1), HasSubstr("more than 4 objects"));
    EXPECT_THAT(errorOf("graph --classes --limit 2", 1), HasSubstr("there are 5 classes"));
}

TEST(OrvhostGraphTest, WrongWords_AreReported) {
    EXPECT_THAT(errorOf("graph ManagedElement=east,Mast=z", 1), HasSubstr("there is no object"));
    EXPECT_THAT(errorOf("graph --classes Mst", 1), HasSubstr("Did you mean Mast?"));
    EXPECT_THAT(errorOf("graph --depth deep", 2), HasSubstr("--depth needs a number"));
    EXPECT_THAT(errorOf("graph --layout-time 0", 2), HasSubstr("needs at least 1 second"));
    EXPECT_THAT(errorOf("graph -o", 2), HasSubstr("-o needs a text"));
    EXPECT_THAT(errorOf("graph -o x.png", 2), HasSubstr("x.png: the picture is SVG"));
    EXPECT_THAT(errorOf("graph --html x.html", 2),
                HasSubstr("'x.html' is a file's name; -o x.html was expected"));
    EXPECT_THAT(errorOf("graph --html -o x.png", 2),
                HasSubstr("x.png: the picture is HTML; a name ending in .html was expected"));
    EXPECT_THAT(errorOf("graph -o x.html", 2),
                HasSubstr("x.html: the picture is SVG; a name ending in .svg was expected"));
    EXPECT_THAT(errorOf("graph --html -o x.svg", 2),
                HasSubstr("x.svg: the picture is HTML; a name ending in .html was expected"));
    EXPECT_THAT(errorOf("graph --dot -o x.svg", 2),
                HasSubstr("x.svg: the picture is DOT; a name ending in .dot was expected"));
    EXPECT_THAT(errorOf("graph --html --classes", 2), HasSubstr("cannot be combined"));
    EXPECT_THAT(errorOf("graph --unfold --classes", 2), HasSubstr("cannot be combined"));
    EXPECT_THAT(errorOf("graph --unfold --html", 2), HasSubstr("--unfold is for pictures"));
    EXPECT_THAT(errorOf("graph / more", 2), HasSubstr("one word too many"));
    EXPECT_THAT(errorOf("graph -o no/such/directory/x.svg", 1),
                HasSubstr("x.svg: no file can be made in this directory: No such file"));
}

TEST(OrvhostGraphTest, DotMissing_IsReportedWithAWorkaround) {
    const TemporaryDirectory empty;
    const OnlyPath path(empty.path());
    EXPECT_THAT(errorOf("graph", 1), AllOf(HasSubstr("dot is not in PATH"), HasSubstr("--dot")));
    EXPECT_EQ(runCommands({"graph --dot"}).status, 0);
}

TEST(OrvhostGraphTest, DotTakesTooLong_IsEndedAndReportedWithAWorkaround) {
    const TemporaryDirectory directory;
    std::filesystem::permissions(directory.file("dot", "#!/bin/sh\nexec /bin/sleep 50\n"),
                                 std::filesystem::perms::owner_all);
    const OnlyPath path(directory.path());
    EXPECT_THAT(errorOf("graph --layout-time 1", 1),
                AllOf(HasSubstr("dot has not finished after 1 second. Draw less"),
                      HasSubstr("raise --layout-time"), HasSubstr("--html")));
    EXPECT_THAT(errorOf("graph --classes --layout-time 1", 1),
                AllOf(HasSubstr("or from a class, or raise --layout-time"),
                      Not(HasSubstr("--html")), Not(HasSubstr("DN"))));
}

// The program proper takes no notice of a request to end. It ends all the same.
TEST(OrvhostGraphTest, DotIsAScript_WhatItStartedEndsWithIt) {
    const TemporaryDirectory directory;
    const std::filesystem::path number = directory.path() / "number";
    const std::string drawer = "(trap '' TERM; exec /bin/sleep 600)";
    std::filesystem::permissions(directory.file("dot", "#!/bin/sh\n" + drawer + " & echo $! > '" +
                                                           number.string() + "'; wait\n"),
                                 std::filesystem::perms::owner_all);
    const OnlyPath path(directory.path());
    EXPECT_THAT(errorOf("graph --layout-time 1", 1), HasSubstr("dot has not finished"));
    const int child = std::stoi(readFile(number.string()));
    EXPECT_TRUE(hasEnded(child));
}

TEST(OrvhostGraphTest, ManyObjects_AreFoldedAndTheWayToUnfoldIsPrinted) {
    const TemporaryDirectory directory;
    const std::string file = (directory.path() / "picture.svg").string();
    std::vector<std::string> commands{"begin"};
    for (int lamp = 0; lamp < 120; ++lamp) {
        commands.push_back("create ManagedElement=east,Mast=b,Lamp=" + std::to_string(lamp));
    }
    const auto with = [&](const std::string& command) {
        std::vector<std::string> all = commands;
        all.push_back(command);
        all.push_back("abort");
        return runCommands(all);
    };
    const auto toFile = with("graph -o " + file);
    EXPECT_EQ(toFile.err, "");
    EXPECT_THAT(toFile.out, AllOf(HasSubstr(": 128 objects"), HasSubstr("note: folded: more than"),
                                  HasSubstr("--unfold")));
    EXPECT_THAT(readFile(file), AllOf(HasSubstr("Lamp × 120"), HasSubstr("unfold")));
    const auto shown = with("graph --dot");
    EXPECT_THAT(shown.err, HasSubstr("note: folded"));
    EXPECT_THAT(shown.out, Not(HasSubstr("note:")));
    const auto unfolded = with("graph --dot --unfold");
    EXPECT_EQ(unfolded.err, "");
    EXPECT_THAT(unfolded.out, AllOf(HasSubstr("Lamp=119"), Not(HasSubstr("folded"))));
}

TEST(OrvhostGraphTest, DepthZeroFromTheTop_TellsWhatIsThere) {
    EXPECT_THAT(runCommands({"graph --dot --depth 0"}).out,
                HasSubstr("/: 0 objects (8 below), 0 references"));
}

// What the page does stands in object_page.py, which looks at it with a browser.
TEST(OrvhostGraphTest, Html_IsOnePageWithoutDot) {
    const TemporaryDirectory empty;
    const OnlyPath path(empty.path());
    const auto result =
        runCommands({"create ManagedElement=east,Mast=salt&pepper", "graph --html"});
    EXPECT_EQ(result.err, "");
    EXPECT_THAT(result.out, AllOf(HasSubstr("<!DOCTYPE html>"), EndsWith("</html>\n"),
                                  HasSubstr("\"dn\":\"ManagedElement=east,Mast=salt&pepper\""),
                                  Not(HasSubstr("ORV_DATA"))));
}

TEST(OrvhostGraphTest, DotFails_IsReportedWithItsText) {
    const TemporaryDirectory directory;
    const auto become = [&](const std::string& script) {
        std::filesystem::permissions(directory.file("dot", "#!/bin/sh\n" + script + "\n"),
                                     std::filesystem::perms::owner_all);
    };
    const OnlyPath path(directory.path());
    become("echo it broke >&2; exit 3");
    EXPECT_THAT(errorOf("graph", 1), HasSubstr("dot failed with status 3: it broke\n"));
    become("kill -9 $$");
    EXPECT_THAT(errorOf("graph", 1), HasSubstr("dot was ended by signal 9"));
    become("exit 0");
    EXPECT_THAT(errorOf("graph", 1), HasSubstr("dot drew nothing"));
}

}
}
