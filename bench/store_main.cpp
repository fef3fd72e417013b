// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// How fast commits become durable, in a file of SQLite and in a server of PostgreSQL that hosts
// share, and how long a host takes to start from such a store.
//
// usage: orv_store_bench [DIRECTORY [OBJECTS [ROUNDS]]]
//
// Prints commits a second of 1, 8 and 64 clients, each on objects of its own, with 1 and with 100
// objects in a commit: without a store, in a file whose commits are synced, in one whose commits
// are not, and in PostgreSQL, with all clients at one host and at two. Each number is the median of
// ROUNDS (5) rounds of a second, by turns with the others. Then how many times as long a commit
// takes as without a store; and the processor time in which a new host takes so many objects (a
// million) into memory, writes them to a store, and starts from one.
//
// The two hosts are stores in this process, each with a connection to the server. The server is one
// of this program, on a socket in a temporary directory; the file is in DIRECTORY (the current
// one). Both are removed.

#include "PostgresqlServer.h"
#include "model/building/ModelBuilder.h"
#include "store/LogFollower.h"
#include "store/MoStore.h"
#include "store_postgresql/PostgresqlLog.h"
#include "store_postgresql/PostgresqlTools.h"
#include "store_sqlite/SqliteLog.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace OrvHost {
namespace {

using Clock = std::chrono::steady_clock;
using Sync = SqliteLog::Sync;

constexpr unsigned kClients[] = {1, 8, 64};
constexpr unsigned kObjects[] = {1, 100};
constexpr std::chrono::milliseconds kTime{1000};
constexpr std::chrono::milliseconds kFollowing{20}; // as orvhost
constexpr unsigned kForEachParent = 1000;

const Model& model() {
    static const Model built = ModelBuilder()
                                   .add(ClassDraft("Top").topLevel().key("id"))
                                   .add(ClassDraft("Group").key("id"))
                                   .add(ClassDraft("Item")
                                            .key("id")
                                            .attribute(AttributeDraft::text("label"))
                                            .attribute(AttributeDraft::integer("value")))
                                   .contain("Top", "Group")
                                   .contain("Group", "Item")
                                   .build();
    return built;
}

std::string groupDn(unsigned group) {
    return "Top=1,Group=" + std::to_string(group);
}

std::string itemDn(unsigned group, unsigned item) {
    return groupDn(group) + ",Item=" + std::to_string(item);
}

/// A group of items for each client.
void fill(MoStore& store, unsigned groups, unsigned items) {
    const AttributeValue label{ValueKind::String, {std::string(200, 'x')}};
    store.load("Top=1", {});
    for (unsigned group = 0; group < groups; ++group) {
        store.load(groupDn(group), {});
        for (unsigned item = 0; item < items; ++item) {
            store.load(itemDn(group, item), {{"label", label}});
        }
    }
}

/// The clients come to the hosts by turns.
double commitsPerSecond(const std::vector<MoStore*>& hosts, unsigned clients, unsigned objects) {
    std::atomic<bool> isOver{false};
    std::atomic<std::uint64_t> commits{0};
    std::vector<std::thread> threads;
    for (unsigned client = 0; client < clients; ++client) {
        threads.emplace_back([&, client] {
            MoStore& store = *hosts[client % hosts.size()];
            TransactionId id = client + 1;
            for (std::int64_t round = 0; !isOver; ++round, id += clients) {
                const auto tx = store.begin(id);
                for (unsigned item = 0; item < objects; ++item) {
                    tx->set(itemDn(client, item), "value", {ValueKind::Int, {round}});
                }
                tx->commit();
                ++commits;
            }
        });
    }
    const Clock::time_point start = Clock::now();
    std::this_thread::sleep_for(kTime);
    isOver = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    return static_cast<double>(commits) /
           std::chrono::duration<double>(Clock::now() - start).count();
}

double processorSeconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

double commitsInMemory(unsigned clients, unsigned objects) {
    MoStore store(model());
    fill(store, clients, objects);
    return commitsPerSecond({&store}, clients, objects);
}

double commitsInFile(const std::filesystem::path& file, Sync sync, unsigned clients,
                     unsigned objects) {
    std::filesystem::remove(file);
    SqliteLog log(file, model(), sync);
    MoStore store(model());
    fill(store, clients, objects);
    store.attach(log);
    return commitsPerSecond({&store}, clients, objects);
}

/// A host of a shared store.
struct Host {
    explicit Host(const std::string& target) : log(target, model()), store(model()) {}

