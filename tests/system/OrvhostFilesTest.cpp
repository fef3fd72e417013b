// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Objects in files: save, load, diff.

#include "Program.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <fstream>
#include <iterator>

#include <sys/resource.h>
#include <sys/stat.h>

namespace SystemTest {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// orvhost with the model of the example network, known as \p identity, and commands.
ProgramResult runRan(const std::string& identity, const std::vector<std::string>& options,
                     const std::vector<std::string>& commands) {
    std::vector<std::string> arguments{
        "-I", EXAMPLES_DIR "/models", "-m",      "ran-element", "-m", "ran-equipment",
        "-m", "ran-function",         "--me-id", identity};
    arguments.insert(arguments.end(), options.begin(), options.end());
    for (const std::string& command : commands) {
        arguments.insert(arguments.end(), {"-c", command});
    }
    return runOrvhost(arguments);
}

const std::vector<std::string> kHarbour{"-d", EXAMPLES_DIR "/data/harbour.json"};

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t at = text.find(from); at != std::string::npos;
         at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

std::size_t filesIn(const fs::path& directory) {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(directory), fs::directory_iterator()));
}

/// Defaults that depend on the case that is taken, and what is false and absent at once.
TEST(OrvhostFiles, Diff_OfAFileThatWasJustSaved_IsEmpty) {
    const TemporaryDirectory directory;
    const std::string module =
        directory.file("m.yang", "module m { namespace 'urn:m'; prefix m; list ManagedElement {"
                                 " key id; leaf id { type string; } leaf bare { type empty; }"
                                 " choice c { default one; leaf one { type string; default d; }"
                                 " leaf two { type string; } } } }");
    const std::string file = (directory.path() / "saved.json").string();
    const ProgramResult result =
        runOrvhost({"-m", module, "--me-id", "H", "-c", "create ManagedElement=1 two=t bare=false",
                    "-c", "save " + file, "-c", "expect output '' : diff " + file + " committed",
                    "-c", "set ManagedElement=H two=null", "-c", "diff " + file + " committed"});
    EXPECT_EQ(result.status, 0) << result.out << result.err;
    EXPECT_THAT(result.out, HasSubstr("~ ManagedElement=H\n    one: null -> \"d\"\n    two: "));
}

class OrvhostFilesTest : public testing::TestWithParam<std::string> {
protected:
    std::string path(const std::string& name) const { return (mDirectory.path() / name).string(); }

    /// The example network, saved under its name Harbour.
    std::string saved(const std::vector<std::string>& words = {}) const {
        const std::string file = path("saved." + GetParam());
        std::string command = "save " + file;
        for (const std::string& word : words) {
            command += " " + word;
        }
        const auto result = runRan("Harbour", kHarbour, {command});
        EXPECT_EQ(result.status, 0) << result.err;
        return file;
    }

    TemporaryDirectory mDirectory;
};

INSTANTIATE_TEST_SUITE_P(Formats, OrvhostFilesTest, testing::Values("json", "xml"),
                         [](const auto& format) { return format.param; });

TEST_P(OrvhostFilesTest, Save_ExampleNetwork_HoldsExternalNamesInModelOrder) {
    const std::string text = readFile(saved());
    EXPECT_THAT(text, HasSubstr("ManagedElement=Harbour,Equipment=1,Sector=1"));
    EXPECT_THAT(text, Not(HasSubstr("ManagedElement=1")));
    EXPECT_LT(text.find("Cabinet"), text.find("RadioUnit"));
    EXPECT_EQ(filesIn(mDirectory.path()), 1U);
}

TEST_P(OrvhostFilesTest, SavedFile_AsDataUnderTheSameName_GivesTheSameFileAgain) {
    const std::string file = saved();
    const std::string again = path("again." + GetParam());
    const auto result = runRan("Harbour", {"-d", file},
                               {"save " + again, "diff " + file + " committed",
                                "diff committed " EXAMPLES_DIR "/data/harbour.json"});
    EXPECT_EQ(result.out, again + ": 37 objects\n");
    EXPECT_EQ(readFile(again), readFile(file));
}

