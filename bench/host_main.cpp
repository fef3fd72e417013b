// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Measures whole transactions: the component and the reference host together.
//
//   orv_host_bench [LIBEXT_CM] [--only TEXT]    the time of each workload whose name contains TEXT,
//                                               for one thing
//   orv_host_bench [LIBEXT_CM] --threads        one thread and two threads by turns: how many times
//                                               as much two do
//
// Under callgrind (scripts/host_cost.py) it makes one profile for each part of a workload instead.

#include "HostThreads.h"
#include "HostWorkloads.h"

#include <valgrind/callgrind.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <exception>
#include <string>

namespace {

using namespace OrvBench;

void measureOne(const HostWorkload& workload, const std::string& component, int size) {
    workload.run(
        component, size, [&](const char* part, int items, const std::function<void()>& body) {
            const std::string name = workload.name + "|" + part + "|" + std::to_string(size);
            using Clock = std::chrono::steady_clock;
            const Clock::time_point start = Clock::now();
            CALLGRIND_TOGGLE_COLLECT;
            body();
            CALLGRIND_TOGGLE_COLLECT;
            const std::chrono::duration<double, std::nano> taken = Clock::now() - start;
            const std::string profile = name + "|" + std::to_string(items);
            CALLGRIND_DUMP_STATS_AT(profile.c_str());
            std::printf("%-75s %12.0f ns\n", name.c_str(), taken.count() / items);
        });
}

void measureAll(const std::string& component, const std::string& only) {
    for (const auto& part : {clientWorkloads(), hostGrowthWorkloads()}) {
        for (const HostWorkload& workload : part) {
            if (workload.name.find(only) == std::string::npos) {
                continue;
            }
            for (const int size : workload.sizes) {
                measureOne(workload, component, size);
            }
        }
    }
}

void run(int count, char** arguments) {
    std::string component = ORV_BENCH_COMPONENT;
    std::string only;
    bool isThreads = false;
    for (int at = 1; at < count; ++at) {
        if (std::strcmp(arguments[at], "--threads") == 0) {
            isThreads = true;
        } else if (std::strcmp(arguments[at], "--only") == 0 && at + 1 < count) {
            only = arguments[++at];
        } else {
            component = arguments[at];
        }
    }
    isThreads ? compareThreads(component) : measureAll(component, only);
}

}

int main(int count, char** arguments) {
    try {
        run(count, arguments);
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
