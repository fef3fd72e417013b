// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// How orvhost loads models and data that were not written for it.

namespace SystemTest {

namespace {

using testing::HasSubstr;

constexpr int kLoad = 3;

constexpr const char* kModule = R"(module m {
  namespace "urn:m";
  prefix m;
  feature tall;
  feature wide;
  leaf motto { type string; }
  list Mast {
    key id;
    leaf id { type string; }
    leaf state { config false; type string; mandatory true; }
    leaf height { if-feature tall; type uint8; must ". > 3"; }
    leaf width { if-feature wide; type uint8; }
    choice address {
      leaf name { type string; }
      leaf number { type uint8; }
    }
  }
})";

class OrvhostModelsTest : public testing::Test {
protected:
    ProgramResult run(const std::vector<std::string>& options, const std::string& data = "{}") {
        std::vector<std::string> all = {"-m", mDirectory.file("m.yang", kModule), "-d",
                                        mDirectory.file("m.json", data)};
        all.insert(all.end(), options.begin(), options.end());
        return runOrvhost(all);
    }

    const TemporaryDirectory mDirectory;
};

TEST_F(OrvhostModelsTest, Notes_AreCountedAtALoadAndListedOnRequest) {
    const ProgramResult result = run({"-c", "model --notes"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "orvhost: note: the model leaves out 2 statements of the modules; 'model "
                          "--notes' lists them\n");
    EXPECT_THAT(result.out, HasSubstr("m.yang:6: what stands outside of any class"));
    EXPECT_THAT(result.out, HasSubstr("m.yang:11: `must` statements are not evaluated: at "
                                      "/m:Mast/height\n"));
    EXPECT_THAT(run({"--json", "-c", "model --notes"}).out, HasSubstr("\"line\":11"));
}

TEST_F(OrvhostModelsTest, Notes_WithoutAny_AreNotMentioned) {
    const ProgramResult result = runOrvhost({"-I", "models", "-m", "power", "-c", "model --notes"});
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, "The model leaves nothing of the modules out.\n");
}

TEST_F(OrvhostModelsTest, Strict_RefusesAModelWithNotes) {
    const ProgramResult result = run({"--strict", "-c", "model"});
    EXPECT_EQ(result.status, kLoad);
    EXPECT_THAT(result.err, HasSubstr("--strict"));
    EXPECT_THAT(result.err, HasSubstr("m.yang:11: `must`"));
}

TEST_F(OrvhostModelsTest, Features_AreSelected) {
    EXPECT_THAT(run({"-c", "model Mast"}).out, HasSubstr("width"));
    const ProgramResult tall = run({"--feature", "m:tall", "-c", "model Mast"});
    EXPECT_THAT(tall.out, HasSubstr("height"));
    EXPECT_THAT(tall.out, testing::Not(HasSubstr("width")));
    EXPECT_THAT(run({"--no-features", "-c", "model Mast"}).out,
                testing::Not(testing::AnyOf(HasSubstr("width"), HasSubstr("height"))));
    EXPECT_THAT(run({"--feature", "tall", "-c", "model"}).err,
                HasSubstr("MODULE:NAME,... was expected"));
}

TEST_F(OrvhostModelsTest, State_IsNotAskedOfAClient) {
    const ProgramResult result =
        run({"-c", "begin", "-c", "create Mast=1 name=x", "-c", "validate", "-c", "commit"});
    EXPECT_EQ(result.status, 0) << result.out << result.err;
}

TEST_F(OrvhostModelsTest, TwoCases_AreRefusedAtValidate_AndInData) {
    const ProgramResult result =
        run({"-c", "begin", "-c", "create Mast=1 name=x number=7", "-c", "validate"});
    EXPECT_NE(result.status, 0);
    EXPECT_THAT(result.out + result.err, HasSubstr("two cases of the choice 'address'"));
    const ProgramResult data = run({"-c", "ls"}, R"({"m:Mast": [{"id": "1", "name": "x",
                                                                  "number": 7}]})");
    EXPECT_EQ(data.status, kLoad);
    EXPECT_THAT(data.err, HasSubstr("Mast=1: 'name' and 'number' are of two cases"));
}

TEST_F(OrvhostModelsTest, DataWithoutPlace_IsSkippedWithANote) {
    const ProgramResult result =
        run({"-c", "exists Mast=1"}, R"({"m:motto": "x", "m:Mast": [{"id": "1"}]})");
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.err, HasSubstr("note: "));
    EXPECT_THAT(result.err, HasSubstr("/m:motto has no place in the model and is skipped"));
}

TEST_F(OrvhostModelsTest, UnknownData_IsRefusedOrSkipped) {
    const std::string data = R"({"m:Mast": [{"id": "1", "lable": "x"}]})";
    const ProgramResult refused = run({"-c", "exists Mast=1"}, data);
    EXPECT_EQ(refused.status, kLoad);
    EXPECT_THAT(refused.err, HasSubstr("see --skip-unknown"));
    const ProgramResult skipped = run({"--skip-unknown", "-c", "exists Mast=1"}, data);
    EXPECT_EQ(skipped.status, 0);
    EXPECT_THAT(skipped.err, HasSubstr("no loaded module knows /m:Mast/lable: it is skipped"));
}

}

}
