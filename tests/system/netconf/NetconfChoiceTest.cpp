// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Choices: who sets a node of one case takes away the nodes of the others.

#include "DispatcherScene.h"

namespace OrvHost {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class NetconfChoiceTest : public DispatcherScene {
protected:
    static std::string plant(const std::string& tag, const std::string& content,
                             const std::string& attributes = {}) {
        return element("<" + tag + R"( xmlns="urn:orv:test:plant")" + attributes + ">" + content +
                       "</" + tag + ">");
    }
    static std::string feed(const std::string& content, const std::string& attributes = {}) {
        return plant("Feed", "<feedId>1</feedId>" + content, attributes);
    }

    /// The feed as the candidate shows it, after the candidate was found to be valid.
    std::string seen() {
        EXPECT_EQ(ask(kValidate), "ok");
        return getConfig(feed(""), "candidate");
    }
};

TEST_F(NetconfChoiceTest, LeafOfAnotherCase_TakesAwayLeavesListsAndReferences) {
    ASSERT_EQ(edit(plant("Meter", "<meterId>1</meterId>")), "ok");
    ASSERT_EQ(edit(feed("<voltage>400</voltage><phase>1</phase><phase>2</phase>"
                        "<meterRef>ManagedElement=Harbour,Meter=1</meterRef>")),
              "ok");
    ASSERT_THAT(seen(), AllOf(HasSubstr("<voltage>400"), HasSubstr("<meterRef>")));
    ASSERT_EQ(edit(feed("<fuel>diesel</fuel>")), "ok");
    EXPECT_EQ(seen(), feed("<fuel>diesel</fuel>") + "\n");
    EXPECT_THAT(getConfig(plant("Meter", ""), "candidate"), Not(HasSubstr("feedRef")))
        << "the far side follows";
    ASSERT_EQ(edit(feed("<phase>3</phase>")), "ok");
    EXPECT_EQ(seen(), feed("<phase>3</phase>") + "\n");
}

TEST_F(NetconfChoiceTest, InnerChoice_KeepsTheOuterCase) {
    ASSERT_EQ(edit(feed("<fuel>diesel</fuel><Cell><cellId>1</cellId></Cell>")), "ok");
    ASSERT_EQ(edit(feed("<area>12</area>")), "ok");
    EXPECT_THAT(seen(), AllOf(HasSubstr("<area>12"), HasSubstr("<Cell>"), Not(HasSubstr("fuel"))));
}

TEST_F(NetconfChoiceTest, Objects_AreOfCasesToo) {
    ASSERT_EQ(edit(feed("<Cell><cellId>1</cellId></Cell><Cell><cellId>2</cellId></Cell>")), "ok");
    ASSERT_EQ(edit(feed("<voltage>400</voltage>")), "ok");
    EXPECT_EQ(seen(), feed("<voltage>400</voltage>") + "\n");
    ASSERT_EQ(edit(feed("<Cell><cellId>3</cellId></Cell>")), "ok");
    EXPECT_EQ(seen(), feed("<Cell><cellId>3</cellId></Cell>") + "\n");
}

TEST_F(NetconfChoiceTest, ValueThatIsTheDefault_GoesToo) {
    ASSERT_EQ(edit(feed("<voltage>230</voltage>")), "ok");
    ASSERT_EQ(edit(feed("<area>12</area>")), "ok");
    EXPECT_EQ(seen(), feed("<area>12</area>") + "\n");
}

TEST_F(NetconfChoiceTest, WhatIsDeletedOrOnlyPassed_TakesNoCase) {
    ASSERT_EQ(edit(feed("<voltage>400</voltage>")), "ok");
    ASSERT_EQ(edit(feed("<fuel " + kNc + R"(nc:operation="remove"/>)")), "ok");
    ASSERT_EQ(edit(feed("<fuel>diesel</fuel>"), "candidate",
                   "<default-operation>none</default-operation>"),
              "ok");
    EXPECT_EQ(seen(), feed("<voltage>400</voltage>") + "\n");
    ASSERT_EQ(edit(feed("<voltage " + kNc + R"(nc:operation="delete"/><fuel>gas</fuel>)")), "ok");
    EXPECT_EQ(seen(), feed("<fuel>gas</fuel>") + "\n");
}

TEST_F(NetconfChoiceTest, Replace_TakesTheCaseOfWhatItNames) {
    ASSERT_EQ(edit(plant("Meter", "<meterId>1</meterId>")), "ok");
    ASSERT_EQ(edit(feed("<meterRef>ManagedElement=Harbour,Meter=1</meterRef>")), "ok");
    ASSERT_EQ(edit(feed("<fuel>diesel</fuel>", " " + kNc + R"(nc:operation="replace")")), "ok");
    EXPECT_EQ(seen(), feed("<fuel>diesel</fuel>") + "\n");
}

TEST_F(NetconfChoiceTest, MembersOfAContainer_AreOfCasesToo) {
    ASSERT_EQ(edit(feed("<fuse><label>main</label><amperes>16</amperes></fuse>")), "ok");
    ASSERT_EQ(edit(feed("<fuse><breaker>B</breaker></fuse>")), "ok");
    EXPECT_EQ(seen(), feed("<fuse><label>main</label><breaker>B</breaker></fuse>") + "\n");
}

TEST_F(NetconfChoiceTest, TwoCasesInOneEdit_AreRefused) {
    for (const char* both :
         {"<voltage>400</voltage><fuel>diesel</fuel>", "<fuel>diesel</fuel><area>12</area>",
          "<fuse><amperes>16</amperes><breaker>B</breaker></fuse>"}) {
        EXPECT_THAT(edit(feed(both)),
                    AllOf(HasSubstr("<error-tag>bad-element</error-tag>"),
                          HasSubstr("of two cases of one choice"), HasSubstr("<bad-element>")));
    }
    EXPECT_THAT(getConfig(feed(""), "candidate"), Not(HasSubstr("Feed")));
}

TEST_F(NetconfChoiceTest, InRunning_TheOtherCaseGoesInTheSameEdit) {
    ASSERT_EQ(edit(feed("<voltage>400</voltage>"), "running"), "ok");
    ASSERT_EQ(edit(feed("<fuel>diesel</fuel>"), "running"), "ok");
    EXPECT_EQ(getConfig(feed("")), feed("<fuel>diesel</fuel>") + "\n");
}

}
}
