// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Program.h"
#include "Terminal.h"

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
        return runOrvhostOn(mDirectory, kModule, data, options);
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

TEST_F(OrvhostModelsTest, Feature_MayHaveBlanksAround) {
    EXPECT_THAT(run({"--feature", " m: tall, wide ", "-c", "model Mast"}).out,
                testing::AllOf(HasSubstr("height"), HasSubstr("width")));
    EXPECT_THAT(run({"--feature", "m:broad", "-c", "model"}).err,
                HasSubstr("the module \"m\" has no feature \"broad\"; it has tall, wide"));
}

TEST_F(OrvhostModelsTest, Choices_AreShownWithTheClass) {
    EXPECT_THAT(run({"-c", "model Mast"}).out, HasSubstr("\nchoices\n"
                                                         "  address, at most one of these\n"
                                                         "    name: name\n"
                                                         "    number: number\n"));
    EXPECT_THAT(run({"--json", "-c", "model Mast"}).out,
                HasSubstr(R"("choices":[{"name":"address","mandatory":false,"around":[],"cases":[)"
                          R"({"name":"name","attributes":["name"],"required":[]})"));
}

TEST_F(OrvhostModelsTest, KeyOfTheRoot_IsItsIdentityByBothNames) {
    const std::string module = mDirectory.file(
        "root.yang", "module root { namespace 'urn:r'; prefix r; list ManagedElement {"
                     " key id; leaf id { type string; } } }");
    const std::string data =
        mDirectory.file("root.json", R"({"root:ManagedElement": [{"id": "1"}]})");
    for (const char* version : {"1", "3", "3_1"}) {
        const ProgramResult result =
            runOrvhost({"-m", module, "-d", data, "--me-id", "H", "--interface", version, "-c",
                        "get ManagedElement=H id", "-c", "get ManagedElement=H managedElementId"});
        EXPECT_EQ(result.out, "H\nH\n") << version;
    }
}

TEST_F(OrvhostModelsTest, IdentityThatTheKeyOfTheRootForbids_IsRefused) {
    const std::string module = mDirectory.file(
        "root.yang", "module root { namespace 'urn:r'; prefix r;\nlist ManagedElement {"
                     " key id; leaf id { type uint8 { range 1..9; } } } }");
    const ProgramResult good =
        runOrvhost({"-m", module, "--me-id", "7", "-c", "create ManagedElement=1", "-c",
                    "get ManagedElement=7 id"});
    EXPECT_THAT(good.out, HasSubstr("\n7\n")) << good.err;
    const ProgramResult bad = runOrvhost({"-m", module, "--me-id", "north", "-c", "tree"});
    EXPECT_EQ(bad.status, kLoad);
    EXPECT_THAT(bad.err, HasSubstr("root.yang:2) does not permit the identity 'north': "));
    EXPECT_THAT(bad.err, HasSubstr("orvhost: --me-id: the key of ManagedElement ("));
}

TEST_F(OrvhostModelsTest, References_ToObjectsThatNoModelKnows_AreSavedAndLoad) {
    const std::string module = mDirectory.file(
        "root.yang",
        "module root { namespace 'urn:r'; prefix r; import orv-associations { prefix o; }"
        " list ManagedElement { key id; leaf id { type string; }"
        " leaf any { type o:reference; } } }");
    const std::string file = (mDirectory.path() / "saved.json").string();
    const ProgramResult saved =
        runOrvhost({"-m", module, "--me-id", "H", "-c",
                    "create ManagedElement=1 any=SubNetwork=1,Foo=2", "-c", "save " + file});
    EXPECT_EQ(saved.status, 0) << saved.err;
    EXPECT_EQ(runOrvhost({"-m", module, "-d", file, "-c", "get ManagedElement=1 any"}).out,
              "SubNetwork=1,Foo=2\n");
}

