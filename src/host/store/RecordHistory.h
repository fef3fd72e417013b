// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_RECORDHISTORY_H
#define ORV_HOST_STORE_RECORDHISTORY_H

#include "MoRecord.h"
#include "StoreTypes.h"

#include <cstddef>
#include <vector>

namespace OrvHost {

/// The older records of one object, oldest first. Adding one and dropping the oldest ones take
/// constant time on average, finding one logarithmic time.
class RecordHistory {
public:
    /// Makes room for one more: the next add cannot fail.
    void reserveOne();
    /// Adds the record that a commit has replaced.
    void add(CommitNumber replacedAt, MoRecord record) noexcept;
    /// The record that was the latest one in a snapshot; null if none was replaced after it.
    const MoRecord* find(CommitNumber snapshot) const;
    /// Drops all that were replaced up to and in the commit \p last.
    void dropUntil(CommitNumber last) noexcept;

    bool isEmpty() const { return mFirst == mRecords.size(); }
    /// The memory of the records, with that of the list.
    std::size_t bytes() const;

private:
    struct OldRecord {
        CommitNumber replacedAt;
        MoRecord record;
    };

    std::vector<OldRecord> mRecords;
    std::size_t mFirst = 0; ///< those before it are dropped
};

}

#endif
