// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "runtime/LogSink.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <sstream>
#include <stdexcept>
#include <thread>

#include <unistd.h>

namespace OrvHost {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::SizeIs;

Orv::LoggingWrapper& logger() {
    return *Orv::LoggingWrapper::instance();
}

void logBothForms(int level, const char* text) {
    logger().log_printf("start", level, 1, "%s", text);
    logger().trace_v2_printf(Orv::Trace::ExtCm, level, "ext_cm/src/MoImpl3", "start", 12, "%s",
                             text);
}

TEST(LogSinkTest, Text_BothFormsOfAMessage_GiveOneLine) {
    std::ostringstream out;
    const LogSink sink(out, LogFormat::Text);
    logBothForms(3, "Could not lookup cmrouterservice");
    EXPECT_THAT(out.str(),
                MatchesRegex("....-..-..T..:..:..\\....Z error ext_cm ext_cm/src/MoImpl3:12 "
                             "start: Could not lookup cmrouterservice\n"));
}

TEST(LogSinkTest, Text_LineEndInMessage_StaysOneLine) {
    std::ostringstream out;
    const LogSink sink(out, LogFormat::Text);
    logBothForms(4, "one\ntwo\tthree");
    EXPECT_THAT(out.str(), EndsWith("start: one\\ntwo three\n"));
}

TEST(LogSinkTest, Json_Message_IsOneDocumentWithAllFields) {
    std::ostringstream out;
    const LogSink sink(out, LogFormat::Json);
    logBothForms(6, "say \"hello\"\n");
    const auto document = nlohmann::json::parse(out.str());
    EXPECT_EQ(document["level"], 6);
    EXPECT_EQ(document["levelName"], "info");
    EXPECT_EQ(document["subsystem"], "ext_cm");
    EXPECT_EQ(document["file"], "ext_cm/src/MoImpl3");
    EXPECT_EQ(document["line"], 12);
    EXPECT_EQ(document["function"], "start");
    EXPECT_EQ(document["text"], "say \"hello\"\n");
}

TEST(LogSinkTest, Json_TextThatIsNoUtf8_IsStillADocument) {
    std::ostringstream out;
    const LogSink sink(out, LogFormat::Json);
    logBothForms(3, "broken \xff text");
    EXPECT_TRUE(nlohmann::json::accept(out.str()));
}

TEST(LogSinkTest, Subsystem_CommonAndUnknown_AreNamed) {
    std::ostringstream out;
    const LogSink sink(out, LogFormat::Text);
    logger().trace_v2_printf(Orv::Trace::Common, 4, "f", "g", 1, "first");
    logger().trace_v2_printf(987654321, 5, "f", "g", 1, "second");
    EXPECT_THAT(out.str(), HasSubstr(" warning common f:1 g: first\n"));
    EXPECT_THAT(out.str(), HasSubstr(" 5 987654321 f:1 g: second\n"));
}

TEST(LogSinkTest, Recent_MoreThanIsKept_GivesTheLatest) {
    std::ostringstream out;
    const LogSink sink(out, LogFormat::Text);
    for (std::size_t message = 0; message < LogSink::kKept + 5; ++message) {
        logBothForms(3, std::to_string(message).c_str());
    }
    EXPECT_THAT(sink.recent(2), ElementsAre(EndsWith(": 1003"), EndsWith(": 1004")));
    EXPECT_THAT(sink.recent(LogSink::kKept + 100), SizeIs(LogSink::kKept));
    EXPECT_THAT(sink.recent(0), IsEmpty());
}

TEST(LogSinkTest, File_TwoSinksInTurn_AppendsAndDropsWhatComesAfter) {
    const auto path =
        std::filesystem::temp_directory_path() / ("log_sink_test." + std::to_string(getpid()));
    std::filesystem::remove(path);
    {
        const LogSink sink(path.string(), LogFormat::Text);
        logBothForms(3, "first");
    }
    logBothForms(3, "nobody listens");
    {
        const LogSink sink(path.string(), LogFormat::Text);
        logBothForms(3, "second");
    }
    std::ifstream file(path);
    const std::string text(std::istreambuf_iterator<char>(file), {});
    std::filesystem::remove(path);
    EXPECT_THAT(text, HasSubstr("start: first\n"));
    EXPECT_THAT(text, HasSubstr("start: second\n"));
    EXPECT_THAT(text, testing::Not(HasSubstr("nobody")));
}

TEST(LogSinkTest, File_InMissingDirectory_IsRefusedWithPathAndReason) {
    try {
        const LogSink sink("no/such/directory/log", LogFormat::Text);
        FAIL() << "opened";
    } catch (const std::runtime_error& failure) {
        EXPECT_STREQ(failure.what(), "no/such/directory/log: cannot be opened for writing: "
                                     "No such file or directory");
    }
}

TEST(LogSinkTest, ManyThreads_LinesStayWhole) {
    std::ostringstream out;
    {
        const LogSink sink(out, LogFormat::Json);
        std::vector<std::thread> writers;
        for (int writer = 0; writer < 4; ++writer) {
            writers.emplace_back([] {
                for (int message = 0; message < 200; ++message) {
                    logBothForms(3, "message");
                }
            });
        }
        for (std::thread& writer : writers) {
            writer.join();
        }
        EXPECT_THAT(sink.recent(10), SizeIs(10));
    }
    std::istringstream lines(out.str());
    std::string line;
    int count = 0;
    while (std::getline(lines, line)) {
        EXPECT_TRUE(nlohmann::json::accept(line));
        ++count;
    }
    EXPECT_EQ(count, 800);
}

}
}
