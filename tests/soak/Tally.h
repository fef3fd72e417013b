// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_SOAK_TALLY_H
#define ORV_TESTS_SOAK_TALLY_H

#include <atomic>
#include <cstdint>
#include <iosfwd>
#include <mutex>
#include <string>
#include <vector>

namespace Soak {

/// What all writers did, and what was not as it must be. Any thread.
class Tally {
public:
    std::atomic<std::uint64_t> operations{0};
    std::atomic<std::uint64_t> transactions{0}; ///< begun
    std::atomic<std::uint64_t> committed{0};
    std::atomic<std::uint64_t> aborted{0};   ///< because the plan said so
    std::atomic<std::uint64_t> refused{0};   ///< for a violation that was made on purpose
    std::atomic<std::uint64_t> conflicts{0}; ///< given back because of another writer
    std::atomic<std::uint64_t> retried{0};
    std::atomic<std::uint64_t> givenUp{0}; ///< still in conflict at the last try

    void fail(const std::string& what);
    bool hasFailures() const;

    /// The numbers, and the first of the failures.
    void print(std::ostream& out) const;

private:
    mutable std::mutex mMutex; ///< guards mFailures
    std::vector<std::string> mFailures;
};

}

#endif
