// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Measures what the component adds to calls of the router.
//
//   orv_bench [LIBEXT_CM] [--benchmark_filter=REGEX] ...    times; options of Google Benchmark
//   orv_bench [LIBEXT_CM] --instructions                    under callgrind: one profile for each
//                                                           workload and side
//
// Workloads:
//
//   1/..., 3/..., 3_1/...  each operation of an interface version
//   resource/...           each phase of the transactional resource, and the router's own
//   growth/.../N           what an operation costs for each of N things
//   threads/...            calls per second from one, two and four threads: through the component,
//                          directly to the router, and through the component with a router that
//                          does nothing
//
// Except for threads, each workload runs both ways in one run, through the component and directly
// to the router, in alternating rounds, so that a slow machine affects both. Counters:
//
//   ratio          time through the component divided by time directly to the router (medians of
//                  rounds)
//   component_ns   time of one call or thing through the component; the column Time is the time of
//                  a round
//   router_ns      the same directly to the router
//   allocations    by the component and its helpers, for one call or thing
//   router_allocations   by the router, for the same call directly to it

#include "BenchHost.h"
#include "HostSlots.h"
#include "ThreadWorkloads.h"
#include "Workload.h"

#include <benchmark/benchmark.h>
#include <valgrind/callgrind.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <exception>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace OrvBench;

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

void measure(benchmark::State& state, BenchHost& bench, const Workload& workload) {
    constexpr double nano = 1e9;
    const Allocations allocations = countAllocations(bench, workload);
    std::vector<double> component;
    std::vector<double> router;
    for ([[maybe_unused]] auto round : state) {
        component.push_back(timeRound(bench, workload, bench.component()));
        router.push_back(timeRound(bench, workload, bench.router()));
        state.SetIterationTime(component.back());
    }
    state.counters["ratio"] = median(component) / median(router);
    state.counters["component_ns"] = median(component) * nano / workload.items;
    state.counters["router_ns"] = median(router) * nano / workload.items;
    state.counters["allocations"] = allocations.component;
    state.counters["router_allocations"] = allocations.router;
}

void measureThread(benchmark::State& state, BenchHost& bench, const Side& side,
                   const ThreadWorkload& workload) {
    const unsigned long txHandle = bench.begin();
    {
        const ThreadWorkload::Call call = workload.prepare(side, txHandle, state.thread_index());
        call();
        // All threads wait for each other at the beginning and at the end of the loop.
        for ([[maybe_unused]] auto round : state) {
            call();
        }
    }
    bench.abort(txHandle);
    state.SetItemsProcessed(state.iterations());
}

// Google Benchmark takes plain functions to call before and after a run, so the host must be
// reachable from there.
BenchHost* theBench = nullptr;
std::unique_ptr<SlotChange> theChange;

void takeRouterAway(const benchmark::State&) {
    theChange = emptyRouter(*theBench);
}

void giveRouterBack(const benchmark::State&) {
    theChange.reset();
}

// A fixed number: the preparation of a round can take a thousand times as long as its measured
// part, and the library would run rounds until the measured parts alone have filled its time.
constexpr int roundsOfARun = 30;

void addWorkloads(BenchHost& bench) {
    for (const Workload& workload : allWorkloads()) {
        benchmark::RegisterBenchmark(
            workload.name.c_str(),
            [&bench, workload](auto& state) { measure(state, bench, workload); })
            ->UseManualTime()
            ->Iterations(roundsOfARun);
    }
}

benchmark::internal::Benchmark* addThreads(BenchHost& bench, const Side& side,
                                           const ThreadWorkload& workload, const char* way) {
    const std::string name = "threads/" + workload.name + "/" + way;
    return benchmark::RegisterBenchmark(name.c_str(),
                                        [&bench, &side, workload](auto& state) {
                                            measureThread(state, bench, side, workload);
                                        })
        ->Threads(1)
        ->Threads(2)
        ->Threads(4)
        ->UseRealTime();
}

void addAllThreads(BenchHost& bench) {
    theBench = &bench;
    for (const ThreadWorkload& workload : threadWorkloads()) {
        addThreads(bench, bench.component(), workload, "component");
        addThreads(bench, bench.router(), workload, "router");
        addThreads(bench, bench.component(), workload, "component alone")
            ->Setup(&takeRouterAway)
            ->Teardown(&giveRouterBack);
    }
}

/// Makes one profile for each workload and side. Start callgrind with --instr-atstart=no and
/// --collect-atstart=no. The first rounds fill caches and are not counted.
void countInstructions(BenchHost& bench) {
    CALLGRIND_START_INSTRUMENTATION;
    for (const Workload& workload : allWorkloads()) {
        for (const Side* side : {&bench.component(), &bench.router()}) {
            timeRound(bench, workload, *side);
            runRound(bench, workload, *side, [](const Workload::Body& body) {
                CALLGRIND_TOGGLE_COLLECT;
                body();
                CALLGRIND_TOGGLE_COLLECT;
            });
            const std::string name =
                workload.name + "|" + side->name + "|" + std::to_string(workload.items);
            CALLGRIND_DUMP_STATS_AT(name.c_str());
        }
    }
}

int run(int count, char** arguments) {
    const bool hasPath = count > 1 && arguments[1][0] != '-';
    BenchHost bench(hasPath ? arguments[1] : ORV_BENCH_COMPONENT);
    if (std::strcmp(arguments[count - 1], "--instructions") == 0) {
        countInstructions(bench);
        return 0;
    }
    addWorkloads(bench);
    addAllThreads(bench);
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

}

int main(int count, char** arguments) {
    try {
        return run(count, arguments);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
