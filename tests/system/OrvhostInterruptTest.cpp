// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Ctrl-C, and the end of a session, at a terminal.

#include "LogValve.h"
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

constexpr int kMasts = 20000;

/// Data whose listing takes much longer than a key press.
std::string manyMasts() {
    std::string text = R"({"site:ManagedElement": [{"managedElementId": "1", "Mast": [)";
    for (int mast = 0; mast < kMasts; ++mast) {
        text +=
            (mast == 0 ? "" : ",") + std::string(R"({"mastId": "m)") + std::to_string(mast) + "\"}";
    }
    return text + "]}]}";
}

/// What a load logs when it has created some of these objects.
constexpr const char* kFirstWrites = "class: Mast, attrname: mastId, attrvalue: m9";

constexpr int kPairs = 1000;

/// Masts and antennas that refer to each other: much to write and to validate.
std::string manyPairs() {
    std::string masts;
    std::string antennas;
    for (int pair = 0; pair < kPairs; ++pair) {
        const std::string number = std::to_string(pair);
        masts += (pair == 0 ? "" : ",") + (R"({"mastId": "m)" + number) +
                 R"(", "antennas": ["ManagedElement=1,Antenna=a)" + number + "\"]}";
        antennas += (pair == 0 ? "" : ",") + (R"({"antennaId": "a)" + number) +
                    R"(", "mast": "ManagedElement=1,Mast=m)" + number + "\"}";
    }
    return R"({"site:ManagedElement": [{"managedElementId": "1", "Mast": [)" + masts +
           R"(], "Antenna": [)" + antennas + "]}]}";
}

/// The pause keeps the two signals apart.
void interruptTwice(Terminal& terminal) {
    terminal.type(kControlC);
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    terminal.type(kControlC);
}

class OrvhostInterruptTest : public testing::Test {
protected:
    std::vector<std::string> withMany() const {
        return {"-I",        "models", "-m",
                "site",      "-d",     mDirectory.file("many.json", manyMasts()),
                "--history", ""};
    }

    /// Nothing but the model; the log, which has each step, goes to \p log.
    static std::vector<std::string> withLog(const std::string& log) {
        return {"-I",    "models",     "-m", "site",      "--log-level",
                "trace", "--log-file", log,  "--history", ""};
    }

    /// Types a command, and Ctrl-C when it has logged \p step and still has much to do.
    static void interruptAt(LogValve& log, const std::string& step, Terminal& terminal,
                            const std::string& command) {
        log.holdAt(step);
        terminal.type(command + "\r");
        ASSERT_TRUE(log.waitUntilHeld()) << command;
        terminal.type(kControlC);
        log.release();
    }

    /// A file whose reader waits until somebody writes.
    std::string pipe() const {
        std::string path = (mDirectory.path() / "pipe").string();
        EXPECT_EQ(mkfifo(path.c_str(), 0600), 0);
        return path;
    }

    /// The path of a new pipe for a log.
    std::string logPipe() {
        return (mDirectory.path() / ("log" + std::to_string(++mLogs))).string();
    }

    /// Waits until a file is being written.
    bool waitForTemporary() const {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (std::chrono::steady_clock::now() < deadline) {
            for (const auto& entry : std::filesystem::directory_iterator(mDirectory.path())) {
                if (entry.path().extension() == ".tmp") {
                    return true;
                }
            }
            std::this_thread::yield();
        }
        return false;
    }

    TemporaryDirectory mDirectory;
    int mLogs = 0;
};

TEST_F(OrvhostInterruptTest, LongListing_Interrupted_StopsAndTransactionsStay) {
    for (const std::string command : {"tree", "ls ManagedElement=1"}) {
        Terminal terminal(withMany());
        ASSERT_TRUE(terminal.waitFor(kPrompt)) << terminal.seen();
        terminal.type("begin work\r");
        ASSERT_TRUE(terminal.waitFor("orvhost[work]> ")) << terminal.seen();
        terminal.type("create ManagedElement=1,Mast=new\r");
        ASSERT_TRUE(terminal.waitFor("created")) << terminal.seen();
        ASSERT_TRUE(terminal.waitFor("orvhost[work]> "));
        terminal.type(command + "\r");
        ASSERT_TRUE(terminal.waitFor("Mast=m10")) << terminal.seen();
        terminal.type(kControlC);
        ASSERT_TRUE(terminal.waitFor(": cancelled")) << command;
        EXPECT_THAT(terminal.seen(), testing::Not(HasSubstr("Mast=m19999"))) << command;
        ASSERT_TRUE(terminal.waitFor("orvhost[work]> ")) << terminal.seen();
        terminal.type("exists ManagedElement=1,Mast=new\r");
        EXPECT_TRUE(terminal.waitFor("\nyes\r\n")) << terminal.seen();
        ASSERT_TRUE(terminal.waitFor("orvhost[work]> "));
        terminal.type("abort\r");
        ASSERT_TRUE(terminal.waitFor(kPrompt));
        terminal.type("quit\r");
        EXPECT_EQ(terminal.finish(), 0);
    }
}

TEST_F(OrvhostInterruptTest, Load_InterruptedInATransaction_TellsWhatStaysInIt) {
    const std::string pipe = logPipe();
    LogValve log(pipe);
    Terminal terminal(withLog(pipe));
    ASSERT_TRUE(terminal.waitFor(kPrompt)) << terminal.seen();
    terminal.type("begin work\r");
    ASSERT_TRUE(terminal.waitFor("orvhost[work]> ")) << terminal.seen();
    interruptAt(log, kFirstWrites, terminal, "load " + mDirectory.file("pairs.json", manyPairs()));
    ASSERT_TRUE(terminal.waitFor("load: cancelled; ")) << terminal.seen();
    ASSERT_TRUE(terminal.waitFor(" changes stay in the transaction")) << terminal.seen();
    ASSERT_TRUE(terminal.waitFor("orvhost[work]> ")) << terminal.seen();
    terminal.type("exists ManagedElement=1,Mast=m0\r");
    EXPECT_TRUE(terminal.waitFor("\nyes\r\n")) << terminal.seen();
    ASSERT_TRUE(terminal.waitFor("orvhost[work]> "));
    terminal.type("exists ManagedElement=1,Antenna=a999\r"); // the last one
    EXPECT_TRUE(terminal.waitFor("\nno\r\n")) << terminal.seen();
    ASSERT_TRUE(terminal.waitFor("orvhost[work]> "));
    terminal.type("abort\r");
    ASSERT_TRUE(terminal.waitFor(kPrompt));
    terminal.type("quit\r");
    EXPECT_EQ(terminal.finish(), 0);
}

TEST_F(OrvhostInterruptTest, Load_InterruptedOutsideOfTransactions_ChangesNothing) {
    const std::string pipe = logPipe();
    LogValve log(pipe);
    Terminal terminal(withLog(pipe));
    ASSERT_TRUE(terminal.waitFor(kPrompt)) << terminal.seen();
    interruptAt(log, kFirstWrites, terminal, "load " + mDirectory.file("pairs.json", manyPairs()));
    ASSERT_TRUE(terminal.waitFor("load: cancelled; nothing is changed")) << terminal.seen();
    ASSERT_TRUE(terminal.waitFor(kPrompt)) << terminal.seen();
    terminal.type("exists ManagedElement=1\r");
    EXPECT_TRUE(terminal.waitFor("\nno\r\n")) << terminal.seen();
    ASSERT_TRUE(terminal.waitFor(kPrompt));
    terminal.type("quit\r");
    EXPECT_EQ(terminal.finish(), 0);
}

// The component answers whole: no transaction is left half validated or half committed.
TEST_F(OrvhostInterruptTest, VerdictAndCommit_Interrupted_AreAnsweredWhole) {
    const std::string data = mDirectory.file("pairs.json", manyPairs());
    const std::vector<std::pair<std::string, std::string>> answers{{"validate", "valid\r\n"},
                                                                   {"commit", "committed\r\n"}};
    for (const auto& [command, answer] : answers) {
        const std::string pipe = logPipe();
        LogValve log(pipe);
        Terminal terminal(withLog(pipe));
        ASSERT_TRUE(terminal.waitFor(kPrompt)) << terminal.seen();
        terminal.type("begin work\r");
        ASSERT_TRUE(terminal.waitFor("orvhost[work]> ")) << terminal.seen();
        terminal.type("load " + data + "\r");
        ASSERT_TRUE(terminal.waitFor("loaded")) << terminal.seen();
        ASSERT_TRUE(terminal.waitFor("orvhost[work]> "));
        interruptAt(log, "validateBiDirs", terminal, command);
        ASSERT_TRUE(terminal.waitFor(answer)) << terminal.seen();
        const bool isOpen = command == "validate";
        ASSERT_TRUE(terminal.waitFor(isOpen ? "orvhost[work]> " : kPrompt)) << terminal.seen();
        terminal.type("exists ManagedElement=1,Antenna=a999\r");
        EXPECT_TRUE(terminal.waitFor("\nyes\r\n")) << terminal.seen();
        terminal.type(isOpen ? "abort\rquit\r" : "quit\r");
        EXPECT_EQ(terminal.finish(), 0);
    }
}

TEST_F(OrvhostInterruptTest, Save_Interrupted_KeepsTheOldFileAndTheSession) {
    const std::string file = mDirectory.file("out.json", "old");
    Terminal terminal(withMany());
    ASSERT_TRUE(terminal.waitFor(kPrompt)) << terminal.seen();
    terminal.type("save " + file + "\r");
    ASSERT_TRUE(waitForTemporary());
    terminal.type(kControlC);
    ASSERT_TRUE(terminal.waitFor("save: cancelled")) << terminal.seen();
    ASSERT_TRUE(terminal.waitFor(kPrompt)) << terminal.seen();
    EXPECT_EQ(readFile(file), "old");
    terminal.type("quit\r");
    EXPECT_EQ(terminal.finish(), 0);
}

/// Waits until the process has written its number into \p file.
pid_t numberIn(const std::filesystem::path& file) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (std::chrono::steady_clock::now() < deadline) {
        const std::string text = std::filesystem::exists(file) ? readFile(file) : std::string();
        if (!text.empty() && text.back() == '\n') {
            return std::stoi(text);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return -1;
}

/// Lets a stand-in be found in PATH as the program that draws. At Ctrl-C it does what dot does: it
/// writes a part of a picture and succeeds. It writes its number into the file "drawer".
class StandInForDot {
public:
    explicit StandInForDot(const TemporaryDirectory& directory) : mBefore(getenv("PATH")) {
        const std::string program =
            directory.file("dot", "#!/bin/sh\ntrap 'echo \"<svg/>\"; exit 0' INT\necho $$ > '" +
                                      (directory.path() / "drawer").string() +
                                      "'\nfor step in 1 2 3 4 5 6 7 8 9; do sleep 10; done\n");
        std::filesystem::permissions(program, std::filesystem::perms::owner_all);
        setenv("PATH", (directory.path().string() + ":" + mBefore).c_str(), 1);
    }
    ~StandInForDot() { setenv("PATH", mBefore.c_str(), 1); }
    StandInForDot(const StandInForDot&) = delete;
    StandInForDot& operator=(const StandInForDot&) = delete;

private:
    std::string mBefore;
};

TEST_F(OrvhostInterruptTest, Drawing_Interrupted_KeepsTheOldPictureAndEndsTheDrawer) {
    const StandInForDot dot(mDirectory);
    const std::string picture = mDirectory.file("picture.svg", "old");
    Terminal terminal(withSite({"--history", ""}));
    ASSERT_TRUE(terminal.waitFor(kPrompt)) << terminal.seen();
    terminal.type("graph -o " + picture + "\r");
    const pid_t drawer = numberIn(mDirectory.path() / "drawer");
    ASSERT_GT(drawer, 0);
    terminal.type(kControlC);
    ASSERT_TRUE(terminal.waitFor("graph: cancelled")) << terminal.seen();
    ASSERT_TRUE(terminal.waitFor(kPrompt)) << terminal.seen();
    EXPECT_EQ(readFile(picture), "old");
    EXPECT_EQ(kill(drawer, 0), -1);
    terminal.type("quit\r");
    EXPECT_EQ(terminal.finish(), 0);
}

TEST_F(OrvhostInterruptTest, Drawing_OfACommandOfTheShell_EndsWithIt) {
    const StandInForDot dot(mDirectory);
    const std::string picture = mDirectory.file("picture.svg", "old");
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        becomeOrvhost(withSite({"graph", "-o", picture}));
    }
    const pid_t drawer = numberIn(mDirectory.path() / "drawer");
    kill(child, SIGTERM);
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_GT(drawer, 0);
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGTERM);
    EXPECT_EQ(readFile(picture), "old");
    EXPECT_EQ(kill(drawer, 0), -1);
}

