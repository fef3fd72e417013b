// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_SOAK_SHAREDBOARD_H
#define ORV_TESTS_SOAK_SHAREDBOARD_H

#include "Ledger.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <new>
#include <stdexcept>

#include <sys/mman.h>

namespace Soak {

constexpr unsigned kHosts = 2;
constexpr unsigned kClients = 4; ///< of each host

/// What the processes of a run tell each other, in memory that they share. What a process has
/// written stays when it is killed. Made before the first process; any thread.
class SharedBoard {
public:
    static SharedBoard& make() {
        void* const memory = mmap(nullptr, sizeof(SharedBoard), PROT_READ | PROT_WRITE,
                                  MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) {
            throw std::runtime_error("no memory to share");
        }
        return *new (memory) SharedBoard;
    }

    /// What hosts are to do. Each step begins when all hosts have done the one before.
    enum Step : int {
        Work,
        Rest,        ///< clients end with the transaction that they are in
        Count,       ///< recount what the store holds, and write it down
        CountBroken, ///< the same, after one reference has been taken away
        End
    };
    std::atomic<int> step{Work};

    struct Host {
        std::atomic<bool> isToStop{false}; ///< alone, while the other one works
        std::atomic<int> done{-1};         ///< the last step that is done; -1: it starts
        std::atomic<std::uint64_t> committed{0};
    };
    std::array<Host, kHosts> hosts;

    std::atomic<std::uint64_t> operations{0};
    std::atomic<std::uint64_t> conflicts{0}; ///< transactions that were given back
    std::atomic<std::uint64_t> elsewhere{0}; ///< those of them that met another host at commit
    std::atomic<std::uint64_t> givenUp{0};
    /// How often clients were told that a number is incremented.
    std::array<std::atomic<std::uint64_t>, kCounters> counted{};

    static_assert(std::atomic<std::uint64_t>::is_always_lock_free);

private:
    SharedBoard() = default;
};

}

#endif
