// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_SOAK_SOAKOPTIONS_H
#define ORV_TESTS_SOAK_SOAKOPTIONS_H

#include <cstdint>

namespace Soak {

/// How long the test runs. The same seed gives each thread the same plan, transaction by
/// transaction; with one thread the whole run is the same.
struct SoakOptions {
    std::uint64_t operations = 1000000; ///< at least this number of calls of the component's tables
    std::uint64_t transactions = 10000; ///< in at least this number of transactions
    unsigned threads = 4;
    std::uint64_t seed = 1;
};

/// Reads "--operations N --transactions N --threads N --seed N", all of which are optional.
/// \throws std::invalid_argument
SoakOptions readOptions(int count, const char* const* arguments);

}

#endif
