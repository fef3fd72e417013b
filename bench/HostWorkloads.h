// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_BENCH_HOSTWORKLOADS_H
#define ORV_BENCH_HOSTWORKLOADS_H

#include <functional>
#include <string>
#include <vector>

namespace OrvBench {

/// Measures one part of a workload: calls \p body once; \p items things are done in it.
using Meter = std::function<void(const char* part, int items, const std::function<void()>& body)>;

/// Whole transactions of a client, with the component and the host together.
struct HostWorkload {
    std::string name;
    std::vector<int> sizes;
    /// Makes a host, measures, and checks that the work was done. \p component is the path of the
    /// component.
    std::function<void(const std::string& component, int size, const Meter& measure)> run;
};

/// What clients do most. Each ends with validate and commit, except for reading.
std::vector<HostWorkload> clientWorkloads();
/// What could cost more for each thing, the more things there are.
std::vector<HostWorkload> hostGrowthWorkloads();

}

#endif
