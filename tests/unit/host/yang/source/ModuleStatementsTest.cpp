// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "yang/source/ModuleStatements.h"

#include <gtest/gtest.h>

namespace OrvHost {
namespace {

constexpr const char* kModule = R"(// a comment { with braces }
module sample {
  prefix s;
  import other { prefix o; }
  /* list Hidden {
     } */
  list Site {
    key id;
    leaf id { type string; }
    leaf "label" {
      o:note "two
              lines";
      description "a \"quoted\" word; and { more }" + ' joined';
    }
  }
  grouping g { leaf id { type string; } }
}
)";

TEST(ModuleStatements, LineOf_NestedStatement_IsFoundByItsPath) {
    const ModuleStatements text(kModule);
    EXPECT_EQ(text.lineOf("list Site"), 7);
    EXPECT_EQ(text.lineOf("list Site/leaf id"), 9);
    EXPECT_EQ(text.lineOf("grouping g/leaf id"), 16);
    EXPECT_EQ(text.lineOf("leaf id"), 0);
}

TEST(ModuleStatements, LineOf_QuotedArgument_CountsAsItsText) {
    EXPECT_EQ(ModuleStatements(kModule).lineOf("list Site/leaf label"), 10);
}

TEST(ModuleStatements, LineOf_ExtensionOverTwoLines_IsFoundWithoutPrefixAndBlanks) {
    EXPECT_EQ(ModuleStatements(kModule).lineOf("list Site/leaf label/note two lines"), 11);
}

TEST(ModuleStatements, LineOf_Comment_IsNoStatement) {
    EXPECT_EQ(ModuleStatements(kModule).lineOf("list Hidden"), 0);
}

TEST(ModuleStatements, Statements_QuotesAndPluses_MakeOneArgument) {
    const ModuleStatements text(kModule);
    std::string description;
    for (const ModuleStatements::Statement& statement : text.statements()) {
        description = statement.keyword == "description" ? statement.argument : description;
    }
    EXPECT_EQ(description, "a \"quoted\" word; and { more } joined");
}

TEST(ModuleStatements, PrefixOf_ImportedModule_IsTheImports) {
    const ModuleStatements text(kModule);
    EXPECT_EQ(text.prefixOf("other"), "o");
    EXPECT_EQ(text.prefixOf("sample"), "");
}

TEST(ModuleStatements, Top_BrokenTexts_AreTakenAsTheyAre) {
    EXPECT_EQ(ModuleStatements("").top().keyword, "");
    EXPECT_EQ(ModuleStatements("}}}").top().keyword, "");
    EXPECT_EQ(ModuleStatements("module x { list \"y").top().argument, "x");
    EXPECT_EQ(ModuleStatements("/* never ends").top().keyword, "");
    EXPECT_EQ(ModuleStatements("{ {{ a").statements().size(), 1U);
}

}
}
