// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "HostThreads.h"

#include "HostWorld.h"

#include <sys/resource.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <functional>
#include <thread>
#include <vector>

namespace OrvBench {

namespace {

constexpr int kObjects = 1000; ///< of each thread
constexpr int kRounds = 15;

using Call = std::function<void(unsigned long txHandle, const std::string& dn)>;

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// What the threads of one round did: calls per second, and how often a thread had to wait.
struct Round {
    double rate = 0;
    double waits = 0;
};

Round runRound(HostWorld& world, int threads, int calls, const Call& call) {
    std::atomic<int> waiting{0};
    std::atomic<long> waits{0};
    std::vector<std::thread> all;
    std::chrono::steady_clock::time_point start;
    for (int thread = 0; thread < threads; ++thread) {
        all.emplace_back([&, thread] {
            std::vector<std::string> dns;
            for (int number = 0; number < kObjects; ++number) {
                // By turns: later objects have longer DNs, and a thread more would read those.
                dns.push_back(HostWorld::antenna(2 * number + thread));
            }
            const unsigned long tx = world.begin();
            if (++waiting == threads) {
                start = std::chrono::steady_clock::now();
                ++waiting; // all may begin
            }
            while (waiting <= threads) {
            }
            rusage before{};
            getrusage(RUSAGE_THREAD, &before);
            for (int number = 0; number < calls; ++number) {
                call(tx, dns[static_cast<std::size_t>(number % kObjects)]);
            }
            rusage after{};
            getrusage(RUSAGE_THREAD, &after);
            waits += after.ru_nvcsw - before.ru_nvcsw;
            world.abort(tx);
        });
    }
    for (std::thread& thread : all) {
        thread.join();
    }
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    return {threads * calls / taken.count(),
            1000.0 * static_cast<double>(waits) / (threads * calls)};
}

void compare(HostWorld& world, const char* name, int calls, const Call& call) {
    std::array<std::vector<double>, 2> rates;
    std::array<std::vector<double>, 2> waits;
    for (int round = 0; round < kRounds; ++round) {
        for (const std::size_t more : {std::size_t{0}, std::size_t{1}}) {
            const Round done = runRound(world, static_cast<int>(more) + 1, calls, call);
            rates[more].push_back(done.rate);
            waits[more].push_back(done.waits);
        }
    }
    std::printf("%-28s two threads over one %.2f; waits in 1000 calls: %.2f and %.2f\n", name,
                median(rates[1]) / median(rates[0]), median(waits[0]), median(waits[1]));
}

}

void compareThreads(const std::string& component) {
    HostShape shape;
    shape.antennaCount = 2 * kObjects;
    HostWorld world(component, shape);
    const auto& table = world.table();
    const Value3 label = Value3::text("another label");
    compare(world, "existsMo", 200000, [&](unsigned long tx, const std::string& dn) {
        bool found = false;
        table.existsMo(tx, dn.c_str(), &found);
        require(found, "existsMo");
    });
    compare(world, "getMoAttribute, text", 200000, [&](unsigned long tx, const std::string& dn) {
        OrvMoAttributeValueResult_3 result{};
        require(table.getMoAttribute(tx, dn.c_str(), "label", &result) == OrvOk, "getMoAttribute");
        result.release(result.container);
    });
    compare(world, "setMoAttribute, text", 100000,
            [&](unsigned long tx, const std::string& dn) { world.set(tx, dn, "label", label); });
}

}
