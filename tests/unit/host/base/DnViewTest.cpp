// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "base/DnView.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace OrvHost {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> stepsOf(std::string_view dn) {
    std::vector<std::string> texts;
    for (const DnStep step : DnView(dn).steps()) {
        texts.emplace_back(step.text());
    }
    return texts;
}

TEST(DnStep, ClassAndValue_AreTakenApart) {
    const DnStep step("Node=seven 7");
    EXPECT_EQ(step.text(), "Node=seven 7");
    EXPECT_EQ(step.type(), "Node");
    EXPECT_EQ(step.className(), "Node");
    EXPECT_TRUE(step.hasEquals());
    EXPECT_EQ(step.value(), "seven 7");
    EXPECT_EQ(step.whyInvalid(), "");
}

TEST(DnStep, NamingAttribute_IsNoPartOfTheClass) {
    const DnStep step("Node.nodeId=1.5");
    EXPECT_EQ(step.type(), "Node.nodeId");
    EXPECT_EQ(step.className(), "Node");
    EXPECT_EQ(step.value(), "1.5");
    EXPECT_TRUE(step.isValid());
}

TEST(DnStep, MalformedTexts_SayWhatIsWrong) {
    EXPECT_EQ(DnStep("").whyInvalid(), "is empty");
    EXPECT_EQ(DnStep("A").whyInvalid(), "has no '='");
    EXPECT_EQ(DnStep("=1").whyInvalid(), "has no class");
    EXPECT_EQ(DnStep("=").whyInvalid(), "has no class");
    EXPECT_EQ(DnStep("A=").whyInvalid(), "has no value");
    EXPECT_EQ(DnStep("A=1=2").whyInvalid(), "has more than one '='");
}

TEST(DnStep, MalformedTexts_CanStillBeTakenApart) {
    EXPECT_EQ(DnStep("A.id").className(), "A");
    EXPECT_EQ(DnStep("A").value(), "");
    EXPECT_EQ(DnStep("A=1=2").type(), "A");
    EXPECT_EQ(DnStep("A=1=2").value(), "1=2");
    EXPECT_EQ(DnStep("=1").className(), "");
}

TEST(DnView, TopLevel_HasNoParent) {
    const DnView dn("Network=1");
    EXPECT_FALSE(dn.hasParent());
    EXPECT_TRUE(dn.parent().isEmpty());
    EXPECT_EQ(dn.last().text(), "Network=1");
    EXPECT_EQ(dn.depth(), 1U);
}

TEST(DnView, ThreeSteps_AreTakenOffFromTheEnd) {
    const DnView dn("A=1,B=2,C=three 3");
    EXPECT_TRUE(dn.hasParent());
    EXPECT_EQ(dn.last().className(), "C");
    EXPECT_EQ(dn.last().value(), "three 3");
    EXPECT_EQ(dn.parent().text(), "A=1,B=2");
    EXPECT_EQ(dn.parent().last().className(), "B");
    EXPECT_EQ(dn.depth(), 3U);
}

TEST(DnView, EmptyText_IsThePlaceAboveTheTop) {
    const DnView dn("");
    EXPECT_TRUE(dn.isEmpty());
    EXPECT_FALSE(dn.hasParent());
    EXPECT_EQ(dn.depth(), 0U);
    EXPECT_EQ(dn.last().text(), "");
    EXPECT_THAT(stepsOf(""), IsEmpty());
}

TEST(DnView, CommaWithoutParent_IsNotTheTopLevel) {
    const DnView dn(",A=1");
    EXPECT_TRUE(dn.hasParent());
    EXPECT_TRUE(dn.parent().isEmpty());
    EXPECT_EQ(dn.last().text(), "A=1");
}

TEST(DnView, Steps_ComeFromTheTop) {
    EXPECT_THAT(stepsOf("A=1"), ElementsAre("A=1"));
    EXPECT_THAT(stepsOf("A=1,B.b=2,C=3"), ElementsAre("A=1", "B.b=2", "C=3"));
}

TEST(DnView, StepsOfMalformedTexts_IncludeTheEmptyOnes) {
    EXPECT_THAT(stepsOf(","), ElementsAre("", ""));
    EXPECT_THAT(stepsOf("A=1,"), ElementsAre("A=1", ""));
    EXPECT_THAT(stepsOf(",A=1"), ElementsAre("", "A=1"));
    EXPECT_THAT(stepsOf("A=1,,B"), ElementsAre("A=1", "", "B"));
}

TEST(DnView, MalformedTexts_SayWhatIsWrong) {
    EXPECT_EQ(DnView("").whyInvalid(), "it is empty");
    EXPECT_EQ(DnView("A=1,").whyInvalid(), "its step '' is empty");
    EXPECT_EQ(DnView("A=1,B,C").whyInvalid(), "its step 'B' has no '='");
    for (const char* text :
         {"", "A", "A=", "=1", ",A=1", "A=1,", "A=1,,B=2", "A=1,B", "A=1=2", ",", "="}) {
        EXPECT_FALSE(DnView(text).isValid()) << text;
        EXPECT_NE(DnView(text).whyInvalid(), "") << text;
    }
    for (const char* text : {"A=1", "A=1,B=2,C=3", "A.id=1,B= "}) {
        EXPECT_TRUE(DnView(text).isValid()) << text;
        EXPECT_EQ(DnView(text).whyInvalid(), "") << text;
    }
}

TEST(DnView, EveryShortText_IsValidIfNothingIsWrongWithIt) {
    std::vector<std::string> texts{""};
    for (std::size_t at = 0; at < texts.size(); ++at) {
        const std::string text = texts[at];
        EXPECT_EQ(DnView(text).isValid(), DnView(text).whyInvalid().empty()) << text;
        for (const char letter : {'A', '=', ','}) {
            if (text.size() < 9) {
                texts.push_back(text + letter);
            }
        }
    }
}

TEST(DnView, AtOrBelow_EndsAtAComma) {
    EXPECT_TRUE(DnView("A=1").isAtOrBelow(DnView("A=1")));
    EXPECT_TRUE(DnView("A=1,B=2").isAtOrBelow(DnView("A=1")));
    EXPECT_FALSE(DnView("A=11").isAtOrBelow(DnView("A=1")));
    EXPECT_FALSE(DnView("A=1").isAtOrBelow(DnView("A=1,B=2")));
    EXPECT_FALSE(DnView("B=1,A=1").isAtOrBelow(DnView("A=1")));
    EXPECT_TRUE(DnView("A=1").isAtOrBelow(DnView("")));
    EXPECT_FALSE(DnView("").isAtOrBelow(DnView("A=1")));
}

TEST(DnView, Child_WithAndWithoutParent) {
    EXPECT_EQ(DnView("").child("A", "1"), "A=1");
    EXPECT_EQ(DnView("A=1").child("B", "2"), "A=1,B=2");
    EXPECT_EQ(DnView("A=1").childPrefix("B"), "A=1,B=");
    EXPECT_EQ(DnView("").childPrefix("B"), "B=");
}

TEST(DnView, SiblingPrefix_IsTheChildPrefixOfTheParent) {
    EXPECT_EQ(DnView("A=1,B=22").siblingPrefix(), DnView("A=1").childPrefix("B"));
    EXPECT_EQ(DnView("A=1").siblingPrefix(), DnView("").childPrefix("A"));
}

TEST(DnView, AppendStep_BuildsFromTheTop) {
    std::string dn;
    appendStep(dn, "A", "1");
    appendStep(dn, "B", "2");
    EXPECT_EQ(dn, "A=1,B=2");
}

}
}
