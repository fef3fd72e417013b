// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "cli/serve/MemoryReport.h"

#include "LoggingWrapper.h"
#include "runtime/LogSink.h"

#include <gmock/gmock.h>

#include <sstream>
#include <string>

namespace OrvHost {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr auto kMegabyte = std::int64_t{1024} * 1024;

class MemoryReportTest : public testing::Test {
protected:
    explicit MemoryReportTest(unsigned int level = 6) {
        Orv::LoggingWrapper::instance()->setLevel(level);
    }
    ~MemoryReportTest() override { Orv::LoggingWrapper::instance()->setLevel(mLevelBefore); }

    /// The line in the log.
    std::string logged(std::int64_t listMegabytes) {
        mOut.str({});
        mReport.log({7, listMegabytes * kMegabyte}, 900 * kMegabyte);
        return mOut.str();
    }

    const unsigned int mLevelBefore = Orv::LoggingWrapper::instance()->get_level();
    std::ostringstream mOut;
    const LogSink mSink{mOut, LogFormat::Text};
    MemoryReport mReport;
};

TEST_F(MemoryReportTest, Log_Line_TellsBothSizesAndHowMany) {
    EXPECT_THAT(logged(12), AllOf(HasSubstr(" info "), HasSubstr("memory: 900 MB"),
                                  HasSubstr("12 MB for 7 written references")));
}

TEST_F(MemoryReportTest, Log_ListThatHasDoubled_IsAWarningOnce) {
    EXPECT_THAT(logged(255), HasSubstr(" info "));
    EXPECT_THAT(logged(256), HasSubstr(" warning "));
    EXPECT_THAT(logged(511), HasSubstr(" info "));
    EXPECT_THAT(logged(1500), HasSubstr(" warning "));
    EXPECT_THAT(logged(1500), HasSubstr(" info "));
    EXPECT_THAT(logged(2048), HasSubstr(" warning "));
}

class QuietMemoryReportTest : public MemoryReportTest {
protected:
    QuietMemoryReportTest() : MemoryReportTest(4) {}
};

TEST_F(QuietMemoryReportTest, Log_LevelOfWarnings_HasTheWarningsOnly) {
    EXPECT_THAT(logged(255), IsEmpty());
    EXPECT_THAT(logged(256), HasSubstr(" warning "));
}

}
}
