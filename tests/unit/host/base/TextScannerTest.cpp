// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "base/TextScanner.h"

#include <gtest/gtest.h>

namespace OrvHost {
namespace {

TEST(TextScannerTest, Marks_AreTakenFromBothEnds) {
    TextScanner text("from a in b in c (1..2).");
    EXPECT_TRUE(text.take("from "));
    EXPECT_TRUE(text.takeEnd(")."));
    EXPECT_EQ(text.afterLast("("), "1..2");
    EXPECT_EQ(text.before(" in "), "a");
    EXPECT_EQ(text.beforeLast(" "), "b in c");
    EXPECT_EQ(text.rest(), "");
}

TEST(TextScannerTest, WhatIsNotThere_TakesNothing) {
    TextScanner text("abc");
    EXPECT_FALSE(text.take("b"));
    EXPECT_FALSE(text.take("abcd"));
    EXPECT_FALSE(text.takeEnd("b"));
    EXPECT_EQ(text.before("x"), std::nullopt);
    EXPECT_EQ(text.beforeLast("x"), std::nullopt);
    EXPECT_EQ(text.afterLast("x"), std::nullopt);
    EXPECT_EQ(text.rest(), "abc");
}

TEST(TextScannerTest, Number_IsTheWholeTextOrNothing) {
    EXPECT_EQ(numberIn("-12"), -12);
    for (const char* text : {"", "1x", " 1", "-", "99999999999999999999"}) {
        EXPECT_EQ(numberIn(text), std::nullopt) << text;
    }
}

}
}
