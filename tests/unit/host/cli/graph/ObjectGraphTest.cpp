// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "cli/graph/ObjectGraph.h"

#include "GraphModel.h"

#include <gmock/gmock.h>

namespace OrvHost {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class ObjectGraphTest : public GraphTest {
protected:
    std::string dot() const {
        const auto violations = violationsIn(mModel, mPicture);
        const ReferenceLines lines(mClasses, mPicture, violations);
        return ObjectGraph(mPicture, lines, violations).dot();
    }
};

TEST_F(ObjectGraphTest, Tree_IsDrawnWithLinesFromParentsToChildren) {
    add("Site=1");
    add("Site=1,Antenna=x");
    mPicture.title = "/";
    EXPECT_THAT(dot(), AllOf(HasSubstr("n0 [label=\"Site=1\", tooltip=\"Site=1\"]"),
                             HasSubstr("n1 [label=\"Antenna=x\", tooltip=\"Site=1,Antenna=x\"]"),
                             HasSubstr("n0 -> n1 [arrowhead=\"none\"]"),
                             HasSubstr("/: 2 objects, 0 lines of references, 0 violations"),
                             Not(HasSubstr("#d00000"))));
}

TEST_F(ObjectGraphTest, CutObject_TellsWhatIsBelow) {
    add("Site=1");
    mPicture.objects[0].hiddenBelow = 12;
    EXPECT_THAT(dot(), HasSubstr("label=\"Site=1\\n(12 below)\""));
}

TEST_F(ObjectGraphTest, BothWays_HasTwoHeadsAndDoesNotMoveTheTree) {
    add("Site=1,Mast=a", {{"antennas", "Site=1,Antenna=1"}});
    add("Site=1,Antenna=1", {{"mast", "Site=1,Mast=a"}});
    EXPECT_THAT(dot(), HasSubstr("n0 -> n1 [label=\"antennas / mast\", style=\"solid\", "
                                 "dir=\"both\", constraint=\"false\", color=\"#2f6f9f\""));
}

TEST_F(ObjectGraphTest, Violation_IsRedAndListedBelow) {
    add("Site=1,Antenna=1", {{"seen", "Site=1,Mast=gone"}});
    EXPECT_THAT(dot(),
                AllOf(HasSubstr("n1 [label=\"Site=1,Mast=gone\\nis not there\", "
                                "style=\"dashed\", color=\"#d00000\", fontcolor=\"#d00000\"]"),
                      HasSubstr("n0 -> n1 [label=\"seen\", tooltip=\"Site=1,Antenna=1: attribute "
                                "seen names Site=1,Mast=gone, which does not exist.\", "
                                "style=\"dashed\", constraint=\"false\", color=\"#d00000\""),
                      HasSubstr("1 violation\\nSite=1,Antenna=1: attribute seen")));
}

TEST_F(ObjectGraphTest, WrongNumber_ReddensTheObject) {
    add("Site=1,Mast=a");
    mPicture.objects[0].references.emplace_back("antennas", AttributeValue{ValueKind::MoRef, {}});
    EXPECT_THAT(dot(),
                HasSubstr("n0 [label=\"Mast=a\\nattribute antennas names 0 of class Antenna, "
                          "expected 1..9.\", tooltip=\"Site=1,Mast=a\", color=\"#d00000\""));
}

TEST_F(ObjectGraphTest, PlainReferenceToNothing_IsNotRed) {
    add("Site=1,Antenna=1", {{"any", "Site=1,Mast=gone"}});
    EXPECT_THAT(dot(), AllOf(HasSubstr("is not there"), HasSubstr("style=\"dotted\""),
                             Not(HasSubstr("#d00000"))));
}

TEST_F(ObjectGraphTest, ManyViolations_AreNotAllListedBelow) {
    for (int number = 0; number < 30; ++number) {
        add("Site=1,Antenna=" + std::to_string(number), {{"seen", "Site=1,Mast=gone"}});
    }
    EXPECT_THAT(dot(), AllOf(HasSubstr("30 violations"), HasSubstr("\\nSite=1,Antenna=19: "),
                             Not(HasSubstr("\\nSite=1,Antenna=20: ")), HasSubstr("\\n...")));
}

}
}
