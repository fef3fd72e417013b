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

/// What all writers did, and all failures. Any thread.
class Tally {
public:
    std::atomic<std::uint64_t> operations{0};
    std::atomic<std::uint64_t> transactions{0}; ///< begun
    std::atomic<std::uint64_t> committed{0};
    std::atomic<std::uint64_t> aborted{0};   ///< as the plan said
    std::atomic<std::uint64_t> refused{0};   ///< because of a violation that was made on purpose
    std::atomic<std::uint64_t> conflicts{0}; ///< rolled back because of another writer
    std::atomic<std::uint64_t> elsewhere{0}; ///< of these, at commit, because of another host
    std::atomic<std::uint64_t> retried{0};
    std::atomic<std::uint64_t> givenUp{0}; ///< still in conflict after the last retry

    void fail(const std::string& what);
    bool hasFailures() const;

    /// Prints the numbers, and the first of the failures.
    void print(std::ostream& out) const;

private:
    mutable std::mutex mMutex; ///< guards mFailures
    std::vector<std::string> mFailures;
};

}

#endif