TEST_F(OrvhostModelsTest, KeysAreNotWritable_InTheJsonOfAClass) {
    const std::string text = run({"--json", "-c", "model Mast"}).out;
    EXPECT_THAT(text, HasSubstr(R"("type":"string","naming":true,"writable":false)"));
    EXPECT_THAT(text, HasSubstr(R"("type":"uint8","naming":false,"writable":true)"));
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

class OrvhostClassNamesTest : public testing::Test {
protected:
    ProgramResult run(const std::vector<std::string>& commands) const {
        std::vector<std::string> options = this->options();
        for (const std::string& command : commands) {
            options.insert(options.end(), {"-c", command});
        }
        return runOrvhost(options);
    }

    /// Two modules that have a list of the same name in one class, with references between
    /// them.
    std::vector<std::string> options() const {
        return {"-m",
                mDirectory.file("radio.yang", R"(module radio {
  namespace "urn:radio"; prefix r;
  import orv-associations { prefix orv; }
  list ManagedElement {
    key managedElementId;
    leaf managedElementId { type string; }
    list Cell {
      key id;
      leaf id { type string; }
      leaf-list sliceRef {
        type orv:reference;
        orv:bidirectional "core:Cell.radioRef 0..2";
      }
    }
  }
})"),
                "-m",
                mDirectory.file("core.yang", R"(module core {
  namespace "urn:core"; prefix c;
  import radio { prefix r; }
  import orv-associations { prefix orv; }
  augment /r:ManagedElement {
    list Cell {
      key name;
      leaf name { type string; }
      leaf size { type uint8; }
      leaf radioRef { type orv:reference; orv:bidirectional "radio:Cell.sliceRef 0..1"; }
    }
  }
})"),
                "-d",
                mDirectory.file("all.json", R"({"radio:ManagedElement": [{
  "managedElementId": "1",
  "Cell": [{"id": "a", "sliceRef": ["ManagedElement=1,core:Cell=a"]}],
  "core:Cell": [{"name": "a", "size": 3, "radioRef": "ManagedElement=1,radio:Cell=a"}]
}]})"),
                "--me-id",
                "east"};
    }

    const TemporaryDirectory mDirectory;
};

TEST_F(OrvhostClassNamesTest, Dns_NameTheModuleOfAClass) {
    const ProgramResult result =
        run({"get ManagedElement=east,core:Cell=a", "tree ManagedElement=east",
             "ls ManagedElement=east radio:Cell", "count ManagedElement=east"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("core:CellId  a\n"));
    EXPECT_THAT(result.out, HasSubstr("ManagedElement=east,radio:Cell=a\n"));
    EXPECT_THAT(result.out, HasSubstr("── core:Cell=a"));
    EXPECT_THAT(result.out, HasSubstr("radio:Cell  1\n"));
}

TEST_F(OrvhostClassNamesTest, NewObjects_GetBackPointersWithPlainSteps) {
    const ProgramResult result =
        run({"begin", "create ManagedElement=east,radio:Cell=b",
             "create ManagedElement=east,core:Cell=b radioRef=ManagedElement=east,radio:Cell=b",
             "validate", "commit", "get ManagedElement=east,radio:Cell=b sliceRef",
             "delete ManagedElement=east,core:Cell=b",
             "get ManagedElement=east,radio:Cell=b sliceRef"});
    EXPECT_EQ(result.status, 0) << result.out << result.err;
    EXPECT_THAT(result.out, HasSubstr("\nManagedElement=east,core:Cell=b\n"));
    EXPECT_THAT(result.out, testing::Not(HasSubstr("Id=")));
}

TEST_F(OrvhostClassNamesTest, BareName_IsAnsweredWithTheClassesThatHaveIt) {
    for (const std::string command :
         {"get ManagedElement=east,Cell=a", "ls ManagedElement=east Cell",
          "create ManagedElement=east,Cell=c", "delete ManagedElement=east,Cell=a",
          "set ManagedElement=east,Cell=a size=3", "model Cell", "graph --classes Cell"}) {
        const ProgramResult result = run({command});
        EXPECT_NE(result.status, 0) << command;
        EXPECT_THAT(result.out + result.err,
                    HasSubstr("there is no class Cell, but radio:Cell, core:Cell"))
            << command;
    }
}

TEST_F(OrvhostClassNamesTest, Tab_CompletesTheNames) {
    std::vector<std::string> arguments = options();
    arguments.insert(arguments.end(), {"--history", (mDirectory.path() / "history").string()});
    Terminal terminal(arguments);
    ASSERT_TRUE(terminal.waitFor("orvhost> ")) << terminal.seen();
    terminal.type("get ManagedElement=east,co\t");
    ASSERT_TRUE(terminal.waitFor("re:Cell=")) << terminal.seen();
    terminal.type("\t");
    ASSERT_TRUE(terminal.waitFor("a")) << terminal.seen();
    terminal.type(" core:\t");
    ASSERT_TRUE(terminal.waitFor("CellId")) << terminal.seen();
    terminal.type("\r");
    EXPECT_TRUE(terminal.waitFor("\na\r\n")) << terminal.seen();
    ASSERT_TRUE(terminal.waitFor("orvhost> "));
    terminal.type("quit\r");
    EXPECT_EQ(terminal.finish(), 0);
}

TEST_F(OrvhostClassNamesTest, Graphs_ShowTheNames) {
    const ProgramResult result = run({"graph --classes --dot", "graph ManagedElement=east --dot"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("<B>core:Cell</B>"));
    EXPECT_THAT(result.out, HasSubstr("core:Cell=a"));
}

}

}
