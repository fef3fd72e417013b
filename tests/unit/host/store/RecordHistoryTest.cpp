// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "store/RecordHistory.h"

#include <gtest/gtest.h>

#include <string>

namespace OrvHost {
namespace {

/// The records "10", "20", ... that the commits 10, 20, ... have replaced.
RecordHistory historyUpTo(CommitNumber last) {
    RecordHistory history;
    for (CommitNumber number = 10; number <= last; number += 10) {
        history.reserveOne();
        history.add(number, MoRecord(std::to_string(number), {}));
    }
    return history;
}

std::string shownAt(const RecordHistory& history, CommitNumber snapshot) {
    const MoRecord* record = history.find(snapshot);
    return record == nullptr ? "the latest" : std::string(record->name());
}

TEST(RecordHistory, Find_IsTheFirstThatWasReplacedAfterTheSnapshot) {
    const RecordHistory history = historyUpTo(30);
    EXPECT_EQ(shownAt(history, 0), "10");
    EXPECT_EQ(shownAt(history, 9), "10");
    EXPECT_EQ(shownAt(history, 10), "20");
    EXPECT_EQ(shownAt(history, 29), "30");
    EXPECT_EQ(shownAt(history, 30), "the latest");
}

TEST(RecordHistory, DropUntil_LeavesTheNewerOnes) {
    RecordHistory history = historyUpTo(1000);
    for (CommitNumber last = 10; last < 1000; last += 10) {
        history.dropUntil(last);
        ASSERT_FALSE(history.isEmpty());
        ASSERT_EQ(shownAt(history, last), std::to_string(last + 10));
        ASSERT_EQ(shownAt(history, 990), "1000");
    }
    history.dropUntil(1000);
    EXPECT_TRUE(history.isEmpty());
    history.reserveOne();
    history.add(1010, MoRecord("1010", {}));
    EXPECT_EQ(shownAt(history, 1000), "1010");
}

TEST(RecordHistory, DroppedRecords_GiveTheirMemoryBack) {
    RecordHistory history = historyUpTo(100);
    const std::size_t before = history.bytes();
    history.dropUntil(40);
    EXPECT_LT(history.bytes(), before);
}

}
}
