// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "yang/schema/AssociationStatement.h"

#include <gtest/gtest.h>

#include <functional>

namespace OrvHost {
namespace {

std::string refusalOf(const std::function<void()>& parse) {
    try {
        parse();
        return "";
    } catch (const StatementError& error) {
        return error.what();
    }
}

TEST(AssociationStatement, UniDirInLeaf_AllWords_AreTakenApart) {
    const UniDirInLeaf statement = parseUniDirInLeaf("net:Mast 1..4 role=masts");
    EXPECT_EQ(statement.target.module, "net");
    EXPECT_EQ(statement.target.name, "Mast");
    ASSERT_TRUE(statement.terms.bounds);
    EXPECT_EQ(statement.terms.bounds->lower, 1);
    EXPECT_EQ(statement.terms.bounds->upper, 4);
    EXPECT_EQ(statement.terms.role, "masts");
}

TEST(AssociationStatement, UniDirInLeaf_ClassAlone_SaysNothingElse) {
    const UniDirInLeaf statement = parseUniDirInLeaf("  Mast\n");
    EXPECT_EQ(statement.target.module, "");
    EXPECT_TRUE(statement.terms.isEmpty());
}

TEST(AssociationStatement, Bounds_OneNumberOrOpen_AreUnderstood) {
    EXPECT_EQ(parseUniDirInLeaf("M 3").terms.bounds->lower, 3);
    EXPECT_EQ(parseUniDirInLeaf("M 3").terms.bounds->upper, 3);
    EXPECT_EQ(parseUniDirInLeaf("M 2..unbounded").terms.bounds->upper, kUnbounded);
    EXPECT_EQ(parseUniDirInLeaf("M 0..*").terms.bounds->upper, kUnbounded);
}

TEST(AssociationStatement, BiDirInLeaf_WordsInAnyOrder_AreTakenApart) {
    const BiDirInLeaf statement = parseBiDirInLeaf("net:Mast.sites keep-at-delete role=masts 0..2");
    EXPECT_EQ(statement.opposite.moc.module, "net");
    EXPECT_EQ(statement.opposite.moc.name, "Mast");
    EXPECT_EQ(statement.opposite.attribute, "sites");
    EXPECT_TRUE(statement.terms.keepAtDelete);
    EXPECT_EQ(statement.terms.bounds->upper, 2);
}

TEST(AssociationStatement, UniDirInModule_BothEnds_AreTakenApart) {
    const UniDirInModule statement = parseUniDirInModule("a:Site.mast -> b:Mast 0..1");
    EXPECT_EQ(statement.owner.moc.module, "a");
    EXPECT_EQ(statement.owner.attribute, "mast");
    EXPECT_EQ(statement.target.module, "b");
    EXPECT_EQ(statement.terms.bounds->upper, 1);
}

TEST(AssociationStatement, BiDirInModule_EachSide_HasItsWords) {
    const BiDirInModule statement =
        parseBiDirInModule("Site.masts 0..4 role=masts <-> Mast.site 1 keep-at-delete");
    EXPECT_EQ(statement.sides[0].first.attribute, "masts");
    EXPECT_EQ(statement.sides[0].second.role, "masts");
    EXPECT_FALSE(statement.sides[0].second.keepAtDelete);
    EXPECT_EQ(statement.sides[1].first.moc.name, "Mast");
    EXPECT_EQ(statement.sides[1].second.bounds->lower, 1);
    EXPECT_TRUE(statement.sides[1].second.keepAtDelete);
}

TEST(AssociationStatement, MalformedArguments_AreRefusedWithWhatWasExpected) {
    EXPECT_EQ(refusalOf([] { parseUniDirInLeaf(""); }), "CLASS was expected at the end");
    EXPECT_EQ(refusalOf([] { parseBiDirInLeaf("Mast"); }),
              "CLASS.ATTRIBUTE was expected instead of \"Mast\"");
    EXPECT_EQ(refusalOf([] { parseBiDirInLeaf("Mast."); }),
              "CLASS.ATTRIBUTE was expected instead of \"Mast.\"");
    EXPECT_EQ(refusalOf([] { parseUniDirInLeaf(":Mast"); }),
              "CLASS or MODULE:CLASS was expected instead of \":Mast\"");
    EXPECT_EQ(refusalOf([] { parseUniDirInLeaf("Mast 1 2"); }), "\"2\" is one word too many");
    EXPECT_EQ(refusalOf([] { parseUniDirInModule("A.b B"); }),
              "\"->\" was expected instead of \"B\": CLASS.ATTRIBUTE -> CLASS [BOUNDS] "
              "[role=WORD]");
    EXPECT_NE(refusalOf([] { parseBiDirInModule("A.b <-> B.a 1 <-> C.d"); }), "");
    EXPECT_NE(refusalOf([] { parseUniDirInLeaf("Mast keep-at-delete"); }), "");
}

TEST(AssociationStatement, MalformedBounds_AreRefused) {
    for (const char* bounds : {"4..1", "-1", "1..", "..4", "a..b", "unbounded", "1...4",
                               "role=", "99999999999", "1..-1"}) {
        EXPECT_NE(refusalOf([bounds] { parseUniDirInLeaf(std::string("M ") + bounds); }), "")
            << bounds;
    }
}

}
}
