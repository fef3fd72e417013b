// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Transactions as a user begins, validates and ends them, on the example network.

#include "Program.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace SystemTest {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kRadioUnit = "ManagedElement=Harbour,Equipment=1,RadioUnit=1";
constexpr const char* kAntenna = "ManagedElement=Harbour,Equipment=1,AntennaUnit=1,Antenna=2";

/// Creates a third radio unit for an antenna that takes two.
std::string overload() {
    return "create ManagedElement=Harbour,Equipment=1,RadioUnit=3 antennaRef=" +
           std::string(kAntenna) + "\n";
}

TEST(OrvhostTransactionsTest, Writes_InATransaction_AreSeenThereAndAfterCommit) {
    const std::string get = "get ManagedElement=Harbour userLabel\n";
    const auto result = runOnHarbour("begin a\nset ManagedElement=Harbour userLabel=Pier\n" + get +
                                     "use\n" + get + "use a\ncommit\n" + get);
    EXPECT_EQ(result.out, "transaction a\nset\nPier\nno transaction\nHarbour\ntransaction a\n"
                          "committed\nPier\n");
    EXPECT_EQ(result.status, 0) << result.err;
}

TEST(OrvhostTransactionsTest, Abort_AfterWrites_LeavesNothing) {
    const std::string look = "exists ManagedElement=Harbour,Equipment=1,RadioUnit=3\n"
                             "get ManagedElement=Harbour,Equipment=1,AntennaUnit=1,Antenna=1 "
                             "radioUnitRef\ncount ManagedElement=Harbour,Equipment=1 RadioUnit\n";
    const auto before = runOnHarbour(look);
    const auto after =
        runOnHarbour("begin\n"
                     "create ManagedElement=Harbour,Equipment=1,RadioUnit=3 "
                     "antennaRef=ManagedElement=Harbour,Equipment=1,AntennaUnit=1,Antenna=1\n"
                     "delete ManagedElement=Harbour,Equipment=1,RadioUnit=2\nabort\n" +
                     look);
    EXPECT_EQ(after.out, "transaction t1\ncreated\ndeleted\naborted\n" + before.out);
    EXPECT_EQ(after.status, 0) << after.err;
}

TEST(OrvhostTransactionsTest, Validate_VeryManyValues_TellsTheFirstAndTheNumber) {
    std::string script = "begin\n";
    for (int unit = 11; unit < 23; ++unit) {
        script += "create ManagedElement=Harbour,Equipment=1,RadioUnit=" + std::to_string(unit) +
                  " antennaRef=ManagedElement=Harbour,Equipment=1,AntennaUnit=1,Antenna=2\n";
    }
    const auto result = runOnHarbour(script + "validate\n");
    EXPECT_THAT(result.err, HasSubstr("RadioUnit=18\n               ... and 4 more\n"));
    EXPECT_THAT(result.err, Not(HasSubstr("RadioUnit=19")));
    const auto document = runOnHarbour(script + "validate\n", {"--json"});
    EXPECT_THAT(document.out, HasSubstr("RadioUnit=22\""));
}

TEST(OrvhostTransactionsTest, Validate_VeryLongValue_TellsItsBeginningAndItsLength) {
    const std::string name(5000, 'x');
    std::string script = "begin\n";
    for (const std::string& unit : {name + "1", name + "2", name + "3"}) {
        script += "create ManagedElement=Harbour,Equipment=1,RadioUnit=" + unit +
                  " antennaRef=ManagedElement=Harbour,Equipment=1,AntennaUnit=1,Antenna=2\n";
    }
    const auto result = runOnHarbour(script + "validate\n");
    EXPECT_THAT(result.err, HasSubstr("xxx... (5046 bytes)\n"));
    const auto document = runOnHarbour(script + "validate\n", {"--json"});
    EXPECT_THAT(document.out, HasSubstr(name + "3\""));
}

