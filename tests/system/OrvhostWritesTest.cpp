// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Single writes, with correct and wrong words, through each version of the interface.

#include "Program.h"

#include <gmock/gmock.h>

namespace SystemTest {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

class OrvhostWritesTest : public testing::TestWithParam<const char*> {
protected:
    static ProgramResult run(const std::string& script) {
        return runOnHarbour(script, {"--interface", GetParam()});
    }
};

INSTANTIATE_TEST_SUITE_P(Versions, OrvhostWritesTest, testing::Values("1", "3", "3_1"));

TEST_P(OrvhostWritesTest, Set_ValuesOfEachKind_AreReadBack) {
    const auto result = run(
        "set ManagedElement=Harbour userLabel='two words' elementType=GNB_DU "
        "'location={\"latitude\": 1.5, \"altitude\": -3}'\n"
        "set ManagedElement=Harbour,GNBDUFunction=1,NRCellDU=3 cellBarred=false nRPCI=7 "
        "cellReservedFor=null 'pLMNIdList=[{\"mcc\": \"001\", \"mnc\": \"01\"}]'\n"
        "set ManagedElement=Harbour,GNBCUCPFunction=1,NRCellCU=1 mobilityEvent=A1 "
        "mobilityEvent=B2\n"
        "get ManagedElement=Harbour userLabel elementType location\n"
        "get ManagedElement=Harbour,GNBDUFunction=1,NRCellDU=3 cellBarred nRPCI cellReservedFor "
        "pLMNIdList\n"
        "get ManagedElement=Harbour,GNBCUCPFunction=1,NRCellCU=1 mobilityEvent\n");
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, "set and committed\nset and committed\nset and committed\n"
                          "userLabel    two words\n"
                          "elementType  GNB_DU\n"
                          "location\n"
                          "  latitude  1.5\n"
                          "  altitude  -3\n"
                          "cellBarred       false\n"
                          "nRPCI            7\n"
                          "cellReservedFor  -\n"
                          "pLMNIdList[0]\n"
                          "  mcc  001\n"
                          "  mnc  01\n"
                          "A1\nB2\n");
}

TEST_P(OrvhostWritesTest, Create_WithAttributesAndDelete_ComeAndGo) {
    const auto result = run("create ManagedElement=Harbour,Equipment=1,Sector=3 azimuth=300 "
                            "userLabel=Breakwater\n"
                            "get ManagedElement=Harbour,Equipment=1,Sector=3 azimuth userLabel\n"
                            "ls ManagedElement=Harbour,Equipment=1 Sector\n"
                            "delete ManagedElement=Harbour,Equipment=1,Sector=3\n"
                            "exists ManagedElement=Harbour,Equipment=1,Sector=3\n");
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, "created and committed\n"
                          "azimuth    300\n"
                          "userLabel  Breakwater\n"
                          "ManagedElement=Harbour,Equipment=1,Sector=1\n"
                          "ManagedElement=Harbour,Equipment=1,Sector=2\n"
                          "ManagedElement=Harbour,Equipment=1,Sector=3\n"
                          "deleted and committed\n"
                          "no\n");
}

TEST_P(OrvhostWritesTest, Action_GoodAndBadParameters_AreAnswered) {
    const auto result = run("action ManagedElement=Harbour restart delay=5 reason=PLANNED\n"
                            "action ManagedElement=Harbour restart reason=WHIM\n"
                            "action ManagedElement=Harbour restart reason=FAULT colour=red size=3\n"
                            "action ManagedElement=Harbour restrat\n"
                            "action ManagedElement=Harbour\n");
    EXPECT_EQ(result.out, "done and committed\n");
    EXPECT_THAT(result.err,
                AllOf(HasSubstr("stdin:2: action: action ManagedElement=Harbour restart: "
                                "OrvInvalidArgument (-8)\n  ManagedElement=Harbour: parameter "
                                "'reason' of action 'restart': \"WHIM\" is none of the permitted "
                                "names: PLANNED, FAULT\n"),
                      HasSubstr("stdin:3: action: action ManagedElement=Harbour restart: "
                                "OrvInvalidArgument (-8)\n"),
                      HasSubstr("class ManagedElement has no action restrat; its actions: restart. "
                                "Did you mean restart?"),
                      HasSubstr("stdin:5: action: the action is missing. Usage: action DN")));
}

TEST_P(OrvhostWritesTest, Value_OfAWrongTypeOrOutOfRange_IsReportedWithWhatIsExpected) {
    const std::string cell = "ManagedElement=Harbour,GNBDUFunction=1,NRCellDU=1";
    const auto result = run("set " + cell + " nRPCI=tall\nset " + cell + " nRPCI=-1\nset " + cell +
                            " nRPCI=1008\nset " + cell + " nRPCI=99999999999999999999999\nset " +
                            cell + " administrativeState=OPEN\nset " + cell +
                            " nRCellCURef=nowhere\nset " + cell + " 'nRPCI=[1, 2]'\n");
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(
        result.err,
        AllOf(HasSubstr(cell + ": attribute 'nRPCI' of class 'NRCellDU' (uint16"),
              HasSubstr("stdin:2: set: "), HasSubstr("stdin:3: set: "), HasSubstr("stdin:4: set: "),
              HasSubstr("\"OPEN\" is none of the permitted names: LOCKED, SHUTTINGDOWN, UNLOCKED"),
              HasSubstr("'nowhere' is no DN, expected steps Class=value with commas between"),
              HasSubstr("stdin:7: set: "), HasSubstr("2 values, expected 1")));
    EXPECT_EQ(result.status, 1);
}

