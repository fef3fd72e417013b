// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Ledger.h"

#include <iterator>

namespace Soak {

namespace {

bool isAtOrBelow(const std::string& dn, const std::string& top) {
    return dn == top || dn.rfind(top + ",", 0) == 0;
}

}

void Ledger::erase(const std::string& dn) {
    for (auto entry = mPending.begin(); entry != mPending.end();) {
        entry = isAtOrBelow(entry->first, dn) ? mPending.erase(entry) : std::next(entry);
    }
}

void Ledger::commit() {
    mTexts = mPending;
    mCounts = mPendingCounts;
}

void Ledger::rollback() {
    mPending = mTexts;
    mPendingCounts = mCounts;
}

}