    PostgresqlLog log;
    MoStore store;
};

double commitsInServer(PostgresqlServer& server, unsigned hosts, unsigned clients,
                       unsigned objects) {
    const std::string target = server.target(server.newSchema());
    initPostgresqlStore(target, model());
    std::vector<std::unique_ptr<Host>> all;
    std::vector<std::unique_ptr<LogFollower>> followers; // they end before their stores
    std::vector<MoStore*> stores;
    for (unsigned at = 0; at < hosts; ++at) {
        all.push_back(std::make_unique<Host>(target));
        Host& host = *all.back();
        if (at == 0) {
            fill(host.store, clients, objects);
        }
        host.store.attach(host.log, std::to_string(at));
        followers.push_back(
            std::make_unique<LogFollower>(host.store, kFollowing, [](const std::string& text) {
                std::fprintf(stderr, "%s\n", text.c_str());
            }));
        stores.push_back(&host.store);
    }
    return commitsPerSecond(stores, clients, objects);
}

/// A kind of store, as a column.
struct Column {
    const char* name;
    std::function<double(unsigned clients, unsigned objects)> measure;
};
using Columns = std::array<Column, 5>;
using Rates = std::array<double, std::tuple_size_v<Columns>>;

Columns columnsOf(const std::filesystem::path& file, PostgresqlServer& server) {
    const auto sqlite = [file](Sync sync) {
        return [file, sync](unsigned clients, unsigned objects) {
            return commitsInFile(file, sync, clients, objects);
        };
    };
    const auto postgresql = [&server](unsigned hosts) {
        return [&server, hosts](unsigned clients, unsigned objects) {
            return commitsInServer(server, hosts, clients, objects);
        };
    };
    return {{{"without a store", commitsInMemory},
             {"SQLite full", sqlite(Sync::Full)},
             {"SQLite normal", sqlite(Sync::Normal)},
             {"PostgreSQL", postgresql(1)},
             {"PostgreSQL, 2 hosts", postgresql(2)}}};
}

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

Rates measure(const Columns& columns, unsigned clients, unsigned objects, unsigned rounds) {
    std::array<std::vector<double>, std::tuple_size_v<Columns>> all;
    for (unsigned round = 0; round < rounds; ++round) {
        for (std::size_t at = 0; at < columns.size(); ++at) {
            all[at].push_back(columns[at].measure(clients, objects));
        }
    }
    Rates rates{};
    std::transform(all.begin(), all.end(), rates.begin(), median);
    return rates;
}

void printHead(const char* title, const Columns& columns) {
    std::printf("%s\n\n| clients | objects |", title);
    for (const Column& column : columns) {
        std::printf(" %s |", column.name);
    }
    std::printf("\n|--:|--:|--:|--:|--:|--:|--:|\n");
}

// With three digits: a ratio of 3 and one of 3000 are in one table.
std::string rounded(double value) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.3g", value);
    return std::to_string(static_cast<std::uint64_t>(std::strtod(text.data(), nullptr)));
}

void printCommits(const Columns& columns, unsigned rounds) {
    std::string ratios; // printed behind the other table
    printHead("commits a second", columns);
    for (const unsigned clients : kClients) {
        for (const unsigned objects : kObjects) {
            const Rates rates = measure(columns, clients, objects, rounds);
            std::string line = "| " + std::to_string(clients) + " | " + std::to_string(objects);
            ratios += line;
            for (const double rate : rates) {
                line += " | " + rounded(rate);
                std::array<char, 32> ratio{};
                std::snprintf(ratio.data(), ratio.size(), " | %.1f", rates[0] / rate);
                ratios += ratio.data();
            }
            std::printf("%s |\n", line.c_str());
            std::fflush(stdout);
            ratios += " |\n";
        }
    }
    std::printf("\n");
    printHead("how many times as long a commit takes as without a store", columns);
    std::printf("%s\n", ratios.c_str());
}

/// The processor time of this program for \p work.
double secondsFor(const std::function<void()>& work) {
    const double before = processorSeconds();
    work();
    return processorSeconds() - before;
}

/// \p open: the store, which has no objects at first.
void printStart(const char* name, unsigned objects,
                const std::function<std::unique_ptr<CommitLog>()>& open) {
    double filling = 0;
    double writing = 0;
    {
        std::unique_ptr<CommitLog> log;
        MoStore store(model());
        filling = secondsFor([&] { fill(store, objects / kForEachParent, kForEachParent); });
        writing = secondsFor([&] {
            log = open();
            store.attach(*log);
        });
    }
    std::unique_ptr<CommitLog> log;
    MoStore store(model());
    const double starting = secondsFor([&] {
        log = open();
        store.attach(*log);
    });
    std::printf("| %s | %llu | %.2f | %.2f | %.2f | %.2f |\n", name,
                static_cast<unsigned long long>(store.size()), filling, writing, starting,
                starting / filling);
}

void printStarts(const std::filesystem::path& file, PostgresqlServer& server, unsigned objects) {
    std::printf("seconds of this program's processor time\n\n"
                "| store | objects | into memory | then into the store | start from it | start, as "
                "a part of into memory |\n|---|--:|--:|--:|--:|--:|\n");
    std::filesystem::remove(file);
    printStart("SQLite", objects, [&] { return std::make_unique<SqliteLog>(file, model()); });
    const std::string target = server.target(server.newSchema());
    initPostgresqlStore(target, model());
    printStart("PostgreSQL", objects,
               [&] { return std::make_unique<PostgresqlLog>(target, model()); });
}

unsigned numberOf(const char* text) {
    return static_cast<unsigned>(std::strtoul(text, nullptr, 10));
}

void run(const std::filesystem::path& directory, unsigned objects, unsigned rounds) {
    const std::filesystem::path file = directory / "orv_store_bench.store";
    PostgresqlServer server;
    printCommits(columnsOf(file, server), rounds);
    printStarts(file, server, objects);
    std::filesystem::remove(file);
}

}
}

int main(int count, char** arguments) {
    try {
        OrvHost::run(count > 1 ? arguments[1] : ".",
                     count > 2 ? OrvHost::numberOf(arguments[2]) : 1000000,
                     count > 3 ? OrvHost::numberOf(arguments[3]) : 5);
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
