// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Ledger.h"

#include "base/DnView.h"

#include <iterator>

namespace Soak {

using OrvHost::DnView;

void Ledger::erase(const std::string& dn) {
    for (auto entry = mPending.begin(); entry != mPending.end();) {
        entry =
            DnView(entry->first).isAtOrBelow(DnView(dn)) ? mPending.erase(entry) : std::next(entry);
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
