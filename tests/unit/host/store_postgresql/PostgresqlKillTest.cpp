// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Hosts that share a store, of which one is killed, or all, or a process of the server, again and
// again. After each kill the store must hold what was acknowledged, whole transactions only, and
// the same as the replay of its log from the beginning.
//
// usage: postgresql_kill_test [KILLS [SEED]]

#include "Mixture.h"
#include "PostgresqlServer.h"
#include "ReplayLog.h"
#include "SampleStore.h"
#include "store_postgresql/PostgresqlLog.h"
#include "store_postgresql/PostgresqlTools.h"

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <random>
#include <thread>

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
    PostgresqlLog log(target, sampleStoreModel(), kLimits);
    MoStore store(sampleStoreModel());
    store.attach(log, "host " + std::to_string(seed));
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
    if (!isAsTheLog(store, log)) {
        std::cerr << "what the host holds is not what the log holds\n";
        _exit(4);
    }
    _exit(0);
}

std::vector<std::string> linesOf(const std::string& path) {
    std::vector<std::string> lines;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
    }
    return lines;
}

LogMark startOf(const std::string& target) {
    PostgresqlConnection connection(target, {});
    const PostgresqlRows head = connection.run("SELECT first - 1, before FROM head");
    return {head.number(0, 0), std::string(head.text(0, 1))};
}

/// What is wrong, one text each.
std::vector<std::string> check(const std::string& target,
                               const std::vector<std::string>& acknowledged) {
    PostgresqlLog log(target, sampleStoreModel());
    MoStore loaded(sampleStoreModel());
    loaded.attach(log);
    MoStore replayed(sampleStoreModel());
    Mixture::load(replayed);
    ReplayLog replay(log, startOf(target));
    replayed.attach(replay);
    replayed.catchUp();
    std::vector<std::string> problems = Mixture::violations(loaded, acknowledged);
    if (contentOf(loaded) != contentOf(replayed)) {
        problems.emplace_back("the objects are not those that the entries lead to");
    }
    return problems;
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

/// Kills all; the last one, if \p compares, ends by itself after it has compared. True if none has
/// ended before, and nothing was different.
bool endAll(const std::array<pid_t, kHosts>& hosts, bool compares) {
    bool isRight = true;
    for (const pid_t host : hosts) {
        const bool isLast = host == hosts.back();
        kill(host, isLast && compares ? SIGUSR1 : SIGKILL);
        int status = 0;
        waitpid(host, &status, 0);
        isRight = isRight && (isLast && compares ? WIFEXITED(status) && WEXITSTATUS(status) == 0
                                                 : WIFSIGNALED(status));
    }
    return isRight;
}

/// Waits until more than \p known lines are there.
bool hasMore(const std::string& path, std::size_t known) {
    for (int round = 0; round < 600; ++round) {
        if (linesOf(path).size() > known) {
            return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    return false;
}

int run(unsigned kills, unsigned seed) {
    PostgresqlServer server;
    const std::string target = server.target(server.newSchema());
    initPostgresqlStore(target, sampleStoreModel());
    {
        PostgresqlLog log(target, sampleStoreModel());
        MoStore filled(sampleStoreModel());
        Mixture::load(filled);
        filled.attach(log);
    }
    const std::string acknowledged = server.directory() / "acknowledged";
    std::mt19937 random(seed);
    unsigned serverKills = 0;
    for (unsigned at = 0; at < kills; ++at) {
        std::array<pid_t, kHosts> hosts{};
        for (unsigned host = 0; host < kHosts; ++host) {
            hosts[host] = fork();
            if (hosts[host] == 0) {
                work(target, acknowledged, (seed * 100000 + at) * kHosts + host);
            }
        }
        const auto pause = [&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(
                std::uniform_int_distribution<unsigned>(100, 400)(random)));
        };
        pause();
        if (at % 2 == 0) {
            // The other host goes on.
            kill(hosts[0], SIGKILL);
        } else if (const pid_t process = serverProcess(target); process > 0) {
            ++serverKills;
            kill(process, SIGKILL);
        }
        // Hosts may have got an answer of an earlier moment.
        pause();
        if (!hasMore(acknowledged, linesOf(acknowledged).size())) {
            std::cerr << "kill " << at << ": nothing is committed any more\n";
            return 1;
        }
        if (!endAll(hosts, at % 4 < 2)) {
            std::cerr << "kill " << at << ": a host ended by itself, or with another state\n";
            return 1;
        }
        awaitServer(target);
        const std::vector<std::string> problems = check(target, linesOf(acknowledged));
        for (const std::string& problem : problems) {
            std::cerr << "seed " << seed << ", kill " << at << ": " << problem << '\n';
        }
        if (!problems.empty()) {
            return 1;
        }
    }
    const std::size_t known = linesOf(acknowledged).size();
    const std::size_t position = readPostgresqlInfo(target).position;
    if (position < known) {
        std::cerr << "there are " << position << " entries of " << known << " commits\n";
        return 1;
    }
    std::cout << kills << " kills, " << serverKills << " of them of processes of the server, "
              << known << " commits acknowledged, none missing, " << position - known
              << " more committed without word\n";
    // A test in which nothing was committed, or no server was killed, would see nothing.
    return known > 10 * kills && (kills < 2 || serverKills > 0) ? 0 : 1;
}

}
}

int main(int count, char** arguments) {
    const unsigned kills = count > 1 ? static_cast<unsigned>(std::atoi(arguments[1])) : 8;
    const unsigned seed = count > 2 ? static_cast<unsigned>(std::atoi(arguments[2])) : 1;
    return OrvHost::run(kills, seed);
}