TEST(OrvhostTransactionsTest, Validate_Violation_TellsObjectValueAndBounds) {
    const auto result = runOnHarbour("begin break\n" + overload() + "validate\nabort\n");
    EXPECT_EQ(result.err,
              "stdin:3: validate: transaction break: OrvValidationFailed (-9)\n"
              "  host: Multiplicity of attribute radioUnitRef in "
              "ManagedElement=1,Equipment=1,AntennaUnit=1,Antenna=2 is not in range (0..2).\n"
              "    object     ManagedElement=Harbour,Equipment=1,AntennaUnit=1,Antenna=2\n"
              "    attribute  radioUnitRef\n"
              "    found      ManagedElement=Harbour,Equipment=1,RadioUnit=1\n"
              "               ManagedElement=Harbour,Equipment=1,RadioUnit=2\n"
              "               ManagedElement=Harbour,Equipment=1,RadioUnit=3\n"
              "    allowed    0..2 values, 0..2 of class RadioUnit\n"
              "  OrvOamSpiExtCmRouterService found the transaction invalid\n");
    EXPECT_EQ(result.out, "transaction break\ncreated\naborted\n");
    EXPECT_EQ(result.status, 1);
}

TEST(OrvhostTransactionsTest, Validate_Refused_CanBeMendedAndCommitted) {
    const auto result = runOnHarbour("begin\n" + overload() +
                                     "validate\n"
                                     "set ManagedElement=Harbour,Equipment=1,RadioUnit=3 "
                                     "antennaRef=null\nvalidate\ncommit\n");
    EXPECT_EQ(result.out, "transaction t1\ncreated\nset\nvalid\ncommitted\n");
}

TEST(OrvhostTransactionsTest, Commit_Refused_ExplainsWhatItFoundAndEndsTheTransaction) {
    const auto result = runOnHarbour("begin\n" + overload() +
                                     "commit\ntransactions\n"
                                     "exists ManagedElement=Harbour,Equipment=1,RadioUnit=3\n");
    EXPECT_THAT(result.err, AllOf(HasSubstr("ManagedElement=Harbour,Equipment=1,RadioUnit=3\n"),
                                  HasSubstr("it is aborted, nothing of it is left")));
    EXPECT_EQ(result.out, "transaction t1\ncreated\nnone is open\nno\n");
}

TEST(OrvhostTransactionsTest, Write_WithoutTransaction_IsCommittedOrLeavesNothing) {
    const auto result = runOnHarbour("set ManagedElement=Harbour userLabel=Pier\n" + overload() +
                                     "get ManagedElement=Harbour userLabel\n"
                                     "exists ManagedElement=Harbour,Equipment=1,RadioUnit=3\n");
    EXPECT_EQ(result.out, "set and committed\nPier\nno\n");
    EXPECT_THAT(result.err, HasSubstr("create: not committed: "
                                      "OrvValidationFailed (-9)"));
}

TEST(OrvhostTransactionsTest, Missing_MandatoryAttributeAndWrongClass_AreExplained) {
    const auto result =
        runOnHarbour("begin\ncreate ManagedElement=Harbour,Equipment=1,Sector=3\n"
                     "set ManagedElement=Harbour,Equipment=1,BasebandUnit=1 "
                     "cabinetRef=ManagedElement=Harbour,Equipment=1,Sector=1\nvalidate\n");
    EXPECT_THAT(
        result.err,
        AllOf(HasSubstr("host: ManagedElement=1,Equipment=1,Sector=3: the mandatory attribute "
                        "'azimuth' of class 'Sector' has no value\n"
                        "    object     ManagedElement=Harbour,Equipment=1,Sector=3\n"
                        "    attribute  azimuth\n"
                        "    found      -\n"
                        "    allowed    1 value\n"),
              HasSubstr("Sector is not a valid type for attribute cabinetRef"),
              HasSubstr("    allowed    0..1 values, 0..1 of class Cabinet\n")));
}

