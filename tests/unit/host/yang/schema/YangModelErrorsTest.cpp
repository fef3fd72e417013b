// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "YangTestSupport.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace OrvHost {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

std::string errorOf(const std::vector<std::string>& modules) {
    return modelErrorOf([&modules] {
        YangModelReader reader;
        reader.searchIn(testData("broken-models"));
        for (const std::string& module : modules) {
            reader.load(module);
        }
        reader.read();
    });
}

TEST(YangModelErrors, MalformedModule_IsReportedWithFileAndLine) {
    EXPECT_THAT(errorOf({"malformed"}), HasSubstr("malformed.yang:10: Invalid keyword"));
}

TEST(YangModelErrors, MalformedImport_IsReportedWithTheImportsFile) {
    EXPECT_THAT(errorOf({"imports-malformed"}),
                AllOf(HasSubstr("/malformed.yang:10: "), Not(HasSubstr("imports-malformed"))));
}

TEST(YangModelErrors, MissingImport_TellsTheImportAndWhereItWasLookedFor) {
    const std::string error = errorOf({"missing-import"});
    EXPECT_THAT(error, HasSubstr("missing-import.yang:7: module \"nowhere\" was not found; looked "
                                 "for nowhere.yang in "));
    EXPECT_THAT(error, HasSubstr("broken-models"));
}

TEST(YangModelErrors, StatementsThatNameWhatIsNotThere_AreReportedWithTheirLines) {
    const auto errorAt = [](const std::string& body) {
        return modelErrorOf(
            [&] { modelOfBody("list A { key id; leaf id { type string; }\n" + body); });
    };
    EXPECT_THAT(errorAt("uses none; }"),
                AllOf(testing::ContainsRegex("m.yang:[0-9]+: Grouping \"none\""),
                      HasSubstr("a grouping of this module or, with its prefix")));
    EXPECT_THAT(errorAt("}\ndeviation /m:A/m:none { deviate not-supported; }"),
                AllOf(testing::ContainsRegex("m.yang:[0-9]+: Deviation"),
                      HasSubstr("the node must exist there")));
    EXPECT_THAT(errorAt("}\naugment /m:B { leaf x { type string; } }"),
                testing::ContainsRegex("m.yang:[0-9]+: Augment target node"));
    EXPECT_THAT(errorAt("leaf x { type strin; } }"), HasSubstr("a built-in type, a typedef of"));
    EXPECT_THAT(errorAt("leaf x { type uint8 { range 1..300; } } }"),
                HasSubstr("can only be narrower than that of its type"));
}

TEST(YangModelErrors, SeveralMissingImports_AreReportedTogether) {
    const TemporaryDirectory directory;
    directory.write("m.yang", "module m { namespace 'urn:m'; prefix m;\n"
                              "  import first { prefix f; }\n"
                              "  import ietf-yang-types { prefix y; }\n"
                              "  import n { prefix n; } }");
    directory.write("n.yang", "module n { namespace 'urn:n'; prefix n;\n\n"
                              "  import second { prefix s; } include third; }");
    const std::string error = modelErrorOf(
        [&directory] { YangModelReader().searchIn(directory.path()).load("m").read(); });
    EXPECT_THAT(error,
                HasSubstr("m.yang:2: module \"first\" was not found; looked for first.yang"));
    EXPECT_THAT(error, HasSubstr("n.yang:3: module \"second\" was not found; looked for"));
    EXPECT_THAT(error, HasSubstr("n.yang:3: module \"third\" was not found; looked for"));
    EXPECT_EQ(std::count(error.begin(), error.end(), '\n'), 2) << error;
}

TEST(YangModelErrors, MissingModule_TellsWhereItWasLookedFor) {
    EXPECT_THAT(errorOf({"absent"}), HasSubstr("module \"absent\" was not found; looked for "));
    EXPECT_EQ(modelErrorOf([] { YangModelReader().load("absent").read(); }),
              "module \"absent\" was not found; there is no search path");
}

TEST(YangModelErrors, MissingFile_IsReported) {
    EXPECT_EQ(modelErrorOf([] { YangModelReader().load("./no-such.yang").read(); }),
              "./no-such.yang: cannot be read: there is no such file; the file of a YANG module "
              "was expected");
}

