// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_SOAK_LEDGER_H
#define ORV_TESTS_SOAK_LEDGER_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

namespace Soak {

/// Shared numbers that all writers increment.
constexpr std::size_t kCounters = 4;

/// What one writer knows to be committed: the texts of its own objects, and how often it has
/// incremented each number. The entries of a transaction are kept or dropped with it. One thread.
class Ledger {
public:
    using Counts = std::array<std::uint64_t, kCounters>;

    void write(const std::string& dn, const std::string& text) { mPending[dn] = text; }
    /// Records that \p dn is deleted with its subtree.
    void erase(const std::string& dn);
    void count(std::size_t counter) { ++mPendingCounts[counter]; }

    void commit();
    void rollback();

    const std::map<std::string, std::string>& texts() const { return mTexts; }
    const Counts& counts() const { return mCounts; }

private:
    std::map<std::string, std::string> mTexts;
    std::map<std::string, std::string> mPending; ///< mTexts as the transaction sees it
    Counts mCounts{};
    Counts mPendingCounts{};
};

}

#endif
