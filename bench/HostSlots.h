// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_BENCH_HOSTSLOTS_H
#define ORV_BENCH_HOSTSLOTS_H

#include "BenchHost.h"

#include <memory>

namespace OrvBench {

/// Puts functions of the benchmark's own into the host's tables; the tables are as before when the
/// object goes. For when no client works.
class SlotChange {
public:
    virtual ~SlotChange() = default;
};

/// Marks every call that the component makes into the host (router, model repository, transaction,
/// messages) as a HostSection.
std::unique_ptr<SlotChange> markHostCalls(BenchHost& bench);

/// Puts in the place of the router's reads and writes of version 3 functions that answer at once,
/// so that what is left of an operation is the component's own.
std::unique_ptr<SlotChange> emptyRouter(BenchHost& bench);

}

#endif