TEST_P(OrvhostFilesTest, SavedFile_AsDataUnderAnotherName_GivesTheSameNetwork) {
    const std::string file = saved();
    const std::string again = path("again." + GetParam());
    const auto result =
        runRan("Pier", {"-d", file},
               {"save " + again, "diff " + file + " committed",
                "get ManagedElement=Pier,Equipment=1,RadioUnit=1 sectorRef antennaRef"});
    EXPECT_EQ(result.out,
              again + ": 37 objects\n"
                      "sectorRef   ManagedElement=Pier,Equipment=1,Sector=1\n"
                      "antennaRef  ManagedElement=Pier,Equipment=1,AntennaUnit=1,Antenna=1\n"
                      "            ManagedElement=Pier,Equipment=1,AntennaUnit=1,Antenna=2\n");
    const std::string named =
        replaced(readFile(again), "ManagedElement=Pier", "ManagedElement=Harbour");
    EXPECT_EQ(replaced(replaced(named, "\"Pier\"", "\"Harbour\""), ">Pier<", ">Harbour<"),
              readFile(file));
}

TEST_P(OrvhostFilesTest, SavedFile_WithReferencesToNothing_IsTakenWithNotes) {
    const std::string file = path("saved." + GetParam());
    const std::string unit = "ManagedElement=Harbour,Equipment=1,RadioUnit=";
    runRan("Harbour", kHarbour, {"delete " + unit + "2", "save " + file});
    const auto result =
        runRan("Harbour", {"-d", file}, {"diff " + file + " committed", "exists " + unit + "2"});
    EXPECT_EQ(result.out, "no\n");
    EXPECT_THAT(result.err, HasSubstr("note: " + file + ":"));
    EXPECT_THAT(result.err, HasSubstr("Sector=2: attribute radioUnitRef names "));
}

TEST_P(OrvhostFilesTest, SavedFile_WithOneSideMissing_NeedsAsIs) {
    const std::string file = path("saved." + GetParam());
    const std::string unit = "ManagedElement=Harbour,Equipment=1,RadioUnit=2";
    runRan("Harbour", kHarbour, {"delete " + unit, "create " + unit, "save " + file});
    const auto refused = runRan("Harbour", {"-d", file}, {"count"});
    EXPECT_EQ(refused.status, 3);
    EXPECT_THAT(refused.err, HasSubstr("does not name it back"));
    EXPECT_THAT(refused.err, HasSubstr("--as-is takes associations as they are"));
    const auto taken = runRan("Harbour", {"-d", file, "--as-is"},
                              {"expect output '' : diff " + file + " committed"});
    EXPECT_EQ(taken.status, 0) << taken.err;
    EXPECT_THAT(taken.err, HasSubstr("note: " + file + ":"));
}

// Each back-pointer would come twice if both sides of an association were written.
TEST_P(OrvhostFilesTest, Load_ConfigIntoAnEmptyNetwork_GivesEachReferenceOnce) {
    const std::string file = saved({"--config"});
    for (const std::string identity : {"Harbour", "Pier"}) {
        const std::string again = path("again." + GetParam());
        const auto result =
            runRan(identity, {}, {"load " + file, "diff " + file + " committed", "save " + again});
        EXPECT_THAT(result.out, AllOf(StartsWith(file + ": 37 objects; 0 deleted, 37 created, "),
                                      HasSubstr(" 0 values of the system left out\n"
                                                "loaded and committed\n" +
                                                again)))
            << result.err;
        std::string text = readFile(again);
        if (identity == "Pier") {
            text = replaced(text, "ManagedElement=Pier", "ManagedElement=Harbour");
            text = replaced(replaced(text, "\"Pier\"", "\"Harbour\""), ">Pier<", ">Harbour<");
        }
        EXPECT_EQ(text, readFile(file));
    }
}

TEST_P(OrvhostFilesTest, Load_WhatIsThereAlready_ChangesNothing) {
    const std::string file = saved();
    const std::string summary =
        file + ": 37 objects; 0 deleted, 0 created, 0 set, 18 values of the system left out\n"
               "loaded and committed\n";
    const auto result = runRan("Harbour", kHarbour,
                               {"load " + file, "load " + file + " merge",
                                "load " + file + " replace", "diff " + file + " committed"});
    EXPECT_EQ(result.out, summary + summary + summary);
    EXPECT_EQ(result.err, "");
}

