// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "SharedHost.h"

#include "Mixture.h"
#include "RanModel.h"
#include "Scene.h"
#include "StoreAudit.h"
#include "Tally.h"
#include "Writer.h"
#include "store/LogFollower.h"
#include "store_postgresql/PostgresqlLog.h"

#include <chrono>
#include <deque>
#include <fstream>
#include <iostream>
#include <thread>

namespace Soak {

using namespace OrvHost;

namespace {

constexpr std::chrono::milliseconds kFollowPause{20};

/// The clients of a host, each on a thread.
class ClientThreads {
public:
    ClientThreads(const SharedHost& host, Scene& scene, Tally& tally) : mHost(host), mTally(tally) {
        mOptions.seed = host.seed;
        // Transactions of some ten operations: those that take long meet a rival nearly always.
        mOptions.operations = 10;
        mOptions.transactions = 1;
        for (unsigned client = 0; client < kClients; ++client) {
            const unsigned number = (host.start * kHosts + host.number) * kClients + client;
            mWriters.emplace_back(scene, tally, mOptions, number, scene.ownCast(client));
        }
    }

    void work() {
        std::vector<std::thread> threads;
        for (Writer& writer : mWriters) {
            threads.emplace_back([&] { work(writer); });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    }

private:
    void work(Writer& writer) {
        SharedBoard& board = mHost.board;
        Ledger::Counts known{};
        while (board.step == SharedBoard::Work && !board.hosts[mHost.number].isToStop) {
            writer.runOnce();
            for (std::size_t counter = 0; counter < kCounters; ++counter) {
                const std::uint64_t now = writer.ledger().counts()[counter];
                board.counted[counter] += now - known[counter];
                known[counter] = now;
            }
            publish();
        }
    }

    // What was done since the last call, of all clients.
    void publish() {
        SharedBoard& board = mHost.board;
        board.hosts[mHost.number].committed += mTally.committed.exchange(0);
        board.operations += mTally.operations.exchange(0);
        board.conflicts += mTally.conflicts.exchange(0);
        board.elsewhere += mTally.elsewhere.exchange(0);
        board.givenUp += mTally.givenUp.exchange(0);
    }

    const SharedHost& mHost;
    Tally& mTally;
    SoakOptions mOptions;
    std::deque<Writer> mWriters;
};

void await(const std::atomic<int>& step, int wanted) {
    while (step < wanted) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

void writeLines(const std::filesystem::path& path, const std::vector<std::string>& lines) {
    std::ofstream file(path);
    for (const std::string& line : lines) {
        file << line << '\n';
    }
    if (!file.flush()) {
        throw std::runtime_error("cannot write " + path.string());
    }
}

}

std::vector<std::string> recount(MoStore& store) {
    std::vector<std::string> lines{"commit " + std::to_string(store.lastCommit())};
    for (const std::string& problem : StoreAudit(store).problems()) {
        lines.push_back(kWrong + problem);
    }
    const std::vector<std::string> objects = contentOf(store);
    lines.insert(lines.end(), objects.begin(), objects.end());
    return lines;
}

std::filesystem::path SharedHost::reportOf(const std::filesystem::path& directory, unsigned host,
                                           SharedBoard::Step step) {
    return directory / ("host-" + std::to_string(host) + "-" + std::to_string(step) + ".txt");
}

int SharedHost::run() const {
    Tally tally;
    const YangModel model = RanGenerator::readRanModel();
    PostgresqlLog log(target, model.model);
    Scene scene(kClients, tally, log, "host-" + std::to_string(number));
    MoStore& store = scene.host().store();
    {
        const LogFollower follower(store, kFollowPause, [&](const std::string& text) {
            tally.fail("host " + std::to_string(number) + ": " + text);
        });
        board.hosts[number].done = SharedBoard::Work;
        ClientThreads(*this, scene, tally).work();
        if (!board.hosts[number].isToStop) {
            board.hosts[number].done = SharedBoard::Rest;
            for (const auto step : {SharedBoard::Count, SharedBoard::CountBroken}) {
                await(board.step, step);
                store.catchUp();
                writeLines(reportOf(directory, number, step), recount(store));
                board.hosts[number].done = step;
            }
        }
    }
    for (const std::string& problem : scene.host().shutdown()) {
        tally.fail("shutdown: " + problem);
    }
    if (tally.hasFailures()) {
        tally.print(std::cerr);
    }
    return tally.hasFailures() ? 1 : 0;
}

}
