// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Tally.h"

#include <algorithm>
#include <ostream>

namespace Soak {

void Tally::fail(const std::string& what) {
    const std::lock_guard<std::mutex> guard(mMutex);
    mFailures.push_back(what);
}

bool Tally::hasFailures() const {
    const std::lock_guard<std::mutex> guard(mMutex);
    return !mFailures.empty();
}

void Tally::print(std::ostream& out) const {
    constexpr std::size_t kMostShown = 20;
    out << operations << " operations in " << transactions << " transactions: " << committed
        << " committed, " << aborted << " aborted, " << refused << " refused as they had to be, "
        << conflicts << " given back in conflict (" << retried << " tried again, " << givenUp
        << " given up)\n";
    const std::lock_guard<std::mutex> guard(mMutex);
    for (std::size_t at = 0; at < std::min(mFailures.size(), kMostShown); ++at) {
        out << "FAILED: " << mFailures[at] << '\n';
    }
    if (mFailures.size() > kMostShown) {
        out << "FAILED: " << mFailures.size() - kMostShown << " more\n";
    }
}

}