TEST_P(OrvhostFilesTest, Load_Merge_KeepsWhatTheFileLacksAndReplaceTakesItAway) {
    const std::string file = saved();
    const std::string cabinet = "ManagedElement=Harbour,Equipment=1,Cabinet=extra";
    const auto result = runRan("Harbour", kHarbour,
                               {"create " + cabinet,
                                "set ManagedElement=Harbour,Equipment=1,RadioUnit=1 userLabel=x",
                                "delete ManagedElement=Harbour,Equipment=1,AntennaUnit=2",
                                "load " + file, "diff " + file + " committed",
                                "load " + file + " replace", "diff " + file + " committed"});
    EXPECT_THAT(result.out, HasSubstr("loaded and committed\n+ " + cabinet + "\n")) << result.err;
    EXPECT_THAT(result.out, HasSubstr("37 objects; 1 deleted, 0 created, 0 set, 18 values of the "
                                      "system left out\nloaded and committed\n"));
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out.substr(result.out.rfind("loaded")), "loaded and committed\n");
}

TEST_P(OrvhostFilesTest, Subtree_SavedAndReplaced_LeavesTheRest) {
    const std::string dn = "ManagedElement=Harbour,Equipment=1,RadioUnit=1";
    const std::string file = saved({dn});
    EXPECT_THAT(readFile(file), AllOf(HasSubstr("Crane mast"), Not(HasSubstr("RadioUnit=2")),
                                      Not(HasSubstr("4.2.1"))));
    const auto result = runRan("Harbour", kHarbour,
                               {"diff " + file + " committed " + dn, "set " + dn + " userLabel=x",
                                "create ManagedElement=Harbour,Equipment=1,Cabinet=extra",
                                "load " + file + " replace " + dn,
                                "diff " EXAMPLES_DIR "/data/harbour.json committed"});
    EXPECT_EQ(result.out,
              "set and committed\ncreated and committed\n" + file +
                  ": 3 objects; 0 deleted, 0 created, 1 set, 3 values of the system left out\n"
                  "loaded and committed\n"
                  "+ ManagedElement=Harbour,Equipment=1,Cabinet=extra\n"
                  "    climate: \"INDOOR\"\n")
        << result.err;
}

TEST_P(OrvhostFilesTest, EmptyNetwork_SavedAndLoaded_IsEmpty) {
    const std::string file = path("empty." + GetParam());
    const auto saved = runRan("Harbour", {}, {"save " + file});
    EXPECT_EQ(saved.out, file + ": 0 objects\n");
    const auto result =
        runRan("Harbour", {"-d", file},
               {"diff " + file + " committed", "load " + file + " replace", "tree"});
    EXPECT_EQ(result.out, file + ": 0 objects; 0 deleted, 0 created, 0 set, 0 values of the system "
                                 "left out\nloaded and committed\n/\n")
        << result.err;
}

TEST(OrvhostSaveTest, Transaction_CurrentOne_IsSavedAsItIs) {
    const TemporaryDirectory directory;
    const std::string file = (directory.path() / "a.json").string();
    const auto result = runCommands({"begin t", "set ManagedElement=east,Mast=b height=99",
                                     "save " + file, "diff t " + file, "diff committed " + file});
    EXPECT_EQ(result.out, "transaction t\nset\n" + file +
                              ": 8 objects\n"
                              "~ ManagedElement=east,Mast=b\n"
                              "    height: 12 -> 99\n");
}

TEST(OrvhostSaveTest, Default_IsNotWrittenAndComesBack) {
    const TemporaryDirectory directory;
    const std::string file = (directory.path() / "a.json").string();
    runCommands({"set ManagedElement=east,Mast=b height=30", "save " + file});
    EXPECT_THAT(readFile(file), Not(HasSubstr("height")));
    const auto result = runOrvhost({"-I", "models", "-m", "site", "-m", "power", "-d", file, "-c",
                                    "get ManagedElement=1,Mast=b height"});
    EXPECT_EQ(result.out, "30\n");
}

TEST(OrvhostSaveTest, Format_OptionOrEnding_Decides) {
    const TemporaryDirectory directory;
    const std::string file = (directory.path() / "a.json").string();
    runCommands({"save " + file + " --format xml"});
    EXPECT_THAT(readFile(file), StartsWith("<ManagedElement xmlns="));
}