TEST_F(OrvhostInterruptTest, SecondInterrupt_WhileACommandCannotStop_Asks) {
    const std::string file = pipe();
    Terminal terminal(withMany());
    ASSERT_TRUE(terminal.waitFor(kPrompt)) << terminal.seen();
    terminal.type("source " + file + "\r");
    ASSERT_TRUE(terminal.waitFor("\r\n"));
    const int writer = open(file.c_str(), O_WRONLY); // waits until it is read
    interruptTwice(terminal);
    ASSERT_TRUE(terminal.waitFor("End orvhost?")) << terminal.seen();
    terminal.type("n\r");
    ASSERT_EQ(write(writer, "\n", 1), 1);
    close(writer);
    ASSERT_TRUE(terminal.waitFor(kPrompt)) << terminal.seen();
    terminal.type("source " + file + "\r");
    ASSERT_TRUE(terminal.waitFor("\r\n"));
    const int again = open(file.c_str(), O_WRONLY);
    interruptTwice(terminal);
    ASSERT_TRUE(terminal.waitFor("End orvhost?")) << terminal.seen();
    terminal.type("y\r");
    EXPECT_EQ(terminal.finish(), -1); // by the signal
    close(again);
}

TEST_F(OrvhostInterruptTest, SecondInterrupt_AtAnEmptyLine_Asks) {
    Terminal terminal(withSite({"--history", ""}));
    ASSERT_TRUE(terminal.waitFor(kPrompt)) << terminal.seen();
    terminal.type(kControlC);
    ASSERT_TRUE(terminal.waitFor(kPrompt)) << terminal.seen();
    terminal.type(kControlC);
    ASSERT_TRUE(terminal.waitFor("End orvhost? [y/N] ")) << terminal.seen();
    terminal.type("y\r");
    EXPECT_EQ(terminal.finish(), 0);
}