TEST_P(OrvhostWritesTest, Names_Unknown_AreReportedWithTheNearest) {
    const auto result = run("set ManagedElement=Harbour userLable=x\n"
                            "set ManagedElement=Harbour,Equipment=2 x=1\n"
                            "create ManagedElement=Harbour,Equipment=1,Sektor=3\n"
                            "create ManagedElement=Harbour,Sector=3\n"
                            "create ManagedElement=Harbour,Equipment=2,Sector=3\n"
                            "create ManagedElement=Harbour,Equipment=1,Sector=1 azimuth=1\n"
                            "delete ManagedElement=Harbour,Equipment=1,Sector=9\n");
    EXPECT_THAT(result.err,
                AllOf(HasSubstr("Did you mean userLabel?"),
                      HasSubstr("there is no object ManagedElement=Harbour,Equipment=2; of class "
                                "Equipment under ManagedElement=Harbour: 1"),
                      HasSubstr("there is no class Sektor;"), HasSubstr("Did you mean Sector?"),
                      HasSubstr("objects of class Sector do not stand under ManagedElement"),
                      HasSubstr("OrvAlreadyExist (-3)\n  there is an object "
                                "'ManagedElement=Harbour,Equipment=1,Sector=1' already"),
                      HasSubstr("stdin:7: delete: deleteMo "
                                "ManagedElement=Harbour,Equipment=1,Sector=9: OrvNotExist (-2)")));
    EXPECT_EQ(result.out, "");
}

TEST_P(OrvhostWritesTest, Words_NotUnderstood_AreUsage) {
    const auto result = run("set ManagedElement=Harbour\nset ManagedElement=Harbour userLabel\n"
                            "set ManagedElement=Harbour 'location={latitude: 1}'\n"
                            "set ManagedElement=Harbour userLabel='x\n"
                            "create Harbour\ncreate\ndelete\ndelete a b\n"
                            "set ManagedElement=Harbour '{\"userLabel\": '\n");
    EXPECT_THAT(result.err,
                AllOf(StartsWith("stdin:1: set: ATTRIBUTE=VALUE is missing. Usage: set DN"),
                      HasSubstr("stdin:2: set: 'userLabel' is not NAME=VALUE"),
                      HasSubstr("stdin:3: set: '{latitude: 1}' is no JSON (near character 2)"),
                      HasSubstr("stdin:4: the line ends inside a quoted text"),
                      HasSubstr("stdin:5: create: 'Harbour' in Harbour is no step of a DN"),
                      HasSubstr("stdin:6: create: the DN is missing"),
                      HasSubstr("stdin:7: delete: the DN is missing"),
                      HasSubstr("stdin:8: delete: 'b' is one word too many"),
                      HasSubstr("stdin:9: set: '{\"userLabel\": ' is no JSON")));
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.status, 2);
}

TEST(OrvhostInterfaceTest, Parameters_OfVersion1WithAGap_AreUsage) {
    const auto result =
        runOnHarbour("interface 1\naction ManagedElement=Harbour restart delay=5\n");
    EXPECT_THAT(result.err, HasSubstr("reason cannot be left out before the others"));
}

TEST(OrvhostInterfaceTest, Version_UnknownOrShown_IsAnsweredWithAllVersions) {
    const auto result = runOnHarbour("interface\ninterface 2\ninterface 1\n");
    EXPECT_EQ(result.out, "version 3_1\nversion 1\n");
    EXPECT_THAT(result.err, HasSubstr("there is no interface version '2'; versions: 1, 3, 3_1"));
    EXPECT_EQ(runOnHarbour("interface\n", {"--interface", "2"}).status, 2);
}

TEST(OrvhostInterfaceTest, Error_OfASet_NamesTheOperationOfTheVersion) {
    const auto result = runOnHarbour("set ManagedElement=Harbour x=1\ninterface 3\n"
                                     "set ManagedElement=Harbour x=1\n");
    EXPECT_THAT(result.err, AllOf(HasSubstr("setMoAttributes ManagedElement=Harbour x: Orv"),
                                  HasSubstr("setMoAttribute ManagedElement=Harbour x: Orv")));
}

TEST(OrvhostInterfaceTest, Create_WithANamingAttributeOfItsOwn_IsRefusedByTheModel) {
    const auto result =
        runOnHarbour("create ManagedElement=Harbour,Equipment=1,Sector.userLabel=3\n");
    EXPECT_THAT(result.err, HasSubstr("objects of class 'Sector' are named by the attribute "
                                      "'sectorId', not 'userLabel'"));
}

}
}
