// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Two hosts with the loaded component share a store on a server of this program's own. Four clients
// of each edit the associations of one network at random; now and then a host is ended, or killed,
// and started again. Then both hosts must hold the same objects, as must a host that starts now and
// one that replays the log from the beginning, and every reference must be named back. At last one
// reference is taken away past the component: both hosts must notice it.
//
// usage: orv_shared_soak [SECONDS [SEED]]

#include "PostgresqlServer.h"
#include "RanModel.h"
#include "ReplayLog.h"
#include "Scene.h"
#include "SharedHost.h"
#include "StoreAudit.h"
#include "Values.h"
#include "store_postgresql/PostgresqlConnection.h"
#include "store_postgresql/PostgresqlLog.h"
#include "store_postgresql/PostgresqlTools.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iostream>
#include <random>
#include <stdexcept>
#include <string_view>
#include <thread>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace Soak;
using namespace OrvHost;
using Clock = std::chrono::steady_clock;

struct Arguments {
    unsigned seconds = 600;
    unsigned seed = 1;
};

[[noreturn]] void fail(const std::string& what) {
    throw std::runtime_error(what);
}

void require(bool isTrue, const std::string& what) {
    if (!isTrue) {
        fail(what);
    }
}

std::vector<std::string> linesOf(const std::filesystem::path& path) {
    std::vector<std::string> lines;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
    }
    return lines;
}

/// Where two lists differ first, for people; empty if they are equal.
std::string firstDifference(const std::vector<std::string>& one,
                            const std::vector<std::string>& other) {
    const auto [left, right] = std::mismatch(one.begin(), one.end(), other.begin(), other.end());
    if (left == one.end() && right == other.end()) {
        return {};
    }
    return "'" + (left == one.end() ? "(end)" : *left) + "' against '" +
           (right == other.end() ? "(end)" : *right) + "'";
}

std::vector<std::string> problemsIn(const std::vector<std::string>& lines) {
    std::vector<std::string> problems;
    std::copy_if(lines.begin(), lines.end(), std::back_inserter(problems),
                 [](const std::string& line) { return line.rfind(kWrong, 0) == 0; });
    return problems;
}

class Run {
public:
    explicit Run(const Arguments& arguments)
        : mArguments(arguments),
          mModel(RanGenerator::readRanModel()),
          mTarget(mServer.target(mServer.newSchema())),
          mBoard(SharedBoard::make()),
          mRandom(arguments.seed) {
        initPostgresqlStore(mTarget, mModel.model);
    }
    ~Run() {
        for (const pid_t process : mProcesses) {
            if (process > 0) {
                kill(process, SIGKILL);
                waitpid(process, nullptr, 0);
            }
        }
    }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    void all() {
        for (unsigned host = 0; host < kHosts; ++host) {
            start(host); // the first one fills the store
        }
        disturb();
        advance(SharedBoard::Rest);
        advance(SharedBoard::Count);
        checkEqual();
        checkCounters();
        const std::string broken = breakReference();
        advance(SharedBoard::CountBroken);
        checkNoticed(broken);
        for (unsigned host = 0; host < kHosts; ++host) {
            awaitEnd(host);
        }
        checkActivity();
    }

private:
    void start(unsigned host) {
        SharedBoard::Host& place = mBoard.hosts[host];
        place.isToStop = false;
        place.done = -1;
        std::fflush(stdout);
        const unsigned number = mStarts++;
        mProcesses[host] = fork();
        if (mProcesses[host] == 0) {
            beHost(host, number);
        }
        awaitDone(host, SharedBoard::Work);
    }