TEST_F(OrvhostInterruptTest, SecondInterrupt_AfterTheFirstEndedACommand_Asks) {
    Terminal terminal(withMany());
    ASSERT_TRUE(terminal.waitFor(kPrompt)) << terminal.seen();
    terminal.type("tree\r");
    ASSERT_TRUE(terminal.waitFor("Mast=m10")) << terminal.seen();
    terminal.type(kControlC);
    ASSERT_TRUE(terminal.waitFor(": cancelled"));
    ASSERT_TRUE(terminal.waitFor(kPrompt)) << terminal.seen();
    terminal.type(kControlC);
    ASSERT_TRUE(terminal.waitFor("End orvhost? [y/N] ")) << terminal.seen();
    terminal.type("n\r");
    ASSERT_TRUE(terminal.waitFor(kPrompt)) << terminal.seen();
    terminal.type(kControlC); // a first one again
    ASSERT_TRUE(terminal.waitFor(kPrompt)) << terminal.seen();
    terminal.type("quit\r");
    EXPECT_EQ(terminal.finish(), 0);
}

TEST_F(OrvhostInterruptTest, Quit_WithOpenWrites_Asks) {
    for (const std::string end : {"quit\r", "exit\r", kControlD}) {
        Terminal terminal(withSite({"--history", ""}));
        ASSERT_TRUE(terminal.waitFor(kPrompt)) << terminal.seen();
        terminal.type("begin move\r");
        ASSERT_TRUE(terminal.waitFor("orvhost[move]> ")) << terminal.seen();
        terminal.type("delete ManagedElement=east,Mast=a\r");
        ASSERT_TRUE(terminal.waitFor("deleted")) << terminal.seen();
        ASSERT_TRUE(terminal.waitFor("orvhost[move]> "));
        terminal.type(end);
        ASSERT_TRUE(terminal.waitFor("lost at the end: move. End? [y/N] ")) << terminal.seen();
        terminal.type("n\r");
        ASSERT_TRUE(terminal.waitFor("orvhost[move]> ")) << terminal.seen();
        terminal.type(end);
        ASSERT_TRUE(terminal.waitFor("End? [y/N] ")) << terminal.seen();
        terminal.type("y\r");
        EXPECT_EQ(terminal.finish(), 0);
    }
}

TEST_F(OrvhostInterruptTest, Command_OfTheShell_EndsByTheSignal) {
    const std::string file = pipe();
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        becomeOrvhost(withSite({"source", file}));
    }
    const int writer = open(file.c_str(), O_WRONLY);
    kill(child, SIGINT);
    int status = 0;
    waitpid(child, &status, 0);
    close(writer);
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGINT);
}

}
}
