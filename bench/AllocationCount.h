// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_BENCH_ALLOCATIONCOUNT_H
#define ORV_BENCH_ALLOCATIONCOUNT_H

#include <cstdint>

namespace OrvBench {

/// Counts what the calling thread allocates while an object of this class lives, in the program and
/// in every shared object: operator new, malloc, calloc, realloc and functions that use them, such
/// as strdup. Allocations in a HostSection are counted separately.
///
/// One at a time on a thread.
class AllocationCount {
public:
    AllocationCount();
    AllocationCount(const AllocationCount&) = delete;
    AllocationCount& operator=(const AllocationCount&) = delete;
    ~AllocationCount();

    std::uint64_t outsideHost() const;
    std::uint64_t inHost() const;
};

/// Marks a call of one of the host's tables.
class HostSection {
public:
    HostSection();
    HostSection(const HostSection&) = delete;
    HostSection& operator=(const HostSection&) = delete;
    ~HostSection();
};

}

#endif
