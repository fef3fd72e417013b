// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "LoggingWrapper.h"

#include "LogCapture.h"

#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <string>

using Orv::LoggingWrapper;
using Orv::LogRecord;

namespace {

LoggingWrapper& wrapper() {
    return *LoggingWrapper::instance();
}

// Logs when it goes, as an object that a sink holds may do.
struct LogsWhenDestroyed {
    LogsWhenDestroyed() = default;
    LogsWhenDestroyed(const LogsWhenDestroyed&) = delete;
    LogsWhenDestroyed& operator=(const LogsWhenDestroyed&) = delete;
    ~LogsWhenDestroyed() { wrapper().log_printf("gone", 4, 1, "last words"); }
};

}

TEST(LoggingWrapper, Instance_IsOneAndStartsAtLevel4) {
    EXPECT_EQ(LoggingWrapper::instance(), LoggingWrapper::instance());
    EXPECT_EQ(wrapper().get_level(), 4U);
}

TEST(LoggingWrapper, SetLevel_IsWhatGetLevelTells) {
    wrapper().setLevel(8);
    EXPECT_EQ(wrapper().get_level(), 8U);
    wrapper().setLevel(4);
}

TEST(LoggingWrapper, TracePrintf_FillsTheRecordOfATrace) {
    const LogCapture log;
    wrapper().trace_printf("src/a/B", "run", 12, 9, " >> dn: %s, %d", "A=1", 5);
    ASSERT_EQ(log.records.size(), 1U);
    const LogRecord& record = log.records.front();
    EXPECT_EQ(record.form, LogRecord::Form::Trace);
    EXPECT_EQ(record.file, "src/a/B");
    EXPECT_EQ(record.function, "run");
    EXPECT_EQ(record.line, 12);
    EXPECT_EQ(record.kind, 9);
    EXPECT_EQ(record.text, " >> dn: A=1, 5");
}

TEST(LoggingWrapper, TraceV2Printf_FillsTheRecordOfATraceOfTheNewForm) {
    const LogCapture log;
    wrapper().trace_v2_printf(Orv::Trace::ExtCm, 14, "src/a/B", "run", 34, " << ret: %d", -2);
    ASSERT_EQ(log.records.size(), 1U);
    const LogRecord& record = log.records.front();
    EXPECT_EQ(record.form, LogRecord::Form::TraceV2);
    EXPECT_EQ(record.subsystem, Orv::Trace::ExtCm);
    EXPECT_EQ(record.level, 14);
    EXPECT_EQ(record.file, "src/a/B");
    EXPECT_EQ(record.function, "run");
    EXPECT_EQ(record.line, 34);
    EXPECT_EQ(record.text, " << ret: -2");
}

TEST(LoggingWrapper, LogPrintf_FillsTheRecordOfALog) {
    const LogCapture log;
    wrapper().log_printf("start", 3, 1, "Could not lookup %s", "it");
    ASSERT_EQ(log.records.size(), 1U);
    const LogRecord& record = log.records.front();
    EXPECT_EQ(record.form, LogRecord::Form::Log);
    EXPECT_EQ(record.function, "start");
    EXPECT_EQ(record.level, 3);
    EXPECT_EQ(record.flag, 1);
    EXPECT_EQ(record.file, "");
    EXPECT_EQ(record.text, "Could not lookup it");
}

TEST(LoggingWrapper, Printf_LongText_IsNotCut) {
    const LogCapture log;
    const std::string dn(70000, 'd');
    wrapper().log_printf("f", 4, 1, "[%s]", dn.c_str());
    ASSERT_EQ(log.records.size(), 1U);
    EXPECT_EQ(log.records.front().text, "[" + dn + "]");
}

TEST(LoggingWrapper, Printf_TextsAtTheEdgesOfBuffers_AreWhole) {
    const LogCapture log;
    for (std::size_t size = 250; size < 260; ++size) {
        wrapper().log_printf("f", 4, 1, "%s", std::string(size, 'x').c_str());
        EXPECT_EQ(log.records.back().text.size(), size);
    }
}

TEST(LoggingWrapper, Printf_AnyLevel_IsHandedOn) {
    const LogCapture log(0);
    wrapper().log_printf("f", 6, 1, "quiet");
    EXPECT_EQ(log.records.size(), 1U);
}

TEST(LoggingWrapper, Printf_WithoutSink_IsDropped) {
    wrapper().setSink(nullptr);
    wrapper().log_printf("f", 3, 1, "nobody listens");
    const LogCapture log;
    EXPECT_TRUE(log.records.empty());
}

TEST(LoggingWrapper, Printf_SinkThrows_DropsTheRecordAndReturns) {
    int calls = 0;
    wrapper().setSink([&](const LogRecord&) {
        ++calls;
        throw std::runtime_error("disk full");
    });
    EXPECT_NO_THROW(wrapper().log_printf("f", 3, 1, "lost"));
    EXPECT_NO_THROW(wrapper().trace_printf("a", "f", 1, 0, "lost"));
    EXPECT_EQ(calls, 2);
    wrapper().setSink(nullptr);
}

TEST(LoggingWrapper, SetSink_PreviousSinkLogsWhenItGoes_DoesNotBlock) {
    auto held = std::make_shared<LogsWhenDestroyed>();
    wrapper().setSink([held](const LogRecord&) {});
    held.reset();
    const LogCapture log;
    ASSERT_EQ(log.records.size(), 1U);
    EXPECT_EQ(log.records.front().text, "last words");
}

TEST(Trace, Subsystems_DifferAndAreNotZero) {
    EXPECT_NE(Orv::Trace::ExtCm, Orv::Trace::Common);
    EXPECT_NE(Orv::Trace::ExtCm, 0U);
    EXPECT_NE(Orv::Trace::Common, 0U);
}
