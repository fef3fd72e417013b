// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// What could be lost silently: answers, reports, logs, input, and objects.

#include "Program.h"
#include "Terminal.h"

#include <gmock/gmock.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace SystemTest {
namespace {

using testing::HasSubstr;

constexpr const char* kFull = "/dev/full";
constexpr const char* kOutputLost = "orvhost: the standard output cannot be written to its end\n";

TEST(OrvhostLossTest, Output_DiskFull_IsAnError) {
    const std::vector<std::vector<std::string>> calls{
        withSite({"-c", "exists ManagedElement=east"}),
        withSite({"--json", "-c", "tree"}),
        withSite({"--", "graph", "--dot"}),
        {"--help"},
    };
    for (const auto& arguments : calls) {
        const auto result = runOrvhostInto(kFull, arguments);
        EXPECT_EQ(result.status, 1) << arguments.back();
        EXPECT_EQ(result.err, kOutputLost) << arguments.back();
    }
}

TEST(OrvhostLossTest, Output_DiskFullAfterAnotherError_KeepsThatStatus) {
    const auto result = runOrvhostInto(kFull, withSite({"-c", "log", "-c", "gte"}));
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr(kOutputLost));
}

// The log file must not get the number of the closed stream, because then answers would be written
// into it.
TEST(OrvhostLossTest, Output_Closed_IsAnErrorAndGoesNowhereElse) {
    const TemporaryDirectory directory;
    const std::string log = directory.file("log", "");
    const auto result = runOrvhostInto(
        "", withSite({"--log-file", log, "-c", "exists ManagedElement=east", "-c", "log tail"}));
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, kOutputLost);
    EXPECT_EQ(readFile(log), "");
}

// As `head` is, which has its lines.
TEST(OrvhostLossTest, Output_ReaderIsGone_IsNoMessage) {
    const TemporaryDirectory directory;
    const std::string folder = directory.path().string();
    const std::string line = "cd '" + folder + "'; { while [ ! -e gone ]; do sleep 0.01; done; " +
                             ORVHOST_PROGRAM
                             " --help 2>err; echo $? >status; } | "
                             "{ exec 0</dev/null; : >gone; while [ ! -s status ]; do sleep 0.01; "
                             "done; }";
    ASSERT_EQ(std::system(line.c_str()), 0); // NOLINT: a test's own command
    EXPECT_EQ(readFile(folder + "/err"), "");
    EXPECT_EQ(readFile(folder + "/status"), "1\n");
}

TEST(OrvhostLossTest, ReportFile_DiskFull_IsAnError) {
    const TemporaryDirectory directory;
    const std::string scenario = directory.file("a.orv", "exists ManagedElement=Harbour\n");
    const auto result =
        runOrvhost(withHarbour({"--report", "junit", "--report-file", kFull, "check", scenario}));
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.err,
              "orvhost: /dev/full: cannot be written to its end: No space left on device\n");
}

TEST(OrvhostLossTest, LogFile_DiskFull_IsReported) {
    const auto result = runOrvhost(
        withSite({"--log-level", "trace", "--log-file", kFull, "exists", "ManagedElement=east"}));
    EXPECT_EQ(result.out, "yes\n");
    EXPECT_EQ(result.err, "orvhost: the log is not complete: lines could not be written\n");
}

TEST(OrvhostLossTest, Script_ADirectory_IsNoEmptyScript) {
    const TemporaryDirectory directory;
    const auto result = runOrvhost(withSite({"-f", directory.path().string()}));
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err,
              "orvhost: " + directory.path().string() + ": cannot be read: it is a directory\n");
}

// The tables would read a DN only up to its first zero byte.
TEST(OrvhostLossTest, Line_WithAZeroByte_IsUsage) {
    const auto result =
        runOrvhost(withSite({}), "exists ManagedElement=east" + std::string(1, '\0') + "x\n");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "stdin:1: there is a zero byte in the line\n");
}

TEST(OrvhostLossTest, Prompt_WithoutALanguage_KeepsAllCharacters) {
    setenv("LC_ALL", "C", 1);
    Terminal terminal(withHarbour({"--history", ""}));
    unsetenv("LC_ALL");
    ASSERT_TRUE(terminal.waitFor("orvhost> ")) << terminal.seen();
    terminal.type("set ManagedElement=Harbour userLabel=H\xc3\xa4"
                  "fen\r");
    ASSERT_TRUE(terminal.waitFor("set and committed")) << terminal.seen();
    terminal.type("get ManagedElement=Harbour userLabel\r");
    EXPECT_TRUE(terminal.waitFor("\nH\xc3\xa4"
                                 "fen\r\n"))
        << terminal.seen();
    terminal.type("quit\r");
    EXPECT_EQ(terminal.finish(), 0);
}

TEST(OrvhostLossTest, Create_RootByAnotherName_IsRefusedBeforeItIsOutOfReach) {
    std::vector<std::string> arguments = withHarbour({"--keep-going"});
    arguments.erase(arguments.begin() + 8, arguments.begin() + 10); // without data
    const auto result = runOrvhost(arguments, "create ManagedElement=Harbour userLabel=x\n"
                                              "ls\n"
                                              "create ManagedElement=1 userLabel=x\n"
                                              "get ManagedElement=Harbour userLabel\n");
    EXPECT_THAT(result.err,
                HasSubstr("create: ManagedElement=Harbour would be an object that no client can "
                          "name: the element at the root is created as ManagedElement=1, and "
                          "clients know it as ManagedElement=Harbour."));
    EXPECT_EQ(result.out, "created and committed\nx\n");
    EXPECT_EQ(result.status, 2);
}

TEST(OrvhostLossTest, Identity_ThatCannotStandInADn_IsUsage) {
    for (const char* identity : {"a,b", "a=b", " a", "a;b"}) {
        for (const char* option : {"--me-id", "--me-id-fallback"}) {
            const auto result = runOrvhost({"-I", "models", "-m", "site", option, identity, "ls"});
            EXPECT_EQ(result.status, 2) << identity;
            EXPECT_THAT(result.err, HasSubstr(std::string(option) + ": '" + identity +
                                              "' cannot name an object: "));
        }
    }
}

/// The writing end of a named pipe whose reader waits for a line that never comes.
class Waiting {
public:
    explicit Waiting(const std::string& path) {
        std::signal(SIGPIPE, SIG_IGN);
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (mPipe < 0 && std::chrono::steady_clock::now() < deadline) {
            mPipe = open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }
    ~Waiting() { close(mPipe); }
    Waiting(const Waiting&) = delete;
    Waiting& operator=(const Waiting&) = delete;

    bool hasReader() const { return mPipe >= 0 && write(mPipe, " ", 1) == 1; }

    bool losesItsReader() const {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (hasReader() && std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return !hasReader();
    }

private:
    int mPipe = -1;
};

TEST(OrvhostLossTest, Check_Killed_LeavesNoScenarioBehind) {
    const TemporaryDirectory directory;
    const std::string scenario = directory.file("a.orv", "log\n");
    const std::string data = (directory.path() / "data").string();
    ASSERT_EQ(mkfifo(data.c_str(), 0600), 0);
    const pid_t check = fork();
    ASSERT_GE(check, 0);
    if (check == 0) {
        becomeOrvhost({"-I", "models", "-m", "site", "-d", data, "check", scenario});
    }
    const Waiting scenarioOnIt(data);
    EXPECT_TRUE(scenarioOnIt.hasReader());
    kill(check, SIGKILL);
    waitpid(check, nullptr, 0);
    EXPECT_TRUE(scenarioOnIt.losesItsReader());
}

}
}
