// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "store/ClaimTable.h"

#include <gtest/gtest.h>

#include <optional>

namespace OrvHost {
namespace {

using Kind = ClaimTable::Kind;

class ClaimTableTest : public testing::Test {
protected:
    ClaimTableTest() {
        one.owner = 1;
        two.owner = 2;
    }
    bool grants(Kind held, Kind asked) {
        EXPECT_FALSE(table.claimNode(one, 5, held));
        const bool granted = !table.claimNode(two, 5, asked);
        table.release(one);
        table.release(two);
        return granted;
    }

    // Of the transaction in the way; 0 if there is none.
    static TransactionId ownerOf(const std::optional<ClaimTable::Rival>& rival) {
        return rival ? rival->transaction : 0;
    }

    ClaimTable table;
    ClaimSet one;
    ClaimSet two;
};

TEST_F(ClaimTableTest, ClaimNode_HeldByAnother_IsGrantedByKind) {
    EXPECT_FALSE(grants(Kind::Write, Kind::Write));
    EXPECT_FALSE(grants(Kind::Write, Kind::Delete));
    EXPECT_TRUE(grants(Kind::Write, Kind::CreateUnder));
    EXPECT_FALSE(grants(Kind::Delete, Kind::Write));
    EXPECT_FALSE(grants(Kind::Delete, Kind::Delete));
    EXPECT_FALSE(grants(Kind::Delete, Kind::CreateUnder));
    EXPECT_TRUE(grants(Kind::CreateUnder, Kind::Write));
    EXPECT_FALSE(grants(Kind::CreateUnder, Kind::Delete));
    EXPECT_TRUE(grants(Kind::CreateUnder, Kind::CreateUnder));
}

TEST_F(ClaimTableTest, ClaimNode_OwnClaims_NeverStandInTheWay) {
    for (const Kind kind : {Kind::CreateUnder, Kind::Write, Kind::Delete, Kind::CreateUnder}) {
        EXPECT_FALSE(table.claimNode(one, 5, kind));
    }
    const auto rival = table.claimNode(two, 5, Kind::Write);
    ASSERT_TRUE(rival);
    EXPECT_EQ(rival->transaction, 1U);
    EXPECT_EQ(rival->kind, Kind::Delete);
}

TEST_F(ClaimTableTest, Release_OneOfTwoCreators_LeavesTheOther) {
    EXPECT_FALSE(table.claimNode(one, 5, Kind::CreateUnder));
    EXPECT_FALSE(table.claimNode(two, 5, Kind::CreateUnder));
    table.release(one);
    const auto rival = table.claimNode(one, 5, Kind::Delete);
    ASSERT_TRUE(rival);
    EXPECT_EQ(rival->transaction, 2U);
    EXPECT_EQ(rival->kind, Kind::CreateUnder);
}

TEST_F(ClaimTableTest, Release_OthersHoldOtherNodes_LeavesTheirs) {
    EXPECT_FALSE(table.claimNode(one, 5, Kind::Write));
    EXPECT_FALSE(table.claimNode(one, 6, Kind::Delete));
    EXPECT_FALSE(table.claimNode(two, 7, Kind::Write));
    EXPECT_FALSE(table.claimNode(two, 8, Kind::Write));
    table.release(one);
    table.release(one); // nothing is left of it
    EXPECT_FALSE(table.claimNode(one, 4, Kind::Write));
    EXPECT_EQ(ownerOf(table.claimNode(one, 7, Kind::Write)), 2U);
    EXPECT_EQ(table.claimNode(one, 8, Kind::CreateUnder), std::nullopt);
    table.release(two);
    EXPECT_FALSE(table.claimNode(two, 5, Kind::Write));
    EXPECT_FALSE(table.claimNode(two, 7, Kind::Write));
    EXPECT_EQ(ownerOf(table.claimNode(two, 4, Kind::Write)), 1U);
}

TEST_F(ClaimTableTest, ClaimName_TakenUntilReleased) {
    EXPECT_FALSE(table.claimName(one, "A=1"));
    EXPECT_FALSE(table.claimName(one, "A=1"));
    EXPECT_EQ(ownerOf(table.claimName(two, "A=1")), 1U);
    table.release(one);
    EXPECT_FALSE(table.claimName(two, "A=1"));
}

TEST_F(ClaimTableTest, ReleaseNames_OthersHoldSome_LeavesTheirs) {
    EXPECT_FALSE(table.claimName(one, "A=1"));
    EXPECT_FALSE(table.claimName(two, "A=2"));
    table.release(one);
    EXPECT_EQ(ownerOf(table.claimName(one, "A=2")), 2U);
    EXPECT_FALSE(table.claimName(two, "A=1"));
    table.release(two);
    EXPECT_FALSE(table.claimName(one, "A=1"));
    EXPECT_FALSE(table.claimName(one, "A=2"));
}

TEST_F(ClaimTableTest, ClaimMembership_IsOfOneParentAndOneClass) {
    EXPECT_FALSE(table.claimMembership(one, 5, 1));
    EXPECT_TRUE(table.claimMembership(two, 5, 1));
    EXPECT_FALSE(table.claimMembership(two, 5, 2));
    EXPECT_FALSE(table.claimMembership(two, 6, 1));
}

}
}
