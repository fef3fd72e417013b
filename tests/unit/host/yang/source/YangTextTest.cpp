// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "yang/source/YangText.h"

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

TEST(YangText, LineOf_NestedStatement_IsFoundByItsPath) {
    const YangText text(kModule);
    EXPECT_EQ(text.lineOf("list Site"), 7);
    EXPECT_EQ(text.lineOf("list Site/leaf id"), 9);
    EXPECT_EQ(text.lineOf("grouping g/leaf id"), 16);
    EXPECT_EQ(text.lineOf("leaf id"), 0);
}

TEST(YangText, LineOf_QuotedArgument_CountsAsItsText) {
    EXPECT_EQ(YangText(kModule).lineOf("list Site/leaf label"), 10);
}

TEST(YangText, LineOf_ExtensionOverTwoLines_IsFoundWithoutPrefixAndBlanks) {
    EXPECT_EQ(YangText(kModule).lineOf("list Site/leaf label/note two lines"), 11);
}

TEST(YangText, LineOf_Comment_IsNoStatement) {
    EXPECT_EQ(YangText(kModule).lineOf("list Hidden"), 0);
}

TEST(YangText, Statements_QuotesAndPluses_MakeOneArgument) {
    const YangText text(kModule);
    std::string description;
    for (const YangText::Statement& statement : text.statements()) {
        description = statement.keyword == "description" ? statement.argument : description;
    }
    EXPECT_EQ(description, "a \"quoted\" word; and { more } joined");
}

TEST(YangText, PrefixOf_ImportedModule_IsTheImports) {
    const YangText text(kModule);
    EXPECT_EQ(text.prefixOf("other"), "o");
    EXPECT_EQ(text.prefixOf("sample"), "");
}

TEST(YangText, Top_BrokenTexts_AreTakenAsTheyAre) {
    EXPECT_EQ(YangText("").top().keyword, "");
    EXPECT_EQ(YangText("}}}").top().keyword, "");
    EXPECT_EQ(YangText("module x { list \"y").top().argument, "x");
    EXPECT_EQ(YangText("/* never ends").top().keyword, "");
    EXPECT_EQ(YangText("{ {{ a").statements().size(), 1U);
}

}
}