TEST(OrvhostTransactionsTest, Reference_ToNoPlaceOfTheModel_TellsWhoHoldsIt) {
    const auto result =
        runCommands({"begin", "set ManagedElement=east,Antenna=2 mast=Mast=b", "validate"});
    EXPECT_THAT(result.err, HasSubstr("Mast=b does not correspond to a valid MO type.\n"
                                      "    object     ManagedElement=east,Antenna=2\n"
                                      "    attribute  mast\n"
                                      "    found      Mast=b\n"));
}

TEST(OrvhostTransactionsTest, Choice_OfTwoCases_TellsTheObject) {
    const TemporaryDirectory directory;
    const std::string module =
        directory.file("m.yang", "module m { namespace 'urn:m'; prefix m; list ManagedElement {"
                                 " key id; leaf id { type string; } choice c {"
                                 " leaf one { type string; } leaf two { type string; } } } }");
    const auto result = runOrvhost({"-m", module, "--me-id", "H", "-c", "begin", "-c",
                                    "create ManagedElement=1 one=a two=b", "-c", "validate"});
    EXPECT_THAT(result.err, HasSubstr("are of two cases"));
    EXPECT_THAT(result.err, HasSubstr("\n    object  ManagedElement=H\n"));
}

TEST(OrvhostTransactionsTest, Bounds_OfChildren_AreExplained) {
    const auto result =
        runOnHarbour("begin\ncreate ManagedElement=Harbour,Equipment=2\nvalidate\n");
    EXPECT_THAT(result.err, HasSubstr("    object   ManagedElement=Harbour\n"
                                      "    found    2 of class Equipment\n"
                                      "    allowed  0..1\n"));
}

TEST(OrvhostTransactionsTest, Conflict_BetweenTwo_NamesTheOther) {
    const auto result = runOnHarbour("begin north\nset ManagedElement=Harbour userLabel=N\n"
                                     "begin south\nset ManagedElement=Harbour userLabel=S\n"
                                     "commit north\ncommit south\n"
                                     "get ManagedElement=Harbour userLabel\n");
    EXPECT_THAT(
        result.err,
        AllOf(HasSubstr("stdin:4: set: setMoAttributes ManagedElement=Harbour userLabel: "
                        "OrvHostWriteConflict"),
              HasSubstr("\n  ManagedElement=Harbour is being changed by transaction north\n"),
              HasSubstr("stdin:6: commit: transaction south"),
              HasSubstr("allowed  nothing but to abort")));
    EXPECT_THAT(result.out, HasSubstr("committed\nN\n"));
}

TEST(OrvhostTransactionsTest, Conflict_WithAWriteInBetween_SaysSo) {
    const auto result = runOnHarbour("begin a\nuse\nset ManagedElement=Harbour userLabel=N\nuse a\n"
                                     "set ManagedElement=Harbour userLabel=S\n");
    EXPECT_THAT(result.err, HasSubstr("by a write without a transaction"));
}

TEST(OrvhostTransactionsTest, List_SeveralOpen_MarksTheCurrentOne) {
    const auto result = runOnHarbour("begin a\nset ManagedElement=Harbour userLabel=N\nbegin b\n"
                                     "use a\ntransactions\nabort b\ntransactions\n");
    EXPECT_THAT(result.out,
                HasSubstr("   TRANSACTION  WRITING COMMANDS\n*  a            1\n   b            0\n"
                          "aborted\n   TRANSACTION  WRITING COMMANDS\n*  a            1\n"));
    EXPECT_EQ(result.status, 0) << result.err;
}

TEST(OrvhostTransactionsTest, Names_UnknownOrTaken_AreUsage) {
    const auto result = runOnHarbour("commit\nabort\nvalidate\nuse a\ncommit a\nbegin a\nbegin a\n"
                                     "use b\nbegin 'a b'\n");
    EXPECT_THAT(result.err,
                AllOf(HasSubstr("stdin:1: commit: no transaction is the current one; none is open, "
                                "'begin' opens one. Usage: commit [NAME]\n"),
                      HasSubstr("stdin:2: abort: no transaction"),
                      HasSubstr("stdin:3: validate: no transaction"),
                      HasSubstr("stdin:4: use: there is no open transaction 'a'; none is open, "
                                "'begin' opens one. Usage: use [NAME]\n"),
                      HasSubstr("stdin:5: commit: there is no open transaction 'a'"),
                      HasSubstr("stdin:7: begin: transaction a is open already"),
                      HasSubstr("stdin:8: use: there is no open transaction 'b'; open: a."),
                      HasSubstr("stdin:9: begin: 'a b' cannot name a transaction")));
    EXPECT_EQ(result.status, 2);
}

