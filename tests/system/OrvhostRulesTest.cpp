// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Program.h"
#include "Terminal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sstream>

// Rules of YANG modules that the model does not represent: conditions always, all others with
// --yang-rules.

namespace SystemTest {

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr int kLoad = 3;

constexpr const char* kModule = R"yang(module m {
  yang-version 1.1;
  namespace "urn:m";
  prefix m;
  import orv-associations { prefix orv; }
  list Site {
    key id;
    leaf id { type string; }
    leaf limit { type uint8; default 30; }
    leaf kind { type string; }
    leaf mastRef {
      when "../kind = 'tower'";
      type orv:reference;
      mandatory true;
      orv:unidirectional "Mast 1..1";
    }
    choice owner {
      leaf ownerRef { type orv:reference; mandatory true; orv:unidirectional "Mast 1..1"; }
      leaf ownerName { type string; }
    }
    list Mast {
      key id;
      unique "slot";
      leaf id { type string; }
      leaf slot { type uint8; }
      leaf height {
        type uint8;
        must ". <= ../../limit" { error-message "higher than the site permits"; error-app-tag "high"; }
      }
      leaf neighbour { type leafref { path "../../Mast/id"; } }
    }
  }
})yang";

class OrvhostRulesTest : public testing::Test {
protected:
    ProgramResult run(const std::vector<std::string>& options, const std::string& data = "{}") {
        return runOrvhostOn(mDirectory, kModule, data, options);
    }

    static std::vector<std::string> commands(const std::vector<std::string>& lines) {
        std::vector<std::string> options;
        for (const std::string& line : lines) {
            options.insert(options.end(), {"-c", line});
        }
        return options;
    }

    static std::vector<std::string> with(std::vector<std::string> options,
                                         const std::vector<std::string>& more) {
        options.insert(options.end(), more.begin(), more.end());
        return options;
    }

    const TemporaryDirectory mDirectory;
};

TEST_F(OrvhostRulesTest, Condition_IsJudgedAtValidateAndNotAtASet) {
    const ProgramResult demanded = run(commands({"begin", "create Site=1 kind=tower", "validate"}));
    EXPECT_EQ(demanded.status, 1);
    EXPECT_THAT(
        demanded.out + demanded.err,
        AllOf(HasSubstr("Site=1: attribute 'mastRef': it is mandatory and has no value; the "
                        "condition \"../kind = 'tower'\" is true"),
              HasSubstr("attribute  mastRef")));
    const ProgramResult forbidden = run(commands(
        {"begin", "create Site=1 mastRef=Site=1,Mast=1", "create Site=1,Mast=1", "validate"}));
    EXPECT_EQ(forbidden.status, 1);
    EXPECT_THAT(forbidden.out + forbidden.err,
                HasSubstr("Site=1: attribute 'mastRef': it has a value although the condition"));
    const ProgramResult both =
        run(commands({"begin", "create Site=1 mastRef=Site=1,Mast=1", "create Site=1,Mast=1",
                      "set Site=1 kind=tower", "validate", "commit", "set Site=1 kind=tower"}));
    EXPECT_EQ(both.status, 0) << both.out << both.err;
    EXPECT_THAT(both.out, HasSubstr("\nvalid\n"));
}

// The component counts references, and must not demand that of the case that is left.
TEST_F(OrvhostRulesTest, CaseWithAMandatoryReference_CanBeLeft) {
    const ProgramResult result =
        run(commands({"begin", "create Site=1 ownerRef=Site=1,Mast=1", "create Site=1,Mast=1",
                      "validate", "set Site=1 ownerRef=null ownerName=x", "validate", "commit"}));
    EXPECT_EQ(result.status, 0) << result.out << result.err;
}

TEST_F(OrvhostRulesTest, Condition_IsJudgedInData) {
    const ProgramResult result =
        run({"-c", "ls"}, R"({"m:Site": [{"id": "1", "mastRef": "Site=1,Mast=1",
                                           "Mast": [{"id": "1"}]}]})");
    EXPECT_EQ(result.status, kLoad);
    EXPECT_THAT(result.err, HasSubstr("m.json:1: Site=1: attribute 'mastRef': it has a value "
                                      "although the condition \"../kind = 'tower'\" is false"));
}

