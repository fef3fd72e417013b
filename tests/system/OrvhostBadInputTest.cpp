// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Every error is reported with its place and with what was expected, and sets the exit status.

#include "Program.h"

#include <gmock/gmock.h>

namespace SystemTest {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

constexpr int kCommandError = 1;
constexpr int kUsage = 2;
constexpr int kLoad = 3;

/// Runs a command on the small model that must fail with \p status.
std::string errorOf(const std::string& command, int status) {
    const auto result = runCommands({command});
    EXPECT_EQ(result.status, status) << command;
    EXPECT_EQ(result.out, "") << command;
    return result.err;
}

/// Starts orvhost with options that must fail.
std::string loadError(std::vector<std::string> options, int status = kLoad) {
    options.insert(options.begin(), {"-I", "models", "-m", "site"});
    options.insert(options.end(), {"-c", "exists ManagedElement=1"});
    const auto result = runOrvhost(options);
    EXPECT_EQ(result.status, status);
    EXPECT_EQ(result.out, "");
    return result.err;
}

TEST(OrvhostBadInputTest, Dn_NoSuchObject_NamesItsSiblings) {
    EXPECT_EQ(errorOf("get ManagedElement=east,Mast=c height", kCommandError),
              "get: getMoAttribute ManagedElement=east,Mast=c height: OrvNotExist (-2)\n"
              "  there is no object ManagedElement=east,Mast=c; of class Mast under "
              "ManagedElement=east: a, b\n");
}

TEST(OrvhostBadInputTest, Dn_ObjectInTheMiddleMissing_NamesThatOne) {
    EXPECT_THAT(errorOf("ls ManagedElement=east,Mast=c,Lamp=top", kCommandError),
                HasSubstr("there is no object ManagedElement=east,Mast=c;"));
}

TEST(OrvhostBadInputTest, Dn_NoneOfThatClassThere_SaysSo) {
    EXPECT_THAT(errorOf("get ManagedElement=east,Mast=b,Lamp=top", kCommandError),
                HasSubstr("there is none of class Lamp under ManagedElement=east,Mast=b"));
}

TEST(OrvhostBadInputTest, Dn_MistypedClass_NamesTheClassesAndTheNearest) {
    EXPECT_THAT(errorOf("get ManagedElement=east,Mst=a", kCommandError),
                HasSubstr("there is no class Mst; classes under ManagedElement: Mast, Antenna, "
                          "Battery. Did you mean Mast?"));
}

TEST(OrvhostBadInputTest, Dn_ClassInTheWrongPlace_NamesTheClassesThere) {
    EXPECT_THAT(errorOf("get ManagedElement=east,Lamp=top", kCommandError),
                HasSubstr("objects of class Lamp do not stand under ManagedElement; classes under "
                          "ManagedElement: Mast, Antenna, Battery."));
}

TEST(OrvhostBadInputTest, Dn_InternalOrForeignIdentity_NamesTheRightOne) {
    const std::string expected = "clients know it as ManagedElement=east";
    EXPECT_THAT(errorOf("get ManagedElement=1", kCommandError), HasSubstr(expected));
    EXPECT_THAT(errorOf("exists ManagedElement=west,Mast=a", kCommandError), HasSubstr(expected));
}

TEST(OrvhostBadInputTest, Dn_Malformed_NamesTheStep) {
    EXPECT_THAT(errorOf("get ManagedElement=east,Mast", kCommandError),
                HasSubstr("'Mast' in ManagedElement=east,Mast is no step of a DN; expected "
                          "Class=value"));
    EXPECT_THAT(errorOf("get ManagedElement=east,,Mast=a", kCommandError), HasSubstr("'' in "));
    EXPECT_THAT(errorOf("get 'ManagedElement=east,Mast= a'", kCommandError),
                HasSubstr("is no step of a DN"));
}

TEST(OrvhostBadInputTest, Dn_Empty_IsNoObject) {
    EXPECT_THAT(errorOf("get ''", kCommandError), HasSubstr("an empty DN names no object"));
}

TEST(OrvhostBadInputTest, Attribute_Mistyped_NamesTheAttributesAndTheNearest) {
    EXPECT_THAT(errorOf("get ManagedElement=east,Mast=a heigth", kCommandError),
                AllOf(HasSubstr("class Mast has no attribute heigth; its attributes: mastId, "
                                "height,"),
                      HasSubstr("Did you mean height?")));
    EXPECT_THAT(errorOf("get ManagedElement=east,Mast=a height colur", kCommandError),
                HasSubstr("Did you mean colour?"));
}

TEST(OrvhostBadInputTest, Class_UnknownToCountListAndModel_NamesTheClasses) {
    EXPECT_THAT(errorOf("ls ManagedElement=east Antena", kCommandError),
                HasSubstr("Did you mean Antenna?"));
    EXPECT_THAT(errorOf("count / Mast", kCommandError),
                HasSubstr("classes at the top level: ManagedElement."));
    EXPECT_THAT(errorOf("model Antena", kCommandError), HasSubstr("Did you mean Antenna?"));
}

TEST(OrvhostBadInputTest, Command_Unknown_SuggestsTheNearest) {
    EXPECT_THAT(errorOf("gte ManagedElement=east", kUsage),
                StartsWith("gte: there is no command 'gte'. Did you mean get?"));
}

TEST(OrvhostBadInputTest, Command_ThatIsAFile_SaysHowToRunIt) {
    const TemporaryDirectory directory;
    const std::string script = directory.file("script.orv", "count\n");
    EXPECT_THAT(errorOf(script, kUsage), HasSubstr("It is a file: 'source' runs it"));
}

TEST(OrvhostBadInputTest, NoModel_SaysHowToNameOne) {
    const auto result = runOrvhost({"count"});
    EXPECT_EQ(result.err,
              "orvhost: no model was named: -m MODULE, or a project file (orvhost init)\n");
    EXPECT_EQ(result.status, 3);
}

TEST(OrvhostBadInputTest, Words_TooFewOrTooMany_TellTheUsage) {
    EXPECT_THAT(errorOf("exists", kUsage), StartsWith("exists: the DN is missing. Usage: exists"));
    EXPECT_THAT(errorOf("exists a b", kUsage), HasSubstr("'b' is one word too many"));
    EXPECT_THAT(errorOf("tree --depth x", kUsage), HasSubstr("--depth needs a number from 0"));
    EXPECT_THAT(errorOf("log loud", kUsage), HasSubstr("'loud' is neither level nor tail"));
    EXPECT_THAT(errorOf("log level loud", kUsage), HasSubstr("'loud' is no level"));
    EXPECT_THAT(errorOf("model Mast --associations", kUsage), HasSubstr("do not go together"));
}

TEST(OrvhostBadInputTest, Options_Unknown_IsUsage) {
    EXPECT_THAT(loadError({"--bogus"}, kUsage), HasSubstr("--bogus"));
    EXPECT_THAT(loadError({"--log-level", "loud"}, kUsage), HasSubstr("'loud' is no level"));
    EXPECT_THAT(loadError({"--log-format", "xml"}, kUsage), HasSubstr("xml"));
}

TEST(OrvhostBadInputTest, Script_Missing_IsUsage) {
    const auto result = runOrvhost(withSite({"-f", "no-such-script"}));
    EXPECT_EQ(result.err, "orvhost: no-such-script: cannot be read: there is no such file\n");
    EXPECT_EQ(result.status, kUsage);
}

TEST(OrvhostBadInputTest, Model_Missing_TellsWhereItWasLookedFor) {
    EXPECT_THAT(loadError({"-m", "nosuch"}), AllOf(HasSubstr("nosuch"), HasSubstr("models")));
}

TEST(OrvhostBadInputTest, Model_Malformed_TellsFileAndLine) {
    EXPECT_THAT(loadError({"-m", "broken/malformed.yang"}),
                AllOf(HasSubstr("broken/malformed.yang:7:"), HasSubstr("typo")));
}

TEST(OrvhostBadInputTest, Model_OppositesDisagree_TellsBothEnds) {
    EXPECT_THAT(loadError({"-m", "broken/disagree.yang"}),
                AllOf(HasSubstr("broken/disagree.yang:9:"), HasSubstr("Left.right"),
                      HasSubstr("Right.left")));
}

TEST(OrvhostBadInputTest, Data_Missing_IsNamed) {
    EXPECT_THAT(loadError({"-d", "no-such-data"}), HasSubstr("no-such-data"));
}

TEST(OrvhostBadInputTest, Data_MalformedOrWrongValue_TellsFileAndLine) {
    EXPECT_THAT(loadError({"-d", "broken/malformed.json"}), HasSubstr("broken/malformed.json:4:"));
    EXPECT_THAT(loadError({"-d", "broken/malformed.xml"}), HasSubstr("broken/malformed.xml:"));
    EXPECT_THAT(
        loadError({"-d", "broken/wrong-value.json"}),
        AllOf(HasSubstr("broken/wrong-value.json:5:"), HasSubstr("99999"), HasSubstr("height")));
}

TEST(OrvhostBadInputTest, Data_OneSidedAssociations_AreAllReportedWithBothDns) {
    EXPECT_THAT(
        loadError({"-d", "broken/one-sided.json"}),
        AllOf(
            HasSubstr("broken/one-sided.json:5: ManagedElement=1,Mast=a: attribute antennas names "
                      "ManagedElement=1,Antenna=1"),
            HasSubstr("broken/one-sided.json:6: ManagedElement=1,Antenna=2: attribute mast names "
                      "ManagedElement=1,Mast=a")));
}

TEST(OrvhostBadInputTest, Data_OneSidedWithRepair_IsCompletedAndReported) {
    const auto result = runOrvhost({"-I", "models", "-m", "site", "-d", "broken/one-sided.json",
                                    "--repair", "-c", "get ManagedElement=1,Mast=a antennas", "-c",
                                    "get ManagedElement=1,Antenna=1 mast"});
    EXPECT_EQ(result.out, "ManagedElement=1,Antenna=1\n"
                          "ManagedElement=1,Antenna=2\n"
                          "ManagedElement=1,Mast=a\n");
    EXPECT_THAT(result.err, HasSubstr("repaired: broken/one-sided.json:"));
    EXPECT_EQ(result.status, 0);
}

TEST(OrvhostBadInputTest, Data_ForbiddenClassAndMissingTarget_AreBothReported) {
    EXPECT_THAT(loadError({"-d", "broken/wrong-class.json"}),
                AllOf(HasSubstr("expected Mast or Antenna"), HasSubstr("Mast=gone")));
}

TEST(OrvhostBadInputTest, Data_RootWithAnExternalName_IsTheRootAndItsProblemsAreFound) {
    const auto result = runOrvhost({"-I", "models", "-m", "site", "-d", "broken/external-root.json",
                                    "-c", "exists ManagedElement=1"});
    EXPECT_EQ(result.out, "yes\n");
    EXPECT_THAT(result.err, AllOf(HasSubstr("note: broken/external-root.json:5: ManagedElement=1,"
                                            "Mast=a: attribute antennas names ManagedElement=1,"
                                            "Antenna=gone, which does not exist."),
                                  Not(HasSubstr("no client can"))));
}

TEST(OrvhostBadInputTest, Data_TwoNamesOfTheRoot_AreRefused) {
    const TemporaryDirectory directory;
    const std::string west =
        directory.file("west.json", R"({"site:ManagedElement": [{"managedElementId": "west"}]})");
    EXPECT_THAT(loadError({"-d", "broken/external-root.json", "-d", west}),
                HasSubstr("west.json: the element at the root is called west here, but east in "
                          "broken/external-root.json; one name was expected, or 1"));
}

TEST(OrvhostBadInputTest, Data_NoIdentityAtAll_IsRefused) {
    const auto result = runOrvhost({"-I", "models", "-m", "site", "-m", "power", "-d", "network",
                                    "--me-id", "", "--me-id-fallback", "", "-c", "ls"});
    EXPECT_THAT(result.err, HasSubstr("network/1-masts.json:4: ManagedElement=1: no client can"));
    EXPECT_EQ(result.status, kLoad);
}

TEST(OrvhostBadInputTest, Data_TooManyObjectsOfAClass_IsRefused) {
    EXPECT_THAT(
        loadError({"-m", "power", "-d", "network", "-d", "broken/many-batteries.json"}),
        HasSubstr("network/1-masts.json:4: ManagedElement=1: 5 of class Battery stand there, "
                  "expected 0..4."));
}

TEST(OrvhostBadInputTest, Data_TopLevelOfAnotherClass_IsLoadedWithANote) {
    const auto result =
        runOrvhost({"-I", "models", "-m", "yard", "-d", "yard", "--me-id", "east", "-c",
                    "get Yard=1 label", "-c", "get Yard=east label", "-c", "count / Yard"});
    EXPECT_EQ(result.out, "Behind the house\nThe east one\n2\n");
    EXPECT_EQ(result.err, "note: yard/yard.json:3: Yard=1: lists of the top level show this object "
                          "as Yard=east; name it by its DN.\n");
    EXPECT_EQ(result.status, 0);
}

TEST(OrvhostBadInputTest, Component_MissingOrBroken_IsReported) {
    EXPECT_THAT(loadError({"--ext-cm", "no-such.so"}),
                HasSubstr("no-such.so: cannot be opened as a shared object"));
    EXPECT_THAT(loadError({"--ext-cm", "models/site.yang"}),
                HasSubstr("cannot be opened as a shared object"));
    EXPECT_THAT(loadError({"-C", BROKEN_COMPONENT_DIR "/NoInit.so"}),
                HasSubstr("has no entry point orvLCMinit"));
    EXPECT_THAT(loadError({"-C", BROKEN_COMPONENT_DIR "/StartFails.so"}),
                HasSubstr("component TestStartFails is not started: start answered"));
    EXPECT_THAT(loadError({"-C", EXT_CM_PATH}), HasSubstr("is loaded already"));
}

// Without the host's check, loading this file would end the process with a signal.
TEST(OrvhostBadInputTest, Component_CutOff_IsReported) {
    const TemporaryDirectory directory;
    const std::filesystem::path copy = directory.path() / "cut-off.so";
    std::filesystem::copy_file(EXT_CM_PATH, copy);
    std::filesystem::resize_file(copy, 5000);
    EXPECT_EQ(loadError({"-C", copy.string()}),
              "orvhost: " + copy.string() +
                  ": cannot be opened as a shared object: the file ends too early\n");
}

TEST(OrvhostBadInputTest, Component_NoneOffersTheTables_IsReported) {
    EXPECT_THAT(loadError({"--ext-cm", BROKEN_COMPONENT_DIR "/Provider.so"}),
                HasSubstr("no started component offers OrvOamSpiExtCmRouterService/"
                          "OrvOamSpiManagedObject version 3"));
}

TEST(OrvhostBadInputTest, LogFile_NotWritable_IsReported) {
    EXPECT_THAT(loadError({"--log-file", "no/such/dir/log"}),
                HasSubstr("no/such/dir/log: cannot be opened for writing"));
}

}
}
