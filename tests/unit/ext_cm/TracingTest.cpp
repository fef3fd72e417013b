// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "messages/Tracing.h"

#include "LogCapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

using namespace OrvExtCmRouterService;
using Orv::LogRecord;
using Scripted::LogCapture;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

int evaluated = 0;

int counted(int value) {
    ++evaluated;
    return value;
}

void enters() {
    ORV_TRACE_ENTRY(" >> dn: %s", "A=1");
}
void leaves() {
    ORV_TRACE_EXIT(" << Error: %s", "OrvNotExist");
}
void passes() {
    ORV_TRACE("value %d", counted(5));
}
OrvReturnT answers(OrvReturnT code) {
    return ORV_TRACE_RESULT(code);
}
void logsGrave() {
    ORV_LOG(3, "grave %d", 1);
}
void logsPlain() {
    ORV_LOG(4, "plain %d", 2);
}
void logsForInformation() {
    ORV_LOG(6, "known %d", 3);
}

class TracingTest : public testing::Test {
protected:
    std::vector<std::string> linesAt(unsigned int level, void (*function)()) {
        log.forget();
        Orv::LoggingWrapper::instance()->setLevel(level);
        function();
        return log.lines();
    }

    LogCapture log;
};

}

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

TEST_F(TracingTest, Traces_NothingAtSevenBothCallsAtEight) {
    EXPECT_THAT(linesAt(7, &enters), IsEmpty());
    EXPECT_THAT(linesAt(8, &enters),
                ElementsAre("trace 9 enters:  >> dn: A=1", "trace2 ExtCm 14 enters:  >> dn: A=1"));
    EXPECT_THAT(linesAt(7, &leaves), IsEmpty());
    EXPECT_THAT(linesAt(8, &leaves), ElementsAre("trace 10 leaves:  << Error: OrvNotExist",
                                                 "trace2 ExtCm 14 leaves:  << Error: OrvNotExist"));
    EXPECT_THAT(linesAt(7, &passes), IsEmpty());
    EXPECT_THAT(linesAt(8, &passes),
                ElementsAre("trace 0 passes: value 5", "trace2 ExtCm 14 passes: value 5"));
}

TEST_F(TracingTest, Traces_BelowTheGate_EvaluateNothing) {
    evaluated = 0;
    linesAt(7, &passes);
    EXPECT_EQ(evaluated, 0);
}

TEST_F(TracingTest, Result_IsTracedAsTextAndGivenBack) {
    Orv::LoggingWrapper::instance()->setLevel(8);
    EXPECT_EQ(answers(OrvNotExist), OrvNotExist);
    EXPECT_THAT(log.lines(), ElementsAre("trace 10 answers:  << ret: OrvNotExist",
                                         "trace2 ExtCm 14 answers:  << ret: OrvNotExist"));
    log.forget();
    Orv::LoggingWrapper::instance()->setLevel(7);
    EXPECT_EQ(answers(-4711), -4711);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(TracingTest, Logs_EachHasItsGate) {
    EXPECT_THAT(linesAt(2, &logsGrave), IsEmpty());
    EXPECT_THAT(linesAt(3, &logsGrave),
                ElementsAre("log 3 logsGrave: grave 1", "trace2 ExtCm 3 logsGrave: grave 1"));
    EXPECT_THAT(linesAt(3, &logsPlain), IsEmpty());
    EXPECT_THAT(linesAt(4, &logsPlain),
                ElementsAre("log 4 logsPlain: plain 2", "trace2 ExtCm 4 logsPlain: plain 2"));
    EXPECT_THAT(linesAt(5, &logsForInformation), IsEmpty());
    EXPECT_THAT(linesAt(6, &logsForInformation),
                ElementsAre("log 6 logsForInformation: known 3",
                            "trace2 ExtCm 6 logsForInformation: known 3"));
    EXPECT_THAT(linesAt(0, &logsGrave), IsEmpty());
}

TEST_F(TracingTest, Records_CarryPlaceAndFlag) {
    linesAt(8, &enters);
    std::vector<LogRecord> records = log.records();
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[0].form, LogRecord::Form::Trace);
    EXPECT_EQ(records[1].form, LogRecord::Form::TraceV2);
    EXPECT_EQ(records[0].line, records[1].line);
    EXPECT_GT(records[0].line, 0);
    EXPECT_TRUE(std::string_view(records[0].file).ends_with("tests/unit/ext_cm/TracingTest"));
    EXPECT_EQ(records[0].file, records[1].file);
    linesAt(8, &logsPlain);
    records = log.records();
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[0].form, LogRecord::Form::Log);
    EXPECT_EQ(records[0].flag, 1);
    EXPECT_EQ(records[1].form, LogRecord::Form::TraceV2);
    EXPECT_EQ(records[1].subsystem, Orv::Trace::ExtCm);
}
