// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "messages/Tracing.h"

#include "LogCapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace OrvExtCmRouterService;
using testing::IsEmpty;
using testing::SizeIs;

TEST(SourceName, PathOfTheComponent_BeginsAtSrcAndHasNoExtension) {
    constexpr SourceName name("/somewhere/src/of/src/ext_cm/src/MoImpl3_1.cpp");
    EXPECT_STREQ(name.text(), "src/ext_cm/src/MoImpl3_1");
    constexpr SourceName header("src/ext_cm/src/MoImpl.h");
    EXPECT_STREQ(header.text(), "src/ext_cm/src/MoImpl");
}

TEST(SourceName, OtherPath_IsKept) {
    constexpr SourceName name("tests/Some.Test.cpp");
    EXPECT_STREQ(name.text(), "tests/Some.Test");
}

// Most hosts run with traces off, so a trace must cost them nothing but the look at the level.
TEST(Traces, BelowTheGate_EvaluateNothing) {
    const Scripted::LogCapture log;
    int evaluated = 0;
    const auto trace = [&] { ORV_TRACE("value %d", ++evaluated); };
    Orv::LoggingWrapper::instance()->setLevel(7);
    trace();
    EXPECT_EQ(evaluated, 0);
    EXPECT_THAT(log.lines(), IsEmpty());
    Orv::LoggingWrapper::instance()->setLevel(8);
    trace();
    EXPECT_THAT(log.lines(), SizeIs(2));
    EXPECT_EQ(evaluated, 1) << "once for both forms";
}
