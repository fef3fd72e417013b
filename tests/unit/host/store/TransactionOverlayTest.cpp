// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "store/TransactionOverlay.h"

#include <gtest/gtest.h>

namespace OrvHost {
namespace {

constexpr NodeId kParent = 7;
constexpr ClassIndex kMoc = 3;
constexpr NodeId kLast = 1000;

/// The siblings 10, 11, ... kLast.
struct Siblings {
    mutable int steps = 0;

    NodeId operator()(NodeId node) const {
        ++steps;
        return node == kLast ? kNoNode : node + 1;
    }
};

TEST(TransactionOverlay, SkipDeleted_FindsTheNextThatIsLeft) {
    TransactionOverlay overlay;
    const Siblings nextOf;
    EXPECT_EQ(overlay.skipDeleted(10, nextOf), 10U);
    EXPECT_EQ(overlay.skipDeleted(kNoNode, nextOf), kNoNode);
    overlay.markDeleted(12, kParent, kMoc);
    overlay.markDeleted(11, kParent, kMoc);
    EXPECT_EQ(overlay.skipDeleted(10, nextOf), 10U);
    EXPECT_EQ(overlay.skipDeleted(11, nextOf), 13U);
    overlay.markDeleted(13, kParent, kMoc);
    EXPECT_EQ(overlay.skipDeleted(11, nextOf), 14U);
    EXPECT_EQ(overlay.skipDeleted(12, nextOf), 14U);
    overlay.markDeleted(kLast, kParent, kMoc);
    EXPECT_EQ(overlay.skipDeleted(kLast, nextOf), kNoNode);
    EXPECT_EQ(overlay.skipDeleted(kLast, nextOf), kNoNode);
}

TEST(TransactionOverlay, SkipDeleted_GoesEachWayOnce) {
    TransactionOverlay overlay;
    const Siblings nextOf;
    for (NodeId node = 10; node < kLast; ++node) {
        overlay.markDeleted(node, kParent, kMoc);
        ASSERT_EQ(overlay.skipDeleted(10, nextOf), node + 1);
    }
    // Two steps for each: one to find the end, one to remember it.
    EXPECT_LE(nextOf.steps, 2 * static_cast<int>(kLast));
}

TEST(TransactionOverlay, DeletedCount_IsByParentAndClass) {
    TransactionOverlay overlay;
    overlay.markDeleted(10, kParent, kMoc);
    overlay.markDeleted(11, kParent, kMoc);
    overlay.markDeleted(12, kParent, kMoc + 1);
    EXPECT_EQ(overlay.deletedCount(kParent, kMoc), 2U);
    EXPECT_EQ(overlay.deletedCount(kParent, kMoc + 1), 1U);
    EXPECT_EQ(overlay.deletedCount(kParent + 1, kMoc), 0U);
}

}
}
