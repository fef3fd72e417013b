// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_BENCH_HOSTSLOTS_H
#define ORV_BENCH_HOSTSLOTS_H

#include "BenchHost.h"

#include <memory>

namespace OrvBench {

/// Replaces functions in the host's tables by functions of the benchmark; the destructor restores
/// the tables. Use it only while no client works.
class SlotChange {
public:
    virtual ~SlotChange() = default;
};

/// Marks every call that the component makes into the host (router, model repository, transaction,
/// messages) as a HostSection.
std::unique_ptr<SlotChange> markHostCalls(BenchHost& bench);

/// Replaces the router's reads and writes of version 3 by functions that return at once, so that
/// only the component's own part of an operation is left.
std::unique_ptr<SlotChange> emptyRouter(BenchHost& bench);

}

#endif
