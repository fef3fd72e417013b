// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// How fast commits become durable in a file of SQLite, and how long a host takes to start from it.
//
// usage: orv_store_bench [DIRECTORY [OBJECTS]]
//
// Prints commits a second of 1, 8 and 64 clients, each on objects of its own, with 1 and with 100
// objects in a commit: without a store, with one whose commits are synced, and with one whose
// commits are not. Then the processor time in which a store of so many objects (a million) is
// written, and read by a new host. The files are in DIRECTORY (the current one) and are removed.

#include "model/building/ModelBuilder.h"
#include "store/MoStore.h"
#include "store_sqlite/SqliteLog.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
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
constexpr std::chrono::milliseconds kTime{1500};
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

double commitsPerSecond(MoStore& store, unsigned clients, unsigned objects) {
    std::atomic<bool> isOver{false};
    std::atomic<std::uint64_t> commits{0};
    std::vector<std::thread> threads;
    for (unsigned client = 0; client < clients; ++client) {
        threads.emplace_back([&, client] {
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

double measure(const std::filesystem::path& file, const Sync* sync, unsigned clients,
               unsigned objects) {
    std::unique_ptr<SqliteLog> log;
    MoStore store(model());
    fill(store, clients, objects);
    if (sync != nullptr) {
        std::filesystem::remove(file);
        log = std::make_unique<SqliteLog>(file, model(), *sync);
        store.attach(*log);
    }
    return commitsPerSecond(store, clients, objects);
}

double processorSeconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

void printCommits(const std::filesystem::path& file) {
    constexpr Sync kFull = Sync::Full;
    constexpr Sync kNormal = Sync::Normal;
    std::printf("commits a second: clients, objects, without store, full, normal\n");
    for (const unsigned clients : kClients) {
        for (const unsigned objects : kObjects) {
            std::printf("%3u %4u %10.0f %8.0f %8.0f\n", clients, objects,
                        measure(file, nullptr, clients, objects),
                        measure(file, &kFull, clients, objects),
                        measure(file, &kNormal, clients, objects));
            std::fflush(stdout);
        }
    }
}

void printStart(const std::filesystem::path& file, unsigned objects) {
    std::filesystem::remove(file);
    {
        MoStore store(model());
        fill(store, objects / kForEachParent, kForEachParent);
        SqliteLog log(file, model());
        const double before = processorSeconds();
        store.attach(log);
        std::printf("writing %u objects: %.2f s of processor time\n", objects,
                    processorSeconds() - before);
    }
    const double before = processorSeconds();
    SqliteLog log(file, model());
    MoStore store(model());
    store.attach(log);
    std::printf("start with %llu objects: %.2f s of processor time, a file of %.0f MB\n",
                static_cast<unsigned long long>(store.size()), processorSeconds() - before,
                static_cast<double>(std::filesystem::file_size(file)) / 1e6);
}

}
}

int main(int count, char** arguments) {
    const std::filesystem::path file =
        std::filesystem::path(count > 1 ? arguments[1] : ".") / "orv_store_bench.store";
    const unsigned objects =
        count > 2 ? static_cast<unsigned>(std::strtoul(arguments[2], nullptr, 10)) : 1000000;
    OrvHost::printCommits(file);
    OrvHost::printStart(file, objects);
    std::filesystem::remove(file);
    return 0;
}