TEST(YangModelErrors, MissingDirectory_IsReported) {
    const std::string error = modelErrorOf([] {
        YangModelReader()
            .searchIn("no/such/directory")
            .searchIn(testData("models"))
            .load("site")
            .read();
    });
    EXPECT_EQ(error, "no/such/directory: is not a directory to search for modules");
}

TEST(YangModelErrors, NoDirectoryIsThere_IsReportedBeforeTheModule) {
    EXPECT_EQ(modelErrorOf([] { YangModelReader().searchIn("no/such").load("absent").read(); }),
              "no/such: is not a directory to search for modules\n"
              "module \"absent\" was not found; no directory of the search path is there");
}

TEST(YangModelErrors, NoModule_IsReported) {
    EXPECT_EQ(modelErrorOf([] { YangModelReader().read(); }), "no module to load was named");
}

TEST(YangModelErrors, NoYangAtAll_IsReported) {
    EXPECT_THAT(errorOf({testData("broken-models/no-module.yang").string()}),
                HasSubstr("no-module.yang:1: is not a YANG module"));
}

TEST(YangModelErrors, Submodule_IsRefusedWithTheReason) {
    EXPECT_THAT(errorOf({testData("broken-models/part.yang").string()}),
                HasSubstr("part.yang:4: \"part\" is a submodule; load the module"));
    EXPECT_THAT(errorOf({"part"}), HasSubstr("part.yang: "));
}

TEST(YangModelErrors, SubmoduleOfASubmodule_NotIncludedByTheModule_IsRefusedInYang1_1) {
    const TemporaryDirectory directory;
    directory.write("whole.yang", "module whole { yang-version 1.1; namespace 'urn:w'; prefix w;"
                                  " include outer; }");
    directory.write("outer.yang", "submodule outer { yang-version 1.1;\n"
                                  " belongs-to whole { prefix w; } include inner; }");
    directory.write("inner.yang", "submodule inner { yang-version 1.1;"
                                  " belongs-to whole { prefix w; } }");
    EXPECT_THAT(modelErrorOf([&directory] {
                    YangModelReader().searchIn(directory.path()).load("whole").read();
                }),
                AllOf(HasSubstr("outer.yang:2: "), HasSubstr("\"inner\"")));
}

TEST(YangModelErrors, MissingSubmoduleOfASubmodule_IsReportedWithTheFileThatIncludesIt) {
    const TemporaryDirectory directory;
    directory.write("whole.yang", "module whole { namespace 'urn:w'; prefix w; include outer; }");
    directory.write("outer.yang", "submodule outer {\n"
                                  " belongs-to whole { prefix w; }\n include inner; }");
    EXPECT_THAT(modelErrorOf([&directory] {
                    YangModelReader().searchIn(directory.path()).load("whole").read();
                }),
                AllOf(HasSubstr("outer.yang:3: "), HasSubstr("\"inner\" was not found")));
}

TEST(YangModelErrors, ModuleOfAnotherName_IsReported) {
    EXPECT_THAT(errorOf({"another-name"}),
                AllOf(HasSubstr("another-name.yang"), HasSubstr("quite-another-name")));
}

TEST(YangModelErrors, UnknownType_IsReportedWithLineAndPath) {
    EXPECT_THAT(errorOf({"unknown-type"}),
                AllOf(HasSubstr("unknown-type.yang:10: "), HasSubstr("\"number\" not found"),
                      HasSubstr("/unknown-type:Site/size")));
}

TEST(YangModelErrors, UnknownAugmentTarget_IsReportedWithLine) {
    EXPECT_THAT(errorOf({"unknown-augment"}), HasSubstr("unknown-augment.yang:9: "));
}

TEST(YangModelErrors, AugmentWithAnUnknownPrefix_IsReportedWithItsPlace) {
    EXPECT_THAT(modelErrorOf([] {
                    modelOf("module m { yang-version 1.1; namespace 'urn:m'; prefix m;\n"
                            " augment '/nothing:here' { leaf x { type string; } } }");
                }),
                testing::MatchesRegex("m.yang:2: .*prefix \"nothing\" not defined.*"));
}

