// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "base/DnText.h"

#include <gtest/gtest.h>

namespace OrvHost {
namespace {

TEST(DnTextTest, SplitDn_TopLevel_HasAnEmptyParent) {
    const auto split = splitDn("Network=1");
    ASSERT_TRUE(split);
    EXPECT_EQ(split->parent, "");
    EXPECT_EQ(split->leaf.className, "Network");
    EXPECT_EQ(split->leaf.value, "1");
}

TEST(DnTextTest, SplitDn_ThreeSteps_TakesOffTheLast) {
    const auto split = splitDn("A=1,B=2,C=three 3");
    ASSERT_TRUE(split);
    EXPECT_EQ(split->parent, "A=1,B=2");
    EXPECT_EQ(split->leaf.className, "C");
    EXPECT_EQ(split->leaf.value, "three 3");
}

TEST(DnTextTest, IsDn_MalformedTexts_AreNone) {
    for (const char* text : {"", "A", "A=", "=1", ",A=1", "A=1,", "A=1,,B=2", "A=1,B", "A=1=2"}) {
        EXPECT_FALSE(isDn(text)) << text;
    }
    EXPECT_TRUE(isDn("A=1"));
    EXPECT_TRUE(isDn("A=1,B=2,C=3"));
}

TEST(DnTextTest, ChildDn_WithAndWithoutParent) {
    EXPECT_EQ(childDn("", "A", "1"), "A=1");
    EXPECT_EQ(childDn("A=1", "B", "2"), "A=1,B=2");
    EXPECT_EQ(childPrefix("A=1", "B"), "A=1,B=");
}

}
}
