// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_BENCH_THREADWORKLOADS_H
#define ORV_BENCH_THREADWORKLOADS_H

#include "BenchHost.h"

#include <functional>
#include <string>
#include <vector>

namespace OrvBench {

/// Calls that several threads make at once, each thread in its own transaction and on its own
/// objects.
struct ThreadWorkload {
    /// What one thread calls repeatedly.
    using Call = std::function<void()>;

    std::string name;
    std::function<Call(const Side& side, unsigned long txHandle, int thread)> prepare;
};

std::vector<ThreadWorkload> threadWorkloads();

}

#endif
