// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_BENCH_HOSTTHREADS_H
#define ORV_BENCH_HOSTTHREADS_H

#include <string>

namespace OrvBench {

/// Prints how many times the calls of one thread two threads make in the same time, each in its own
/// transaction and on its own objects: medians of rounds in which both take turns, since another
/// program may disturb either.
void compareThreads(const std::string& component);

}

#endif
