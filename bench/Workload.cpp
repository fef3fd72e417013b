// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Workload.h"

#include "AllocationCount.h"
#include "HostSlots.h"
#include "Values.h"

#include <chrono>

namespace OrvBench {

namespace {

void touch(const Round& round) {
    const Value3 label = Value3::text("touched");
    const std::string mast = round.side.dn("Mast=1");
    check(round.side.v3->setMoAttribute(round.txHandle, mast.c_str(), "label", label.container()),
          "touch");
}

}

std::vector<Workload> allWorkloads() {
    std::vector<Workload> all;
    for (const std::vector<Workload>& part :
         {version1Workloads(), version3Workloads(), version3_1Workloads(), resourceWorkloads(),
          growthWorkloads()}) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

void runRound(BenchHost& bench, const Workload& workload, const Side& side,
              const std::function<void(const Workload::Body& body)>& around) {
    const Round round{bench, side, bench.begin()};
    if (workload.touched) {
        touch(round);
    }
    {
        const Workload::Body body = workload.prepare(round);
        around(body);
    }
    bench.abort(round.txHandle);
}

double timeRound(BenchHost& bench, const Workload& workload, const Side& side) {
    using Clock = std::chrono::steady_clock;
    std::chrono::duration<double> taken{};
    runRound(bench, workload, side, [&](const Workload::Body& body) {
        const Clock::time_point start = Clock::now();
        body();
        taken = Clock::now() - start;
    });
    return taken.count();
}

Allocations countAllocations(BenchHost& bench, const Workload& workload) {
    Allocations counted{};
    // A first call may fill a cache or build something that is kept, so it is not measured.
    timeRound(bench, workload, bench.component());
    timeRound(bench, workload, bench.router());
    {
        const std::unique_ptr<SlotChange> marks = markHostCalls(bench);
        runRound(bench, workload, bench.component(), [&](const Workload::Body& body) {
            const AllocationCount count;
            body();
            counted.component = static_cast<double>(count.outsideHost()) / workload.items;
        });
    }
    runRound(bench, workload, bench.router(), [&](const Workload::Body& body) {
        const AllocationCount count;
        body();
        counted.router = static_cast<double>(count.outsideHost()) / workload.items;
    });
    return counted;
}

}
