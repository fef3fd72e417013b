// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// One JSON document for each command, whatever its answer.

#include "Program.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <sstream>

namespace SystemTest {
namespace {

using nlohmann::json;

std::vector<json> documentsOf(const ProgramResult& result) {
    std::vector<json> documents;
    std::istringstream lines(result.out);
    std::string line;
    while (std::getline(lines, line)) {
        documents.push_back(json::parse(line));
    }
    return documents;
}

json documentOf(const std::string& command, int status = 0) {
    const auto result = runCommands({command}, {"--json"});
    EXPECT_EQ(result.status, status) << command;
    EXPECT_EQ(result.err, "") << command;
    const auto documents = documentsOf(result);
    EXPECT_EQ(documents.size(), 1u) << command;
    return documents.empty() ? json() : documents[0];
}

TEST(OrvhostJsonTest, EachCommand_Answered_IsOneDocument) {
    const std::vector<std::string> commands{"exists ManagedElement=east",
                                            "count ManagedElement=east",
                                            "get ManagedElement=east,Mast=a",
                                            "ls ManagedElement=east",
                                            "tree",
                                            "model",
                                            "model Mast",
                                            "model --associations",
                                            "components",
                                            "log",
                                            "log tail 5",
                                            "begin a",
                                            "use a",
                                            "transactions",
                                            "set ManagedElement=east label=x",
                                            "create ManagedElement=east,Mast=n",
                                            "delete ManagedElement=east,Mast=n",
                                            "validate",
                                            "commit",
                                            "begin",
                                            "abort",
                                            "interface 3",
                                            "expect : exists ManagedElement=east",
                                            "diff committed committed",
                                            "load network",
                                            "help",
                                            "quit"};
    const auto result = runCommands(commands, {"--json"});
    const auto documents = documentsOf(result);
    ASSERT_EQ(documents.size(), commands.size());
    for (std::size_t position = 0; position < commands.size(); ++position) {
        EXPECT_EQ(commands[position].find(documents[position]["command"]), 0u);
        EXPECT_FALSE(documents[position].contains("error"));
    }
}

TEST(OrvhostJsonTest, Get_AllKindsOfValues_KeepTheirTypes) {
    const json document = documentOf("get ManagedElement=east,Mast=a");
    EXPECT_EQ(document["attributes"],
              json::parse(R"({"mastId": "a", "height": 30, "active": true, "kind": "LATTICE",
                              "tilt": 2.5, "offset": -7, "colour": ["red", "white"],
                              "position": {"latitude": 59.3293,
                                           "nearest": "ManagedElement=east,Mast=b"},
                              "antennas": ["ManagedElement=east,Antenna=1",
                                           "ManagedElement=east,Antenna=2"]})"));
}

TEST(OrvhostJsonTest, Get_UnsetValues_AreNullOrEmpty) {
    const json attributes = documentOf("get ManagedElement=east,Mast=b")["attributes"];
    EXPECT_TRUE(attributes["kind"].is_null());
    EXPECT_EQ(attributes["colour"], json::array());
}

TEST(OrvhostJsonTest, Lists_OfChildrenAndCounts_TellClassAndName) {
    EXPECT_EQ(documentOf("ls ManagedElement=east Battery")["children"],
              json::parse(R"([{"dn": "ManagedElement=east,Battery=main", "class": "Battery",
                               "name": "main"}])"));
    EXPECT_EQ(documentOf("count ManagedElement=east")["counts"],
              json::parse(R"({"Mast": 2, "Antenna": 2, "Battery": 1})"));
    EXPECT_EQ(documentOf("tree ManagedElement=east,Mast=a --depth 1")["tree"],
              json::parse(R"({"dn": "ManagedElement=east,Mast=a", "children": [
                              {"dn": "ManagedElement=east,Mast=a,Lamp=top", "below": 0},
                              {"dn": "ManagedElement=east,Mast=a,Lamp=half way", "below": 0}]})"));
}

TEST(OrvhostJsonTest, Model_Class_TellsBoundsAndAssociations) {
    const json document = documentOf("model Antenna")["class"];
    EXPECT_EQ(document["namingAttribute"], "antennaId");
    EXPECT_EQ(document["attributes"][1]["name"], "mast");
    EXPECT_EQ(document["attributes"][1]["typeCode"], 11);
    EXPECT_EQ(document["attributes"][1]["referencedClass"], "Mast");
    EXPECT_EQ(document["associations"][0]["opposite"], "antennas");
    EXPECT_EQ(document["associations"][1]["opposite"], nullptr);
    EXPECT_EQ(document["associations"][1]["cardinality"], json({{"lower", 0}, {"upper", nullptr}}));
}

TEST(OrvhostJsonTest, Error_FromTheComponent_HasCodeNameAndText) {
    const json document = documentOf("get ManagedElement=east,Mast=z height", 1);
    EXPECT_EQ(document["command"], "get");
    EXPECT_EQ(document["error"]["code"], -2);
    EXPECT_EQ(document["error"]["name"], "OrvNotExist");
    EXPECT_EQ(document["error"]["operation"], "getMoAttribute");
    EXPECT_EQ(document["error"]["dn"], "ManagedElement=east,Mast=z");
    EXPECT_EQ(document["error"]["messages"].size(), 1u);
    EXPECT_NE(document["error"]["text"], "");
}

TEST(OrvhostJsonTest, Error_OfUsage_IsADocumentToo) {
    const json document = documentOf("gte", 2);
    EXPECT_EQ(document["command"], "gte");
    EXPECT_NE(document["error"]["text"].get<std::string>().find("Did you mean get?"),
              std::string::npos);
}

TEST(OrvhostJsonTest, Error_InAScript_TellsThePlace) {
    const auto result = runOrvhost(withSite({"--json"}), "exists ManagedElement=east\nget\n");
    const auto documents = documentsOf(result);
    ASSERT_EQ(documents.size(), 2u);
    EXPECT_EQ(documents[1]["error"]["place"], "stdin:2");
}

TEST(OrvhostJsonTest, LogTail_OfAJsonLog_IsMadeOfObjects) {
    const auto result = runCommands({"exists ManagedElement=east", "log tail 1"},
                                    {"--json", "--log-format", "json", "--log-level", "trace"});
    const auto documents = documentsOf(result);
    ASSERT_EQ(documents.size(), 2u);
    EXPECT_EQ(documents[1]["lines"][0]["levelName"], "trace");
}

}
}