TEST(OrvhostTransactionsTest, Open_AtTheEndWithWrites_AreAbortedWithANote) {
    const auto result = runOnHarbour("begin a\nset ManagedElement=Harbour userLabel=N\nbegin b\n");
    EXPECT_EQ(result.err,
              "note: transaction a was still open, with 1 writing command; it is aborted, nothing "
              "of it is left\n");
    EXPECT_EQ(result.status, 0);
}

// At that moment the far objects have already been changed, and no validation checks them.
TEST(OrvhostTransactionsTest, Reference_RefusedInATransaction_SaysThatItMustBeAborted) {
    const std::string script = "begin a\nset " + std::string(kRadioUnit) + " antennaRef=junk\n";
    for (const std::string version : {"3", "3_1"}) {
        EXPECT_THAT(runOnHarbour(script, {"--interface", version}).err,
                    HasSubstr("\n  references back may have been changed before this was refused, "
                              "and validate may not report it: abort transaction a\n"))
            << version;
    }
    EXPECT_THAT(runOnHarbour(script, {"--interface", "1"}).err, Not(HasSubstr("references back")));
    const std::string harmless = "begin a\nset " + std::string(kRadioUnit) + " userLabel=1 no=2\n";
    EXPECT_THAT(runOnHarbour(harmless).err, Not(HasSubstr("references back")));
    EXPECT_THAT(runOnHarbour(script.substr(script.find('\n') + 1)).err,
                Not(HasSubstr("references back")));
}

TEST(OrvhostTransactionsTest, Write_RefusedHalfWay_TellsWhatStays) {
    const std::string object = "ManagedElement=Harbour,Equipment=1,Sector=9";
    const auto result =
        runOnHarbour("begin a\ncreate " + object + " azimuth=3 no=1\n", {"--interface", "1"});
    EXPECT_THAT(result.err, HasSubstr("\n  in transaction a stays what was done before: the object "
                                      "is created, azimuth is set\n"));
    const auto three = runOnHarbour("begin a\nset ManagedElement=Harbour userLabel=N no=1\n",
                                    {"--interface", "3", "--json"});
    EXPECT_EQ(json::parse(three.out.substr(three.out.find('\n')))["error"]["aftermath"],
              json({"in transaction a stays what was done before: userLabel is set"}));
    const auto own = runOnHarbour("create " + object + " azimuth=3 no=1\n", {"--interface", "1"});
    EXPECT_THAT(own.err, Not(HasSubstr("stays")));
}

TEST(OrvhostTransactionsTest, Json_OfEachCommand_IsOneDocument) {
    const auto result =
        runOnHarbour("begin a\n" + overload() + "validate\ntransactions\ncommit\n", {"--json"});
    std::istringstream lines(result.out);
    std::vector<json> documents;
    for (std::string line; std::getline(lines, line);) {
        documents.push_back(json::parse(line));
    }
    ASSERT_EQ(documents.size(), 5U);
    EXPECT_EQ(documents[0], json({{"command", "begin"}, {"transaction", "a"}}));
    EXPECT_EQ(documents[1]["committed"], false);
    const json violation = documents[2]["error"]["violations"][0];
    EXPECT_EQ(violation["object"], kAntenna);
    EXPECT_EQ(violation["attribute"], "radioUnitRef");
    EXPECT_EQ(violation["found"].size(), 3U);
    EXPECT_EQ(violation["message"], documents[2]["error"]["messages"][0]);
    EXPECT_EQ(documents[3]["transactions"][0]["writes"], 1);
    EXPECT_EQ(documents[4]["error"]["code"], -9);
}

}
}
