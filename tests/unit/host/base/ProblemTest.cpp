// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "base/Problem.h"

#include <gtest/gtest.h>

namespace OrvHost {
namespace {

TEST(Problem, Text_HasWhatIsKnownOfThePlace) {
    EXPECT_EQ(toText(Problem{{"a.yang", 7}, "is wrong"}), "a.yang:7: is wrong");
    EXPECT_EQ(toText(Problem{{"a.yang", 0}, "is wrong"}), "a.yang: is wrong");
    EXPECT_EQ(toText(Problem{{"", 7}, "is wrong"}), "is wrong");
}

TEST(ProblemsError, What_HasALineForEachProblem) {
    const ProblemsError error({{{"a", 1}, "one"}, {{}, "two"}});
    EXPECT_STREQ(error.what(), "a:1: one\ntwo");
    EXPECT_EQ(error.problems().size(), 2U);
}

}
}
