// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "model/Bounds.h"

#include <gtest/gtest.h>

namespace OrvHost {
namespace {

TEST(Bounds, Text_IsAsModelsAreWritten) {
    EXPECT_EQ(toText({0, 1}), "0..1");
    EXPECT_EQ(toText({1, kUnbounded}), "1..*");
    EXPECT_EQ(toText({0, kUnbounded}), "0..*");
    EXPECT_EQ(toText({2, 2}), "2");
    EXPECT_EQ(toText({-1, 1}), "-1..1");
}

TEST(Bounds, BothBounds_AreInside) {
    const Bounds bounds{1, 3};
    EXPECT_FALSE(bounds.contain(0));
    EXPECT_TRUE(bounds.contain(1));
    EXPECT_TRUE(bounds.contain(3));
    EXPECT_FALSE(bounds.contain(4));
}

TEST(Bounds, ContainAll_OnlyWithoutABoundAtEitherSide) {
    EXPECT_TRUE((Bounds{0, kUnbounded}.containAll()));
    EXPECT_TRUE((Bounds{-1, kUnbounded}.containAll()));
    EXPECT_FALSE((Bounds{1, kUnbounded}.containAll()));
    EXPECT_FALSE((Bounds{0, 5}.containAll()));
}

}
}
