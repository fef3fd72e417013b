// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_SOAK_RANDOM_H
#define ORV_TESTS_SOAK_RANDOM_H

#include <cstddef>
#include <cstdint>
#include <random>

namespace Soak {

/// Random numbers that are the same on every machine for the same seeds.
class Random {
public:
    Random(std::uint64_t seed, std::uint64_t thread, std::uint64_t transaction)
        : mEngine((seed * 1000003 + thread) * 1000003 + transaction) {}

    /// From 0 to \p bound - 1. The distributions of the standard library are not used, because they
    /// differ between libraries.
    std::size_t below(std::size_t bound) { return static_cast<std::size_t>(mEngine() % bound); }
    bool oneIn(std::size_t bound) { return below(bound) == 0; }

private:
    std::mt19937_64 mEngine;
};

}

#endif
