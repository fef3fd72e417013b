// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "transactions/ThreadContext.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

namespace OrvHost {
namespace {

TEST(ThreadContextTest, SecondOne_IsRefusedAndLeavesTheFirstInPlace) {
    ThreadContext context;
    EXPECT_THROW(ThreadContext second, std::logic_error);
    EXPECT_THROW(ThreadContext third, std::logic_error);
    EXPECT_EQ(context.getInterface()->addMessage(1, "one"), OrvOk);
    EXPECT_EQ(context.take().size(), 1U);
}

TEST(ThreadContextTest, AddMessage_ThroughTheTable_IsTakenInOrder) {
    ThreadContext context;
    VekMgmtSpiThreadContext_2* table = context.getInterface();
    EXPECT_STREQ(table->identity.componentName, "VekMgmtSpiThreadContextService");
    EXPECT_STREQ(table->identity.interfaceName, "VekMgmtSpiThreadContext");
    EXPECT_STREQ(table->identity.interfaceVersion, "2");
    std::string text = "one";
    EXPECT_EQ(table->addMessage(1, text.c_str()), OrvOk);
    text = "gone"; // the table only borrows the text
    EXPECT_EQ(table->addMessage(1, "two"), OrvOk);
    EXPECT_EQ(context.size(), 2U);
    const auto messages = context.take();
    ASSERT_EQ(messages.size(), 2U);
    EXPECT_EQ(messages[0].text, "one");
    EXPECT_EQ(messages[0].kind, 1);
    EXPECT_EQ(messages[1].text, "two");
    EXPECT_EQ(context.size(), 0U);
}

TEST(ThreadContextTest, AddMessage_NullText_IsRefused) {
    ThreadContext context;
    EXPECT_EQ(context.getInterface()->addMessage(1, nullptr), OrvInvalidArgument);
    EXPECT_EQ(context.size(), 0U);
}

TEST(ThreadContextTest, Take_FromAMark_LeavesWhatIsOlder) {
    ThreadContext context;
    context.addMessage(ThreadContext::Verdict, "old");
    const std::size_t mark = context.size();
    context.addMessage(ThreadContext::Explanation, "new");
    const auto messages = context.take(mark);
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0].text, "new");
    EXPECT_EQ(context.take(5).size(), 0U);
    context.clear();
    EXPECT_EQ(context.size(), 0U);
}

TEST(ThreadContextTest, AddMessage_OnAnotherThread_IsNotSeenHere) {
    ThreadContext context;
    std::size_t seenThere = 0;
    std::thread([&] {
        context.getInterface()->addMessage(1, "there");
        seenThere = context.size();
    }).join();
    EXPECT_EQ(seenThere, 1U);
    EXPECT_EQ(context.size(), 0U);
}

TEST(ThreadContextTest, Construct_AfterAnother_StartsEmpty) {
    ThreadContext().addMessage(ThreadContext::Verdict, "left behind");
    EXPECT_EQ(ThreadContext().size(), 0U);
}

}
}
