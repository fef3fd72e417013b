// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "client/OpenTransactions.h"

#include "client/ClientErrors.h"

#include <gmock/gmock.h>

namespace OrvHost {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::ThrowsMessage;

class OpenTransactionsTest : public testing::Test {
protected:
    OpenTransactions transactions;
};

TEST_F(OpenTransactionsTest, Add_SeveralSideBySide_TheLastIsTheCurrentOne) {
    transactions.add("a", 5);
    transactions.add("b", 6);
    EXPECT_EQ(transactions.current()->name, "b");
    EXPECT_THAT(transactions.names(), ElementsAre("a", "b"));
    EXPECT_EQ(transactions.require("a").handle, 5U);
    EXPECT_EQ(transactions.require(std::nullopt).handle, 6U);
}

TEST_F(OpenTransactionsTest, Use_AnotherOrNone_ChangesTheCurrentOneOnly) {
    transactions.add("a", 5);
    transactions.add("b", 6);
    transactions.use("a");
    EXPECT_EQ(transactions.current()->handle, 5U);
    transactions.leave();
    EXPECT_EQ(transactions.current(), nullptr);
    EXPECT_THAT(transactions.names(), ElementsAre("a", "b"));
}

TEST_F(OpenTransactionsTest, Remove_CurrentOrOther_LeavesTheRest) {
    transactions.add("a", 5);
    transactions.add("b", 6);
    transactions.remove(5);
    EXPECT_EQ(transactions.current()->name, "b");
    transactions.remove(6);
    EXPECT_EQ(transactions.current(), nullptr);
    transactions.remove(6);
    EXPECT_TRUE(transactions.all().empty());
}

TEST_F(OpenTransactionsTest, WithNames_OfOpenOnesAndThoseThatEndedLast) {
    transactions.add("long", 1);
    for (unsigned long handle = 2; handle < 5000; ++handle) {
        transactions.add(transactions.freeName(), handle);
        transactions.remove(handle);
        transactions.addUnnamed(5000 + handle);
    }
    EXPECT_EQ(transactions.withNames("transaction 1"), "transaction long");
    EXPECT_EQ(transactions.withNames("transaction 9999"), "a write without a transaction");
    EXPECT_EQ(transactions.withNames("transaction 2"), "transaction 2") << "long ago";
    EXPECT_EQ(transactions.freeName(), "t4999");
}

TEST_F(OpenTransactionsTest, FreeName_IsTheFirstThatWasNeverUsed) {
    for (const char* name : {"t2", "t1", "t4", "t04", "tail", "t"}) {
        transactions.add(name, 1);
        transactions.remove(1);
    }
    EXPECT_EQ(transactions.freeName(), "t3");
    transactions.add("t3", 1);
    EXPECT_EQ(transactions.freeName(), "t5");
}

TEST_F(OpenTransactionsTest, Name_TakenEmptyOrOfTwoWords_IsRefused) {
    transactions.add("a", 5);
    EXPECT_THROW(transactions.requireFree("a"), RequestError);
    EXPECT_THROW(transactions.requireFree(""), RequestError);
    EXPECT_THROW(transactions.requireFree("b c"), RequestError);
    EXPECT_NO_THROW(transactions.requireFree("b"));
    transactions.remove(5);
    EXPECT_NO_THROW(transactions.requireFree("a"));
}

TEST_F(OpenTransactionsTest, FreeName_UsedBefore_IsNotGivenAgain) {
    EXPECT_EQ(transactions.freeName(), "t1");
    transactions.add("t1", 5);
    transactions.remove(5);
    EXPECT_EQ(transactions.freeName(), "t2");
}

TEST_F(OpenTransactionsTest, Unknown_NameOrNone_TellsWhichAreOpen) {
    EXPECT_THAT([&] { transactions.use("move"); },
                ThrowsMessage<RequestError>(HasSubstr("none is open, 'begin' opens one")));
    transactions.add("move", 5);
    EXPECT_THAT([&] { transactions.use("moev"); },
                ThrowsMessage<RequestError>("there is no open transaction 'moev'; open: move. "
                                            "Did you mean move?"));
    transactions.leave();
    EXPECT_THAT([&] { transactions.require(std::nullopt); },
                ThrowsMessage<RequestError>("no transaction is the current one; open: move"));
}

TEST_F(OpenTransactionsTest, Text_WithHandles_GetsTheNamesAlsoOfEndedOnes) {
    transactions.add("move", 5);
    transactions.remove(5);
    transactions.addUnnamed(6);
    EXPECT_EQ(transactions.withNames("by transaction 5, transaction 6 and transaction 55"),
              "by transaction move, a write without a transaction and transaction 55");
    EXPECT_EQ(transactions.withNames("nothing"), "nothing");
    EXPECT_EQ(transactions.withNames("transaction 99999999999999999999999"),
              "transaction 99999999999999999999999");
}

}
}