TEST(OrvhostSaveTest, Export_InPlaceOfACommand_Saves) {
    const TemporaryDirectory directory;
    const std::string file = (directory.path() / "a.xml").string();
    const auto result = runOrvhost(withSite({"export", file, "ManagedElement=east,Mast=a"}));
    EXPECT_EQ(result.out, file + ": 3 objects\n");
    EXPECT_THAT(readFile(file), HasSubstr("<lampId>half way</lampId>"));
}

// Both references of a pair are in the file, and the keys only once, as keys.
TEST_P(OrvhostFilesTest, SeveralKeys_SavedAndLoaded_GiveTheSameObjects) {
    mDirectory.file("routes.yang", R"(module routes {
        yang-version 1.1; namespace "urn:routes"; prefix r;
        import orv-associations { prefix orv; }
        list ManagedElement { key id; leaf id { type string; }
          list Route { key "prefix port";
            leaf prefix { type string; }
            leaf port { type uint16; }
            leaf-list order { type uint8; }
            leaf upRef { type orv:reference; orv:bidirectional "Route.downRef"; }
            leaf-list downRef { type orv:reference; orv:bidirectional "Route.upRef"; } } } })");
    const auto run = [&](const std::string& identity, const std::vector<std::string>& commands) {
        std::vector<std::string> arguments{"-m", path("routes.yang"), "--me-id", identity};
        for (const std::string& command : commands) {
            arguments.insert(arguments.end(), {"-c", command});
        }
        return runOrvhost(arguments);
    };
    const std::string file = path("a." + GetParam());
    const auto saved = run("north", {"create ManagedElement=1",
                                     "create 'ManagedElement=north,Route=a|80' order=3 order=1",
                                     "create 'ManagedElement=north,Route=b%2C|81' "
                                     "'upRef=ManagedElement=north,Route=a|80'",
                                     "save " + file});
    EXPECT_THAT(saved.out, HasSubstr(file + ": 3 objects\n")) << saved.err;
    const auto loaded =
        run("south", {"load " + file, "diff " + file + " committed", "load " + file + " replace",
                      "get 'ManagedElement=south,Route=a|80' order downRef"});
    EXPECT_EQ(loaded.out,
              file +
                  ": 3 objects; 0 deleted, 3 created, 1 set, 0 values of the system left out\n"
                  "loaded and committed\n" +
                  file +
                  ": 3 objects; 0 deleted, 0 created, 0 set, 0 values of the system left out\n"
                  "loaded and committed\n"
                  "order    3\n"
                  "         1\n"
                  "downRef  ManagedElement=south,Route=b%2C|81\n")
        << loaded.err;
}

TEST(OrvhostSaveTest, Refused_SaysWhyAndLeavesTheOldFile) {
    const TemporaryDirectory directory;
    const std::string old = directory.file("old.json", "old");
    const std::string none = (directory.path() / "none/a.json").string();
    const auto result =
        runCommands({"save " + old + " ManagedElement=east,Mast=x", "save " + none,
                     "save " + directory.path().string(), "save", "save " + old + " --format yaml"},
                    {"--keep-going"});
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err,
                AllOf(HasSubstr("there is no object ManagedElement=east,Mast=x"),
                      HasSubstr("save: " + none +
                                ": no file can be made in this directory: No "
                                "such file or directory\n"),
                      HasSubstr(": is not a file that can be replaced; a new file or a"),
                      HasSubstr("save: the FILE is missing. Usage: save FILE [DN]"),
                      HasSubstr("--format is json or xml, not 'yaml'")));
    EXPECT_EQ(readFile(old), "old");
    EXPECT_EQ(filesIn(directory.path()), 1U);
    EXPECT_EQ(result.status, 1);
}

TEST(OrvhostSaveTest, TopLevelThatCannotBeListed_IsRefusedAndOneOfItIsSaved) {
    const TemporaryDirectory directory;
    const std::string file = (directory.path() / "a.json").string();
    const auto result =
        runOrvhost({"-I", "models", "-m", "yard", "-d", "yard", "--keep-going", "-c",
                    "save " + file + "x", "-c", "save " + file + " Yard=east"});
    EXPECT_THAT(result.err, HasSubstr("objects of class Yard at the top level cannot be listed"));
    EXPECT_EQ(result.out, file + ": 1 object\n");
    EXPECT_EQ(filesIn(directory.path()), 1U);
}