    [[noreturn]] void beHost(unsigned host, unsigned number) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        int status = 2;
        try {
            status = SharedHost{mBoard, mTarget, mServer.directory(), mArguments.seed, host, number}
                         .run();
        } catch (const std::exception& failure) {
            std::cerr << "host " << host << ": " << failure.what() << '\n';
        }
        std::cerr.flush();
        _exit(status); // the server belongs to the process that has started it
    }

    /// Waits until a host has done a step; it must not end before.
    void awaitDone(unsigned host, int step) {
        while (mBoard.hosts[host].done < step) {
            int status = 0;
            if (waitpid(mProcesses[host], &status, WNOHANG) != 0) {
                mProcesses[host] = -1;
                fail("host " + std::to_string(host) + " ended in step " + std::to_string(step));
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    }

    void advance(SharedBoard::Step step) {
        mBoard.step = step;
        for (unsigned host = 0; host < kHosts; ++host) {
            awaitDone(host, step);
        }
    }

    void awaitEnd(unsigned host) {
        int status = 0;
        waitpid(mProcesses[host], &status, 0);
        mProcesses[host] = -1;
        require(WIFEXITED(status) && WEXITSTATUS(status) == 0,
                "host " + std::to_string(host) + " had failures");
    }

    /// While the hosts work, one of them after the other ends and comes back.
    void disturb() {
        const auto end = Clock::now() + std::chrono::seconds(mArguments.seconds);
        const unsigned longest = std::clamp(mArguments.seconds * 1000 / 6, 1000U, 20000U);
        for (bool isKill = true;; isKill = !isKill) {
            const std::chrono::milliseconds pause(
                std::uniform_int_distribution<unsigned>(longest / 2, longest)(mRandom));
            if (Clock::now() + pause + std::chrono::seconds(1) > end) {
                break;
            }
            std::this_thread::sleep_for(pause);
            const unsigned host = std::uniform_int_distribution<unsigned>(0, kHosts - 1)(mRandom);
            if (isKill) {
                ++mKills;
                kill(mProcesses[host], SIGKILL);
                waitpid(mProcesses[host], nullptr, 0);
            } else {
                ++mStops;
                mBoard.hosts[host].isToStop = true;
                awaitEnd(host);
            }
            start(host);
        }
        std::this_thread::sleep_until(end);
    }

    void checkEqual() {
        mCounted = linesOf(SharedHost::reportOf(mServer.directory(), 0, SharedBoard::Count));
        const std::vector<std::string> problems = problemsIn(mCounted);
        for (const std::string& problem : problems) {
            std::cerr << problem << '\n';
        }
        require(problems.empty(), "the references of host 0 are wrong");
        const std::string hosts = firstDifference(
            mCounted, linesOf(SharedHost::reportOf(mServer.directory(), 1, SharedBoard::Count)));
        require(hosts.empty(), "the hosts differ: " + hosts);
        PostgresqlLog log(mTarget, mModel.model);
        MoStore fresh(mModel.model);
        fresh.attach(log);
        const std::string start = firstDifference(mCounted, recount(fresh));
        require(start.empty(), "a host that starts now differs: " + start);
        MoStore replayed(mModel.model);
        Scene::loadNetwork(replayed);
        ReplayLog replay(log, startOfLog());
        replayed.attach(replay);
        replayed.catchUp();
        const std::string all = firstDifference(mCounted, recount(replayed));
        require(all.empty(), "the replay of the log differs: " + all);
    }

    LogMark startOfLog() {
        PostgresqlConnection connection(mTarget, {});
        const PostgresqlRows head = connection.run("SELECT first - 1, before FROM head");
        return {head.number(0, 0), std::string(head.text(0, 1))};
    }

    /// No increment that a client was told of is lost. Of a host that was killed each client may
    /// have made one more.
    void checkCounters() {
        PostgresqlLog log(mTarget, mModel.model);
        MoStore store(mModel.model);
        store.attach(log);
        const auto transaction = store.begin(1);
        std::uint64_t found = 0;
        std::uint64_t counted = 0;
        for (std::size_t counter = 0; counter < kCounters; ++counter) {
            const std::string dn =
                "ManagedElement=1" + Scene::counterDn(counter).substr(kRoot.size());
            const AttributeValue value = transaction->get(dn, "configuredMaxTxPower");
            const auto now = static_cast<std::uint64_t>(std::get<std::int64_t>(value.values.at(0)));
            require(now >= mBoard.counted[counter], dn + " is " + std::to_string(now) +
                                                        ", counted were " +
                                                        std::to_string(mBoard.counted[counter]));
            found += now;
            counted += mBoard.counted[counter];
        }
        require(found <= counted + std::uint64_t{mKills} * kClients,
                std::to_string(found) + " are counted in the store, by clients only " +
                    std::to_string(counted));
        std::cout << counted << " counted, none lost, " << found - counted
                  << " more by clients that were killed\n";
    }

    /// Takes the references to the cells away from one carrier, past the component. Returns the
    /// carrier's DN.
    std::string breakReference() {
        PostgresqlLog log(mTarget, mModel.model);
        MoStore store(mModel.model);
        store.attach(log);
        std::string carrier;
        StoreAudit(store).visit([&](const Instance& object) {
            const bool isReferring = std::any_of(
                object.attributes.begin(), object.attributes.end(), [](const auto& each) {
                    return each.first == "nRCellDURef" && !each.second.values.empty();
                });
            if (isReferring && object.dn.find(",NRSectorCarrier=") != std::string::npos) {
                carrier = object.dn;
            }
        });
        require(!carrier.empty(), "no carrier has cells");
        const auto transaction = store.begin(1);
        transaction->set(carrier, "nRCellDURef", refs({}));
        transaction->commit();
        return carrier;
    }

    void checkNoticed(const std::string& carrier) {
        for (unsigned host = 0; host < kHosts; ++host) {
            const std::vector<std::string> problems = problemsIn(
                linesOf(SharedHost::reportOf(mServer.directory(), host, SharedBoard::CountBroken)));
            require(std::any_of(problems.begin(), problems.end(),
                                [&](const std::string& problem) {
                                    return problem.find(carrier) != std::string::npos;
                                }),
                    "host " + std::to_string(host) + " does not notice that " + carrier +
                        " lacks its references");
        }
    }

    /// A run in which nothing happened would have shown nothing.
    void checkActivity() {
        const std::uint64_t position = readPostgresqlInfo(mTarget).position;
        for (unsigned host = 0; host < kHosts; ++host) {
            const std::uint64_t committed = mBoard.hosts[host].committed;
            std::cout << "host " << host << ": " << committed << " commits\n";
            require(committed > 10, "host " + std::to_string(host) + " has committed nothing");
        }
        std::cout << mBoard.operations << " operations, " << mBoard.conflicts
                  << " transactions given back in conflict, " << mBoard.elsewhere
                  << " of them at commit by the other host, " << mBoard.givenUp << " given up\n"
                  << mKills << " kills and " << mStops << " ends of a host; " << position
                  << " entries; " << mCounted.size() - 1
                  << " objects, the same on both hosts, at a new start and in a replay\n";
        require(mBoard.elsewhere > 0, "the hosts have not met");
        require(mKills > 0, "no host was killed");
    }

    const Arguments mArguments;
    const YangModel mModel;
    PostgresqlServer mServer;
    const std::string mTarget;
    SharedBoard& mBoard;
    std::mt19937 mRandom;
    std::array<pid_t, kHosts> mProcesses{};
    unsigned mStarts = 0;
    unsigned mKills = 0;
    unsigned mStops = 0;
    std::vector<std::string> mCounted; ///< what host 0 holds at the end
};

unsigned numberIn(std::string_view text) {
    unsigned number = 0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), number);
    require(parsed.ec == std::errc() && parsed.ptr == text.data() + text.size() && number > 0,
            "'" + std::string(text) + "' is no number from 1");
    return number;
}

}

int main(int count, char** words) {
    try {
        Arguments arguments;
        require(count <= 3, "usage: orv_shared_soak [SECONDS [SEED]]");
        if (count > 1) {
            arguments.seconds = numberIn(words[1]);
        }
        if (count > 2) {
            arguments.seed = numberIn(words[2]);
        }
        std::cout << "seed " << arguments.seed << ", " << arguments.seconds << " s" << std::endl;
        Run(arguments).all();
        std::cout << "passed\n";
        return 0;
    } catch (const std::exception& failure) {
        std::cerr << "FAILED: " << failure.what() << '\n';
        return 1;
    }
}