const std::vector<std::string> kWrong = {
    "begin", "create Site=1", "create Site=1,Mast=1 slot=1 height=31",
    "create Site=1,Mast=2 slot=1 height=32 neighbour=3", "validate"};

TEST_F(OrvhostRulesTest, WithoutTheOption_OtherRulesAreNotedOnly) {
    const ProgramResult result = run(commands(kWrong));
    EXPECT_EQ(result.status, 0) << result.out << result.err;
    EXPECT_THAT(result.err, HasSubstr("the model leaves out 3 statements"));
}

TEST_F(OrvhostRulesTest, Violations_ComeAllAtOnceWithTheStatementsMessage) {
    const ProgramResult result = run(with({"--yang-rules"}, commands(kWrong)));
    EXPECT_EQ(result.status, 1);
    const std::string said = result.out + result.err;
    EXPECT_THAT(said, Not(HasSubstr("note: the model leaves out")));
    EXPECT_THAT(said, HasSubstr("Site=1,Mast=1: attribute 'height': higher than the site permits "
                                "(error-app-tag high)"));
    EXPECT_THAT(said, HasSubstr("Site=1,Mast=2: attribute 'height': higher than the site permits"));
    EXPECT_THAT(said, HasSubstr("Site=1,Mast=2: its 'slot' must differ from that of Site=1,Mast=1 "
                                "(error-app-tag data-not-unique)"));
    EXPECT_THAT(said, HasSubstr("Site=1,Mast=2: attribute 'neighbour': \"3\" does not exist at "
                                "../../Mast/id (error-app-tag instance-required)"));
}

TEST_F(OrvhostRulesTest, Cost_IsShownIfAllRulesAreWanted) {
    const ProgramResult result =
        run(with({"--yang-rules"}, commands({"begin", "create Site=1 kind=hut", "validate"})));
    EXPECT_THAT(result.out + result.err, HasSubstr("rules of the modules: "));
}

TEST_F(OrvhostRulesTest, Violations_InJson) {
    const ProgramResult result = run(with({"--yang-rules", "--json"}, commands(kWrong)));
    EXPECT_EQ(result.status, 1);
    std::istringstream lines(result.out);
    std::string last;
    for (std::string line; std::getline(lines, line);) {
        last = line;
    }
    const auto violations = nlohmann::json::parse(last).at("error").at("violations");
    ASSERT_EQ(violations.size(), 4U) << last;
    EXPECT_EQ(violations[0].at("object"), "Site=1,Mast=1");
    EXPECT_EQ(violations[0].at("attribute"), "height");
    EXPECT_EQ(violations[0].at("found"), 31);
    EXPECT_THAT(violations[0].at("message").get<std::string>(), HasSubstr("higher than the site"));
    EXPECT_FALSE(violations[0].contains("allowed"));
}

TEST_F(OrvhostRulesTest, ChangeElsewhere_IsJudgedWhereItCounts) {
    const std::string data = R"({"m:Site": [{"id": "1", "Mast": [
        {"id": "1", "height": 20}, {"id": "2", "neighbour": "1"}]}]})";
    const ProgramResult limit = run({"--yang-rules", "-c", "set Site=1 limit=10"}, data);
    EXPECT_EQ(limit.status, 1);
    EXPECT_THAT(limit.err + limit.out, HasSubstr("Site=1,Mast=1: attribute 'height': higher"));
    const ProgramResult target = run({"--yang-rules", "-c", "delete Site=1,Mast=1"}, data);
    EXPECT_EQ(target.status, 1);
    EXPECT_THAT(target.err + target.out, HasSubstr("Site=1,Mast=2: attribute 'neighbour'"));
    EXPECT_EQ(run({"--yang-rules", "-c", "delete Site=1"}, data).status, 0);
}

TEST_F(OrvhostRulesTest, Data_IsCheckedWithTheOption) {
    const std::string data = R"({"m:Site": [{"id": "1", "Mast": [{"id": "1", "height": 40}]}]})";
    EXPECT_EQ(run({"-c", "ls"}, data).status, 0);
    const ProgramResult result = run({"--yang-rules", "-c", "ls"}, data);
    EXPECT_EQ(result.status, kLoad);
    EXPECT_THAT(result.err, HasSubstr("m.json:1: Site=1,Mast=1: attribute 'height': higher"));
}

}

}
