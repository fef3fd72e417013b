// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RecordHistory.h"

#include <algorithm>
#include <utility>

namespace OrvHost {

void RecordHistory::reserveOne() {
    if (mRecords.size() < mRecords.capacity()) {
        return;
    }
    mRecords.reserve(mRecords.empty() ? 1 : mRecords.size() * 2);
}

void RecordHistory::add(CommitNumber replacedAt, MoRecord record) noexcept {
    mRecords.push_back({replacedAt, std::move(record)});
}

const MoRecord* RecordHistory::find(CommitNumber snapshot) const {
    // The first record that was replaced after the snapshot is the one that it shows.
    const auto found = std::upper_bound(
        mRecords.begin() + static_cast<std::ptrdiff_t>(mFirst), mRecords.end(), snapshot,
        [](CommitNumber at, const OldRecord& old) { return at < old.replacedAt; });
    return found == mRecords.end() ? nullptr : &found->record;
}

void RecordHistory::dropUntil(CommitNumber last) noexcept {
    while (!isEmpty() && mRecords[mFirst].replacedAt <= last) {
        mRecords[mFirst++].record = MoRecord();
    }
    // The rest moves up only when it is the smaller part, so that each record moves once on
    // average.
    if (mFirst * 2 >= mRecords.size()) {
        mRecords.erase(mRecords.begin(), mRecords.begin() + static_cast<std::ptrdiff_t>(mFirst));
        mFirst = 0;
    }
}

std::size_t RecordHistory::bytes() const {
    std::size_t sum = mRecords.capacity() * sizeof(OldRecord);
    for (const OldRecord& old : mRecords) {
        sum += old.record.size();
    }
    return sum;
}

}
