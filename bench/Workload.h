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

/// The arguments with which a workload prepares itself.
struct Round {
    BenchHost& bench;
    const Side& side;       ///< the way that the calls take
    unsigned long txHandle; ///< its own transaction, which is aborted afterwards
};

/// Calls that can be made in two ways, through the component and directly to the router.
struct Workload {
    /// The calls to be measured. All preparation is done before this is made; it owns what it needs
    /// and is called once.
    using Body = std::function<void()>;

    std::string name; ///< "3/getMoAttribute/text": version, operation, kind of value
    int items;        ///< the body's time is divided by this: the number of its calls
    std::function<Body(const Round& round)> prepare;
    /// False: the body begins with the transaction's first write, in which the component adds the
    /// transaction to its registry.
    bool touched = true;
};

/// The number of calls in a body of the workloads of single operations.
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

/// All workloads.
std::vector<Workload> allWorkloads();

/// Runs one round on one side, and calls \p around with the body.
void runRound(BenchHost& bench, const Workload& workload, const Side& side,
              const std::function<void(const Workload::Body& body)>& around);

/// The seconds that the body of one round takes.
double timeRound(BenchHost& bench, const Workload& workload, const Side& side);

/// The allocations of one item, on average over a round.
struct Allocations {
    double component; ///< by the component and its helpers
    double router;    ///< directly to the router
};
Allocations countAllocations(BenchHost& bench, const Workload& workload);

}

#endif
