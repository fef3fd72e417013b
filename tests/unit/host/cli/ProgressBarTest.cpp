// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "cli/output/ProgressBar.h"

#include <gmock/gmock.h>

#include <sstream>
#include <thread>

namespace OrvHost {
namespace {

using namespace std::chrono_literals;
using testing::EndsWith;
using testing::HasSubstr;

TEST(ProgressBarTest, Draw_BeforeTheDelay_StaysSilent) {
    std::ostringstream out;
    {
        ProgressBar bar(out, true, 1h);
        bar.update("storing", 1, 2);
    }
    EXPECT_EQ(out.str(), "");
}

TEST(ProgressBarTest, Draw_NotShown_StaysSilent) {
    std::ostringstream out;
    {
        ProgressBar bar(out, false, 0ms);
        bar.update("storing", 1, 2);
        std::this_thread::sleep_for(50ms);
    }
    EXPECT_EQ(out.str(), "");
}

TEST(ProgressBarTest, Draw_AfterTheDelay_ShowsTheShareAndRemovesTheLine) {
    std::ostringstream out;
    {
        ProgressBar bar(out, true, 1ms);
        bar.update("storing", 15, 30);
        std::this_thread::sleep_for(300ms);
    }
    EXPECT_THAT(out.str(), HasSubstr("storing [###############...............] 50% 15 of 30"));
    EXPECT_THAT(out.str(), EndsWith("\r\x1b[K"));
}

TEST(ProgressBarTest, Draw_AmountUnknown_ShowsTheWorkAndTheTime) {
    std::ostringstream out;
    {
        ProgressBar bar(out, true, 1ms);
        bar.update("checking", 0, 0);
        std::this_thread::sleep_for(300ms);
    }
    EXPECT_THAT(out.str(), HasSubstr("checking 0 s"));
}

TEST(ProgressBarTest, Print_WhileTheBarIsDrawn_TakesItsLineAndTheBarGoesOnBelow) {
    std::ostringstream out;
    {
        ProgressBar bar(out, true, 1ms);
        bar.update("checking", 0, 0);
        std::this_thread::sleep_for(300ms);
        bar.print("a note");
        std::this_thread::sleep_for(300ms);
    }
    EXPECT_THAT(out.str(), HasSubstr("checking 0 s\r\x1b[Ka note\n\r\x1b[Kchecking 0 s"));
}

TEST(ProgressBarTest, Print_WithoutABar_IsTheTextOnly) {
    std::ostringstream out;
    {
        ProgressBar bar(out, true, 10s);
        bar.print("a note");
    }
    EXPECT_EQ(out.str(), "a note\n");
}

}
}