TEST(OrvhostLoadTest, OtherModelOrNoFile_IsRefused) {
    const auto result = runCommands({"load " EXAMPLES_DIR "/data/harbour.json", "load nofile",
                                     "load network replac", "load network replace Ship=1"},
                                    {"--keep-going"});
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err,
                AllOf(HasSubstr("/data/harbour.json:2: No module named \"ran-element\""),
                      HasSubstr("load: nofile: cannot be read: there is no such file; a file with "
                                "instance data was"),
                      HasSubstr("'replac' is no way to load; merge or replace was expected"),
                      HasSubstr("there is no class Ship")));
}

TEST(OrvhostLoadTest, PipeOrDevice_IsRefusedAtOnce) {
    const TemporaryDirectory directory;
    const std::string pipe = (directory.path() / "pipe").string();
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const auto result = runCommands(
        {"load " + pipe, "load /dev/zero", "diff " + pipe + " committed"}, {"--keep-going"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, AllOf(HasSubstr("load: " + pipe +
                                            ": is a pipe, a socket or a device; a "
                                            "file or a directory with instance"),
                                  HasSubstr("load: /dev/zero: is a pipe"),
                                  HasSubstr("diff: " + pipe + ": is a pipe")));
}

TEST(OrvhostLoadTest, StandardInput_IsRead) {
    const auto result =
        runOrvhost(withSite({"-c", "load /dev/stdin", "-c", "get ManagedElement=east label"}),
                   R"({"site:ManagedElement": [{"managedElementId": "1", "label": "new"}]})");
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("\nnew\n"));
}

TEST(OrvhostSaveTest, FileOverTheLimitOfItsSize_IsRefusedAndNothingStays) {
    constexpr rlim_t kLimit = 64 * 1024; // above what programs under test write besides
    const TemporaryDirectory input;
    const TemporaryDirectory directory;
    const std::string module =
        input.file("m.yang", "module m { namespace 'urn:m'; prefix m; list ManagedElement {"
                             " key id; leaf id { type string; } leaf text { type string; } } }");
    const std::string data = input.file("m.json", R"({"m:ManagedElement": [{"id": "1", "text": ")" +
                                                      std::string(4 * kLimit, 'x') + "\"}]}");
    const std::string file = directory.file("a.json", "old");
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small{kLimit, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    const auto result = runOrvhost({"-m", module, "-d", data, "-c", "save " + file});
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr(file + ": cannot be written to its end"));
    EXPECT_EQ(readFile(file), "old");
    EXPECT_EQ(filesIn(directory.path()), 1U);
}

TEST(OrvhostLoadTest, SeveralThingsWrong_AreAllNamedAndNothingIsWritten) {
    const TemporaryDirectory directory;
    const std::string file = directory.file("a.json", R"({"site:ManagedElement": [{
        "managedElementId": "1", "label": "new",
        "Mast": [{"mastId": "a", "antennas": ["ManagedElement=1,Antenna=1"]}],
        "Antenna": [{"antennaId": "1", "mast": "ManagedElement=1,Mast=b"},
                    {"antennaId": "3", "seen": ["ManagedElement=other,Mast=a"]}]}]})");
    const auto result = runCommands({"load " + file, "begin t", "load " + file, "diff committed t"},
                                    {"--keep-going"});
    EXPECT_EQ(result.out, "transaction t\n");
    EXPECT_THAT(result.err, AllOf(HasSubstr("ManagedElement=east,Antenna=1"),
                                  HasSubstr("ManagedElement=other is not known")));
    EXPECT_EQ(result.status, 1);
}

TEST(OrvhostLoadTest, RefusedByValidation_IsNotCommitted) {
    const TemporaryDirectory directory;
    const std::string file = directory.file("a.json", R"({"site:ManagedElement": [{
        "managedElementId": "1", "label": "new", "power:Battery": [
            {"batteryId": "a", "capacity": 1}, {"batteryId": "b", "capacity": 1},
            {"batteryId": "c", "capacity": 1}, {"batteryId": "d", "capacity": 1}]}]})");
    const auto result =
        runCommands({"load " + file, "get ManagedElement=east label"}, {"--keep-going"});
    EXPECT_EQ(result.out, "Lighthouse \"east\"\n");
    EXPECT_THAT(result.err, StartsWith("load: not committed: OrvValidationFailed"));
}