TEST(YangModelErrors, SeveralModules_TellAllTheirErrors) {
    const std::string error =
        errorOf({"malformed", "plain", "missing-import", "imports-malformed"});
    EXPECT_THAT(error,
                AllOf(HasSubstr("malformed.yang:10: "), HasSubstr("missing-import.yang:7: ")));
    EXPECT_EQ(std::count(error.begin(), error.end(), '\n'), 1) << error; // each once
}

TEST(YangModelErrors, Associations_TellEachMistakeWithItsLine) {
    const std::string error = errorOf({"associations"});
    const std::pair<int, const char*> expected[] = {
        {14, "target class \"Nothing\" does not exist"},
        {15, "Mast.missing as its opposite, but class Mast has no attribute missing"},
        {16, "Mast.site as its opposite, but that attribute is not declared"},
        {17, "Mast.elsewhere as its opposite, but that one names Site.somewhere"},
        {18, "bounds such as 2, 0..4 or 1..unbounded"},
        {19, "\"often\" is one word too many"},
        {20, "CLASS.ATTRIBUTE was expected instead of \"Mast\""},
        {21, "/associations:Site/number is to be a reference, which is a text; its type is uint8"},
        {22, "class \"Mast\" is not of the module \"elsewhere\" but of \"associations\""},
        {24, "a reference inside a struct or a parameter cannot be kept consistent with "
             "another one; only an attribute of a class can"},
        {25, "in a struct or a parameter only the class is given; mandatory, min-elements and "
             "max-elements say how many there may be"},
        {32, "Site.somewhere as its opposite, but class Site has no attribute somewhere"},
        {34, "bidirectional \"Site.first <- Mast.second\": "},
        {35, "class Site has no attribute absent"}};
    for (const auto& [line, text] : expected) {
        const std::string place = "associations.yang:" + std::to_string(line) + ": ";
        const std::size_t at = error.find(place);
        ASSERT_NE(at, std::string::npos) << place << "\n" << error;
        const std::string shown = error.substr(at, error.find('\n', at) - at);
        EXPECT_THAT(shown, HasSubstr(text));
    }
}

TEST(YangModelErrors, MisplacedStatements_DoNotVanish) {
    const std::string error = errorOf({"misplaced"});
    EXPECT_THAT(error, HasSubstr("misplaced.yang:12: \"orv:unidirectional\" has no effect in "
                                 "\"typedef\""));
    EXPECT_THAT(error, HasSubstr("misplaced.yang:16: \"orv:unidirectional\" has no effect in "
                                 "\"list\""));
    EXPECT_THAT(error, HasSubstr("misplaced.yang:18: \"orv:unidirectional\" has no effect in "
                                 "\"type\""));
    EXPECT_THAT(error, HasSubstr("misplaced.yang:19: \"orv:struct\" has no effect in "
                                 "\"container\"; put it into a list"));
}

TEST(YangModelErrors, StatementInDeviate_DoesNotVanish) {
    const std::string error = modelErrorOf([] {
        modelOfBody("list A { key id; leaf id { type string; } leaf b { type string; } }\n"
                    "deviation \"/m:A/m:b\" { deviate add { orv:unidirectional A; } }");
    });
    EXPECT_EQ(error, "m.yang:3: \"orv:unidirectional\" has no effect in \"deviate\"; put it into a "
                     "leaf or leaf-list, or into the module");
}

TEST(YangModelErrors, UnknownStatement_IsReportedWithLine) {
    EXPECT_THAT(errorOf({"unknown-statement"}),
                AllOf(HasSubstr("unknown-statement.yang:12: "), HasSubstr("orv:birectional")));
}

TEST(YangModelErrors, AssociationOfAnUnloadedModule_IsReported) {
    const std::string error = modelErrorOf(
        [] { YangModelReader().searchIn(testData("models")).load("foreign-associations").read(); });
    EXPECT_THAT(error, HasSubstr("foreign-associations.yang:14: Association end Cell.carrierRef: "
                                 "the class Cell does not exist"));
}

TEST(YangModelErrors, Reader_AfterAFailure_CanBeUsedAgain) {
    EXPECT_NE(errorOf({"malformed"}), "");
    EXPECT_EQ(errorOf({"plain"}), "");
}

}
}
