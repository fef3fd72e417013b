// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The shells of a server, beside the sessions of its protocol.

#include "ShellScene.h"

#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

namespace OrvHost {
namespace {

using testing::HasSubstr;

const std::string kUnit = "ManagedElement=Harbour,Equipment=1,RadioUnit=";
const std::string kCabinet = "ManagedElement=Harbour,Equipment=1,Cabinet=";

std::size_t countOf(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

class ServedShellTest : public ShellScene {};

TEST_F(ServedShellTest, Watch_ManyLargeCommits_KeepsTheLastOnesThatFit) {
    startShells();
    ShellClient idle(path);
    ShellClient writer(path);
    ASSERT_THAT(idle.ask("watch /"), HasSubstr("/"));
    const std::string name(900'000, 'x');
    for (int number = 10; number < 50; ++number) {
        ASSERT_EQ(writer.ask("create " + kCabinet + std::to_string(number) + name),
                  "created and committed\n");
    }
    const std::string news = idle.ask("exists " + kUnit + "1");
    EXPECT_THAT(news.substr(0, 100), HasSubstr(" commits before these, too many to keep\n"));
    EXPECT_EQ(countOf(news, "=49xxx"), 1U) << "the last one";
    EXPECT_EQ(countOf(news, "=20xxx"), 0U);
    EXPECT_LT(news.size(), std::size_t{17} << 20U);
    EXPECT_GT(countOf(news, "commit "), 4U);
    EXPECT_EQ(idle.ask("exists " + kUnit + "1"), "yes\n") << "once";
    EXPECT_THAT(writer.ask("set " + kUnit + "1 userLabel=short"), HasSubstr("committed"));
    EXPECT_THAT(idle.ask("exists " + kUnit + "1"), HasSubstr("short")) << "there is room again";
}

TEST_F(ServedShellTest, ExceptionInAShell_EndsTheShellAlone) {
    std::atomic<int> turn{0};
    prepare = [&turn](Session&) {
        if (++turn == 1) {
            throw std::runtime_error("the model is gone");
        }
        if (turn == 2) {
            throw 7; // NOLINT: not all exceptions are of the standard's
        }
    };
    startShells();
    EXPECT_TRUE(ShellClient(path).hasEnded());
    EXPECT_TRUE(ShellClient(path).hasEnded());
    EXPECT_EQ(ShellClient(path).ask("exists " + kUnit + "1"), "yes\n");
}

TEST_F(ServedShellTest, ManyShellsBesideSessions_EndWithNothingOpen) {
    constexpr int kTurns = 20;
    startShells();
    std::atomic<int> commits{0};
    std::vector<std::thread> clients;
    for (int number = 11; number <= 14; ++number) {
        clients.emplace_back([&, number] {
            const std::string unit = kUnit + std::to_string(number);
            for (int turn = 0; turn < kTurns; ++turn) {
                ShellClient shell(path);
                shell.ask("watch /");
                shell.ask("begin work");
                shell.ask("create " + unit);
                shell.send("tree");
                shell.cancel(4);
                shell.answer();
                shell.ask("get " + unit);
                if (turn % 2 == 0) {
                    commits += shell.ask("commit").find("committed") == 0 ? 1 : 0;
                    shell.ask("delete " + unit);
                } // or it vanishes with an open transaction
            }
        });
    }
    for (NetconfSession* session : {&alice, &bob}) {
        clients.emplace_back([&, session] {
            for (int turn = 0; turn < kTurns; ++turn) {
                ask(*session, "<edit-config><target><running/></target><config>" +
                                  radioUnit("2", tagged("userLabel", std::to_string(turn))) +
                                  "</config></edit-config>");
                ask(*session, "<get-config><source><running/></source></get-config>");
            }
        });
    }
    for (std::thread& client : clients) {
        client.join();
    }
    EXPECT_GT(commits, 0);
    ShellClient left(path);
    left.ask("begin left");
    EXPECT_TRUE(shells->end(Deadline::max()));
    EXPECT_EQ(host.transactions().openCount(), 0U);
    EXPECT_THAT(left.ask("tree"), HasSubstr("the server ends"));
}

}
}
