// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// orvhost with a store that several hosts share.

#include "PostgresqlServer.h"
#include "Program.h"

#include <gmock/gmock.h>

#include <array>
#include <chrono>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace SystemTest {
namespace {

using testing::AllOf;
using testing::HasSubstr;

/// The example network in a store of its own.
class OrvhostSharedStore : public testing::Test {
protected:
    static std::vector<std::string> onModel(std::vector<std::string> more) {
        more.insert(more.begin(), {"-I", EXAMPLES_DIR "/models", "-m", "ran-element", "-m",
                                   "ran-equipment", "-m", "ran-function", "--me-id", "Harbour"});
        return more;
    }
    static ProgramResult run(const std::vector<std::string>& more) {
        return runOrvhost(onModel(more));
    }
    void fill() const {
        const ProgramResult made = run({"store", "init", mStore});
        ASSERT_EQ(made.status, 0) << made.err;
        const ProgramResult filled =
            run({"-d", EXAMPLES_DIR "/data/harbour.json", "--store", mStore, "count"});
        ASSERT_EQ(filled.status, 0) << filled.err;
    }

    OrvHost::PostgresqlServer& mServer = OrvHost::PostgresqlServer::instance();
    std::string mStore = "postgresql:" + mServer.target(mServer.newSchema());
};

TEST_F(OrvhostSharedStore, Commits_AreThereForTheNextHost) {
    fill();
    const ProgramResult set =
        run({"--store", mStore, "set", "ManagedElement=Harbour", "userLabel=Pier"});
    EXPECT_EQ(set.status, 0) << set.err;
    EXPECT_EQ(run({"--store", mStore, "get", "ManagedElement=Harbour", "userLabel"}).out, "Pier\n");
    const ProgramResult again =
        run({"-d", EXAMPLES_DIR "/data/harbour.json", "--store", mStore, "count"});
    EXPECT_EQ(again.status, 3);
    EXPECT_THAT(again.err, HasSubstr("has objects already"));
}

TEST_F(OrvhostSharedStore, StoreCommands_WorkOnTheTables) {
    const ProgramResult early = run({"--store", mStore, "count"});
    EXPECT_EQ(early.status, 3);
    EXPECT_THAT(early.err, HasSubstr("orvhost store init creates the tables"));
    fill();
    EXPECT_EQ(run({"--store", mStore, "set", "ManagedElement=Harbour", "userLabel=Pier"}).status,
              0);
    EXPECT_THAT(runOrvhost({"store", "info", mStore}).out,
                AllOf(HasSubstr("commits      1\nkept from    1\nlast commit  20"),
                      HasSubstr(", process ")));
    EXPECT_THAT(runOrvhost({"--json", "store", "info", mStore}).out,
                HasSubstr(R"("commits":1,"firstEntry":1)"));
    EXPECT_EQ(runOrvhost({"store", "trim", mStore}).out, "0 entries deleted\n");
    EXPECT_EQ(runOrvhost({"store", "trim", mStore, "0", "0"}).out, "1 entry deleted\n");
    EXPECT_EQ(runOrvhost({"store", "trim", mStore, "some"}).status, 2);
    for (const char* verb : {"check", "compact"}) {
        EXPECT_EQ(runOrvhost({"store", verb, mStore}).status, 2) << verb;
    }
    EXPECT_EQ(run({"--store", mStore, "--store-sync", "normal", "count"}).status, 2);
    const TemporaryDirectory directory;
    const std::string out = directory.path() / "out.json";
    const ProgramResult exported = run({"store", "export", mStore, out});
    EXPECT_EQ(exported.status, 0) << exported.err;
    EXPECT_THAT(readFile(out), HasSubstr(R"("userLabel": "Pier")"));
}

/// A host whose commands come one after the other, while it runs.
class RunningHost {
public:
    explicit RunningHost(const std::vector<std::string>& arguments) {
        int commands[2];
        if (pipe2(commands, O_CLOEXEC) != 0) {
            throw std::runtime_error("no pipe");
        }
        mProcess = fork();
        if (mProcess == 0) {
            dup2(commands[0], STDIN_FILENO);
            const int out = open(file().c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
            dup2(out, STDOUT_FILENO);
            dup2(out, STDERR_FILENO);
            becomeOrvhost(arguments);
        }
        close(commands[0]);
        mCommands = commands[1];
    }
    ~RunningHost() {
        close(mCommands);
        waitpid(mProcess, nullptr, 0);
    }
    RunningHost(const RunningHost&) = delete;
    RunningHost& operator=(const RunningHost&) = delete;

    void say(const std::string& command) const {
        const std::string line = command + "\n";
        ASSERT_EQ(write(mCommands, line.data(), line.size()), static_cast<ssize_t>(line.size()));
    }
    /// Waits until it has written \p text, for some seconds at most.
    bool writes(const std::string& text) const {
        for (int round = 0; round < 2000; ++round) {
            if (readFile(file()).find(text) != std::string::npos) {
                return true;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        ADD_FAILURE() << text << " is not in:\n" << readFile(file());
        return false;
    }

private:
    std::string file() const { return mDirectory.path() / "out"; }

    const TemporaryDirectory mDirectory;
    pid_t mProcess = -1;
    int mCommands = -1;
};

TEST_F(OrvhostSharedStore, Diff_ComparesWithWhatHostsUse) {
    fill();
    const RunningHost host(onModel({"--store", mStore, "--keep-going", "-f", "-"}));
    host.say("set ManagedElement=Harbour userLabel=Pier");
    EXPECT_TRUE(host.writes("set and committed"));
    const std::string data = EXAMPLES_DIR "/data/harbour.json";
    const std::string difference =
        "~ ManagedElement=Harbour\n    userLabel: \"Harbour\" -> \"Pier\"\n";
    EXPECT_EQ(run({"diff", data, mStore}).out, difference);
    EXPECT_EQ(run({"-d", data, "diff", "committed", mStore}).out, difference);
    EXPECT_EQ(run({"--store", mStore, "diff", mStore, "committed"}).out, "");
    const ProgramResult none = run({"diff", "postgresql:host=/nowhere", "committed"});
    EXPECT_EQ(none.status, 1);
    EXPECT_THAT(none.err, HasSubstr("diff: "));
}

TEST_F(OrvhostSharedStore, FileOfAStore_CanMoveIntoTheTables) {
    const TemporaryDirectory directory;
    const std::string file = directory.path() / "old.store";
    ASSERT_EQ(run({"-d", EXAMPLES_DIR "/data/harbour.json", "--store", file, "count"}).status, 0);
    ASSERT_EQ(run({"store", "init", mStore}).status, 0);
    const ProgramResult moved = run({"store", "migrate", file, mStore});
    EXPECT_EQ(moved.status, 0) << moved.err;
    EXPECT_EQ(run({"--store", mStore, "count"}).out, run({"--store", file, "count"}).out);
}

TEST_F(OrvhostSharedStore, ServerAway_IsSaidOnceAndReadsGoOn) {
    OrvHost::PostgresqlServer server;
    mStore = "postgresql:" + server.target(server.newSchema());
    fill();
    const RunningHost host(onModel({"--store", mStore, "--keep-going", "-f", "-"}));
    const RunningHost fresh(onModel({"--store", mStore, "--fresh", "--keep-going", "-f", "-"}));
    host.say("set ManagedElement=Harbour userLabel=one");
    EXPECT_TRUE(host.writes("set and committed"));
    fresh.say("get ManagedElement=Harbour userLabel");
    EXPECT_TRUE(fresh.writes("one\n"));
    server.stop();
    EXPECT_TRUE(host.writes("the store of PostgreSQL: connection to server"));
    host.say("get ManagedElement=Harbour userLabel");
    EXPECT_TRUE(host.writes("one\n"));
    host.say("set ManagedElement=Harbour userLabel=two");
    EXPECT_TRUE(host.writes("not committed: OrvHostStoreUnavailable"));
    fresh.say("get ManagedElement=Harbour userLabel");
    EXPECT_TRUE(
        fresh.writes("answered -105 (OrvHostStoreUnavailable: nothing can be committed now) at "
                     "join"));
    server.start();
    EXPECT_TRUE(host.writes("the store can be reached again"));
    host.say("set ManagedElement=Harbour userLabel=three");
    host.say("get ManagedElement=Harbour userLabel");
    EXPECT_TRUE(host.writes("three\n"));
    fresh.say("get ManagedElement=Harbour userLabel");
    EXPECT_TRUE(fresh.writes("three\n"));
}

TEST_F(OrvhostSharedStore, Commits_ReadsNoOlderThanACommitElsewhere) {
    fill();
    const RunningHost reader(onModel({"--store", mStore, "--keep-going", "-f", "-"}));
    reader.say("commits");
    EXPECT_TRUE(reader.writes("0\n"));
    EXPECT_EQ(
        run({"--store", mStore, "-c", "set ManagedElement=Harbour userLabel=new", "-c", "commits"})
            .out,
        "set and committed\n1\n");
    reader.say("commits 1");
    EXPECT_TRUE(reader.writes("1\n"));
    reader.say("get ManagedElement=Harbour userLabel");
    EXPECT_TRUE(reader.writes("new\n"));
    reader.say("commits 5 0");
    EXPECT_TRUE(reader.writes("commit 5 has not come within 0 ms; the last one is commit 1"));
    EXPECT_EQ(run({"--store", mStore, "commits", "x"}).status, 2);
    EXPECT_EQ(run({"--store", mStore, "commits", "1", "x"}).status, 2);
    EXPECT_THAT(run({"--store", mStore, "--json", "commits"}).out,
                HasSubstr(R"({"command":"commits","last":1})"));
}

/// Sets both sides of associations, again and again, until it has done so often enough.
std::string movesText(int start) {
    const std::string equipment = "ManagedElement=Harbour,Equipment=1";
    std::string text;
    for (int round = start; round < start + 60; ++round) {
        text += "set " + equipment + ",RadioUnit=1 antennaRef=" + equipment +
                ",AntennaUnit=" + (round % 2 == 0 ? "2" : "1") + ",Antenna=1\n";
    }
    return text;
}

std::size_t timesIn(const std::string& text, std::string_view part) {
    std::size_t times = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++times;
    }
    return times;
}

// Through the component: a conflict leaves neither side of an association changed, so data that is
// loaded at a start, where both sides must fit, is accepted.
TEST_F(OrvhostSharedStore, TwoHosts_KeepAssociationsInStep) {
    fill();
    const TemporaryDirectory directory;
    std::vector<std::thread> hosts;
    std::array<ProgramResult, 2> results;
    for (std::size_t at = 0; at < results.size(); ++at) {
        const std::string script =
            directory.file("moves" + std::to_string(at), movesText(static_cast<int>(at)));
        hosts.emplace_back([this, script, &result = results[at]] {
            result = run({"--store", mStore, "--fresh", "--keep-going", "-f", script});
        });
    }
    for (std::thread& host : hosts) {
        host.join();
    }
    // One host can lose each time: the other one is as fast as it can be.
    EXPECT_THAT(results[0].out + results[1].out, HasSubstr("committed"));
    for (const ProgramResult& result : results) {
        EXPECT_EQ(timesIn(result.err, "not committed: "),
                  timesIn(result.err, "not committed: OrvHostWriteConflict"))
            << result.err;
    }
    const std::string out = directory.path() / "out.json";
    ASSERT_EQ(run({"store", "export", mStore, out}).status, 0);
    EXPECT_EQ(run({"-d", out, "count"}).err, "");
    EXPECT_THAT(runOrvhost({"store", "info", mStore}).out, HasSubstr("\nlast commit  20"));
}

}
}