TEST(OrvhostLoadTest, ConflictInTheMiddle_SaysWhatIsDoneAndThatItMustBeAborted) {
    const TemporaryDirectory directory;
    const std::string file = directory.file("a.json", R"({"site:ManagedElement": [{
        "managedElementId": "1", "label": "new", "Mast": [{"mastId": "b", "height": 5}]}]})");
    const auto result =
        runCommands({"begin a", "set ManagedElement=east,Mast=b height=7", "begin b",
                     "load " + file, "abort b", "use", "load " + file, "diff network committed"},
                    {"--keep-going"});
    EXPECT_THAT(
        result.err,
        AllOf(HasSubstr("ManagedElement=east,Mast=b height: OrvHostWriteConflict"),
              HasSubstr("in transaction b stays what was done before: 1 change of the file"),
              HasSubstr("transaction b can only be aborted")));
    EXPECT_EQ(result.out, "transaction a\nset\ntransaction b\naborted\nno transaction\n");
}

TEST(OrvhostLoadTest, Json_HasTheNumbers) {
    const auto result = runCommands({"load network"}, {"--json"});
    EXPECT_EQ(json::parse(result.out),
              json::parse(R"({"command": "load", "file": "network", "mode": "merge", "dn": "",
                              "objects": 8, "deleted": 0, "created": 0, "set": 0, "leftOut": 0,
                              "notes": [], "committed": true})"));
}

TEST(OrvhostDiffTest, EachKind_IsShownWithValues) {
    const auto result =
        runCommands({"begin t", "delete ManagedElement=east,Battery=main",
                     "create ManagedElement=east,Mast=c kind=POLE",
                     "set ManagedElement=east,Mast=a offset=null colour=blue", "diff committed t",
                     "diff t committed ManagedElement=east,Battery=main"});
    EXPECT_EQ(result.out.substr(result.out.find("~ ")),
              "~ ManagedElement=east,Mast=a\n"
              "    offset: -7 -> null\n"
              "    colour: [\"red\",\"white\"] -> [\"blue\"]\n"
              "- ManagedElement=east,Battery=main\n"
              "    capacity: 4800\n"
              "+ ManagedElement=east,Mast=c\n"
              "    height: 30\n"
              "    kind: \"POLE\"\n"
              "+ ManagedElement=east,Battery=main\n"
              "    capacity: 4800\n");
}

TEST(OrvhostDiffTest, Equal_PrintsNothingAndIsAnExpectation) {
    const auto result = runCommands(
        {"diff network committed", "expect output '' : diff network committed",
         "set ManagedElement=east label=x", "expect output '' : diff network committed"});
    EXPECT_EQ(result.out, "set and committed\n");
    EXPECT_EQ(result.status, 1);
}

TEST(OrvhostDiffTest, ReferenceInAnotherForm_IsTheSame) {
    const TemporaryDirectory directory;
    const std::string file = directory.file("a.json", R"({"site:ManagedElement": [{
        "managedElementId": "north", "Antenna": [{"antennaId": "2",
            "mast": "ManagedElement.managedElementId=north,Mast.mastId=a"}]}]})");
    const auto result = runCommands(
        {"diff " + file + " committed ManagedElement.managedElementId=east,Antenna.antennaId=2"});
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.status, 0);
}

TEST(OrvhostDiffTest, Json_HasBothValues) {
    const auto result = runCommands({"begin t", "set ManagedElement=east,Mast=b height=13",
                                     "diff committed t ManagedElement=east,Mast=b"},
                                    {"--json"});
    EXPECT_EQ(json::parse(result.out.substr(result.out.find("{\"command\":\"diff\""))),
              json::parse(R"({"command": "diff", "before": "committed", "after": "t",
                              "dn": "ManagedElement=east,Mast=b", "differences": [
                                  {"change": "changed", "dn": "ManagedElement=east,Mast=b",
                                   "attributes": {"height": {"before": 12, "after": 13}}}]})"));
}

TEST(OrvhostDiffTest, UnknownSideOrObject_IsAnError) {
    const auto result = runCommands(
        {"diff t9 committed", "diff committed committed ManagedElement=east,Mast=x", "diff a"},
        {"--keep-going"});
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err,
                AllOf(HasSubstr("'t9' is neither a file nor a store nor an open transaction nor "
                                "'committed'"),
                      HasSubstr("there is no object ManagedElement=east,Mast=x"),
                      HasSubstr("diff: B is missing. Usage: diff A B [DN]")));
}

}
}
