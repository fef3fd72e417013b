// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_BENCH_WORKLOAD_H
#define ORV_BENCH_WORKLOAD_H

#include "BenchHost.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace OrvBench {

/// What a workload is given to prepare itself with.
struct Round {
    BenchHost& bench;
    const Side& side;       ///< the way to take
    unsigned long txHandle; ///< a transaction of its own, which is aborted afterwards
};

/// Calls that can be made in two ways, through the component and straight to the router.
struct Workload {
    /// Everything that takes time and is not to be measured is done before this is made; it owns
    /// what it needs and is called once.
    using Body = std::function<void()>;

    std::string name; ///< "3/getMoAttribute/text": version, operation, kind of value
    int items;        ///< what the body's time is divided by: the number of its calls
    std::function<Body(const Round& round)> prepare;
    /// False: the body begins with the transaction's first write, which enters it in the
    /// component's registry.
    bool touched = true;
};

/// Number of calls in a body of the workloads of single operations.
constexpr int callsInBody = 64;

template <class Call>
void repeat(const Call& call) {
    for (int number = 0; number < callsInBody; ++number) {
        call(number);
    }
}

/// The operations of each version, in the order of its slots, and the transactional resource.
std::vector<Workload> version1Workloads();
std::vector<Workload> version3Workloads();
std::vector<Workload> version3_1Workloads();
std::vector<Workload> resourceWorkloads();
std::vector<Workload> growthWorkloads();

/// All of them.
std::vector<Workload> allWorkloads();

/// One round on one side, with \p around called with the body.
void runRound(BenchHost& bench, const Workload& workload, const Side& side,
              const std::function<void(const Workload::Body& body)>& around);

/// Seconds that the body of one round takes.
double timeRound(BenchHost& bench, const Workload& workload, const Side& side);

/// What one item allocates, on average over a round.
struct Allocations {
    double component; ///< through the component: by it and for it
    double router;    ///< straight to the router
};
Allocations countAllocations(BenchHost& bench, const Workload& workload);

}

#endif
