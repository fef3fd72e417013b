// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Hosts that share a store, of which one is killed, or all, or a process of the server, again and
// again. After each kill the store must hold what was acknowledged, whole transactions only, and
// the same as the replay of its log from the beginning.
//
// usage: postgresql_kill_test [ROUNDS [SEED]]

#include "Mixture.h"
#include "PostgresqlServer.h"
#include "PostgresqlStart.h"
#include "SampleStore.h"
#include "store_postgresql/PostgresqlLog.h"
#include "store_postgresql/PostgresqlTools.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <memory>
#include <random>
#include <set>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace OrvHost {
namespace {

constexpr unsigned kHosts = 2;
constexpr unsigned kThreads = 2;
constexpr PostgresqlLimits kLimits{std::chrono::seconds(3), std::chrono::milliseconds(2000),
                                   std::chrono::milliseconds(4000), std::chrono::milliseconds(6000),
                                   std::chrono::milliseconds(5000)};

// A line in a file that is written when the commit has returned: one write, so it is whole.
void acknowledge(int file, const std::string& mark) {
    const std::string line = mark + "\n";
    if (write(file, line.data(), line.size()) != static_cast<ssize_t>(line.size())) {
        _exit(2);
    }
}

volatile std::sig_atomic_t isToCompare = 0;

// A start that meets a kill of the server is refused, and tried again.
std::unique_ptr<Member> startHost(const std::string& target, const std::string& name) {
    for (;;) {
        try {
            return std::make_unique<Member>(target, name, kLimits);
        } catch (const LogUnavailable&) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    }
}

// True if the store holds what one has that starts now. Others commit no more, but the server may
// still work on what they have sent.
bool isAsTheLog(MoStore& store, CommitLog& log) {
    for (;;) {
        try {
            store.catchUp();
            MoStore fresh(sampleStoreModel());
            fresh.attach(log);
            if (store.lastCommit() == fresh.lastCommit()) {
                return contentOf(store) == contentOf(fresh);
            }
        } catch (const HostError&) {
            std::this_thread::sleep_for(std::chrono::milliseconds(50)); // the server recovers
        }
    }
}

/// Works until it is killed, whatever happens to the server. At SIGUSR1 it compares its memory with
/// the log and ends.
[[noreturn]] void work(const std::string& target, const std::string& acknowledged, unsigned seed) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    std::signal(SIGUSR1, [](int) { isToCompare = 1; });
    const std::unique_ptr<Member> host = startHost(target, "host " + std::to_string(seed));
    MoStore& store = host->store;
    const int file = open(acknowledged.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    std::vector<std::thread> threads;
    for (unsigned at = 0; at < kThreads; ++at) {
        threads.emplace_back([&, at] {
            Mixture mixture(store, std::to_string(seed) + "." + std::to_string(at),
                            seed * kThreads + at);
            while (store.logFault().empty() && isToCompare == 0) {
                try {
                    mixture.step([&](const std::string& mark) { acknowledge(file, mark); });
                } catch (const HostError&) {
                    std::this_thread::sleep_for(std::chrono::milliseconds(10));
                }
            }
            if (!store.logFault().empty()) {
                std::cerr << store.logFault() << '\n';
                _exit(3);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    if (!isAsTheLog(store, host->log)) {
        std::cerr << "what the host holds is not what the log holds\n";
        _exit(4);
    }
    _exit(0);
}

std::vector<std::string> linesIn(const std::string& path) {
    std::ifstream file(path);
    return linesOf(file);
}

/// What is wrong, one text each.
std::vector<std::string> check(const std::string& target,
                               const std::vector<std::string>& acknowledged) {
    PostgresqlLog log(target, sampleStoreModel());
    return Mixture::problems(log, startOf(target), acknowledged);
}

/// A process of the server that works for a host; one that writes to the disk if there is one.
pid_t serverProcess(const std::string& target) {
    PostgresqlConnection connection(target, {});
    const PostgresqlRows rows = connection.run(
        "SELECT pid::bigint FROM pg_stat_activity WHERE application_name = 'orvhost' AND pid <> "
        "pg_backend_pid() ORDER BY wait_event = 'WALSync' DESC NULLS LAST, random() LIMIT 1");
    return rows.size() == 0 ? -1 : static_cast<pid_t>(rows.number(0, 0));
}

/// The server answers again after it has recovered.
void awaitServer(const std::string& target) {
    for (int round = 0;; ++round) {
        try {
            startOf(target);
            return;
        } catch (const PostgresqlError&) {
            if (round == 300) {
                throw;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
    }
}

/// Waits until more than \p known lines are there.
bool hasMore(const std::string& path, std::size_t known) {
    for (int round = 0; round < 600; ++round) {
        if (linesIn(path).size() > known) {
            return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    return false;
}

/// What was killed so far.
struct Kills {
    std::vector<unsigned> hosts; ///< the seeds of those that were killed
    unsigned serverProcesses = 0;

    /// How many of the hosts had committed something.
    std::size_t writers(const std::vector<std::string>& acknowledged) const {
        std::set<unsigned> committed;
        for (const std::string& mark : acknowledged) {
            committed.insert(static_cast<unsigned>(std::strtoul(mark.c_str() + 1, nullptr, 10)));
        }
        return static_cast<std::size_t>(std::count_if(
            hosts.begin(), hosts.end(), [&](unsigned seed) { return committed.count(seed) != 0; }));
    }
};

/// The hosts of one round: one of them is killed, or a process of their server, and then all, but
/// for the last one if it is to compare.
class Round {
public:
    Round(const std::string& target, const std::string& acknowledged, unsigned seed)
        : mTarget(target), mFirstSeed(seed * kHosts) {
        for (unsigned host = 0; host < kHosts; ++host) {
            mHosts[host] = fork();
            if (mHosts[host] == 0) {
                work(target, acknowledged, mFirstSeed + host);
            }
        }
    }

    /// The others go on.
    void killFirstHost(Kills& kills) { killHost(0, kills); }

    void killServerProcess(Kills& kills) const {
        if (const pid_t process = serverProcess(mTarget); process > 0) {
            ++kills.serverProcesses;
            kill(process, SIGKILL);
        }
    }

    /// True if no host has ended by itself, and nothing was different.
    bool end(bool compares, Kills& kills) {
        for (unsigned host = 0; host + (compares ? 1 : 0) < kHosts; ++host) {
            killHost(host, kills);
        }
        if (compares) {
            kill(mHosts.back(), SIGUSR1);
            const int status = statusOf(mHosts.back());
            mIsRight = mIsRight && WIFEXITED(status) && WEXITSTATUS(status) == 0;
        }
        return mIsRight;
    }

private:
    static int statusOf(pid_t process) {
        int status = 0;
        waitpid(process, &status, 0);
        return status;
    }
    void killHost(unsigned host, Kills& kills) {
        if (mHosts[host] == 0) {
            return;
        }
        kill(mHosts[host], SIGKILL);
        const int status = statusOf(std::exchange(mHosts[host], 0));
        mIsRight = mIsRight && WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
        kills.hosts.push_back(mFirstSeed + host);
    }

    const std::string& mTarget;
    const unsigned mFirstSeed;
    std::array<pid_t, kHosts> mHosts{}; ///< 0: has been killed
    bool mIsRight = true;
};

/// What is wrong after one more round, one text each.
std::vector<std::string> killOnce(const std::string& target, const std::string& acknowledged,
                                  unsigned seed, unsigned at, Kills& kills) {
    std::mt19937 random(seed);
    const auto pause = [&random] {
        std::this_thread::sleep_for(
            std::chrono::milliseconds(std::uniform_int_distribution<unsigned>(100, 400)(random)));
    };
    const std::size_t before = linesIn(acknowledged).size();
    Round round(target, acknowledged, seed);
    // Some are killed while they start.
    if (at % 8 > 1 && !hasMore(acknowledged, before)) {
        return {"nothing is committed"};
    }
    pause();
    if (at % 2 == 0) {
        round.killFirstHost(kills);
    } else {
        round.killServerProcess(kills);
    }
    // Hosts may have got an answer of an earlier moment.
    pause();
    if (!hasMore(acknowledged, linesIn(acknowledged).size())) {
        return {"nothing is committed any more"};
    }
    if (!round.end(at % 4 < 2, kills)) {
        return {"a host ended by itself, or with another state"};
    }
    awaitServer(target);
    return check(target, linesIn(acknowledged));
}

int run(unsigned rounds, unsigned seed) {
    PostgresqlServer server;
    const std::string target = server.target(server.newSchema());
    createMixtureStore(target);
    const std::string acknowledged = server.directory() / "acknowledged";
    Kills kills;
    for (unsigned at = 0; at < rounds; ++at) {
        const std::vector<std::string> problems =
            killOnce(target, acknowledged, seed * 1000 + at, at, kills);
        for (const std::string& problem : problems) {
            std::cerr << "seed " << seed << ", round " << at << ": " << problem << '\n';
        }
        if (!problems.empty()) {
            return 1;
        }
    }
    const std::vector<std::string> marks = linesIn(acknowledged);
    const std::size_t position = readPostgresqlInfo(target).position;
    if (position < marks.size()) {
        std::cerr << "there are " << position << " entries of " << marks.size() << " commits\n";
        return 1;
    }
    std::cout << rounds << " rounds: " << kills.hosts.size() << " kills of hosts, "
              << kills.writers(marks) << " of them of ones that had committed; "
              << kills.serverProcesses << " kills of processes of the server; " << marks.size()
              << " commits acknowledged, none missing, " << position - marks.size()
              << " more committed without word\n";
    // A test in which nothing was committed, or no server was killed, would see nothing.
    return marks.size() > 10 * rounds && (rounds < 2 || kills.serverProcesses > 0) ? 0 : 1;
}

}
}

int main(int count, char** arguments) {
    const unsigned rounds = count > 1 ? static_cast<unsigned>(std::atoi(arguments[1])) : 8;
    const unsigned seed = count > 2 ? static_cast<unsigned>(std::atoi(arguments[2])) : 1;
    return OrvHost::run(rounds, seed);
}
