// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "life/TransactionData.h"

#include "IsFree.h"
#include "OrvReturn.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <stdexcept>
#include <type_traits>
#include <vector>

using OrvExtCmRouterService::TransactionData;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

int joins = 0;
bool joinThrows = false;
std::vector<int> destroyed;

Poco::Mutex* lookedAtByJoin = nullptr;
bool freeDuringJoin = false;
const std::map<unsigned long, Orv::AutoMemory*>* entriesSeenByJoin = nullptr;
bool enteredBeforeJoin = false;

OrvReturnT join(unsigned long txHandle, OrvOamSpiTransactionalResource_2* /*resource*/) {
    ++joins;
    if (lookedAtByJoin != nullptr) {
        freeDuringJoin = isFree(*lookedAtByJoin);
        enteredBeforeJoin = entriesSeenByJoin->count(txHandle) == 1;
    }
    if (joinThrows) {
        throw std::runtime_error("join");
    }
    return OrvOk;
}

// Tells when the memory that owns it goes.
struct Witness {
    explicit Witness(int number) : id(number) {}
    Witness(const Witness&) = delete;
    Witness& operator=(const Witness&) = delete;
    ~Witness() { destroyed.push_back(id); }
    int id;
};

class TransactionDataTest : public testing::Test {
protected:
    TransactionDataTest() {
        joins = 0;
        destroyed.clear();
        joinThrows = false;
        lookedAtByJoin = nullptr;
        data.transaction = &table;
    }

    OrvOamSpiTransaction_1 table{{}, &join};
    OrvOamSpiTransactionalResource_2 resource{};
    TransactionData data{&resource};
};

}

TEST_F(TransactionDataTest, New_HasNoTableAndNoTransactions) {
    const TransactionData fresh(&resource);
    EXPECT_EQ(fresh.transaction, nullptr);
    EXPECT_EQ(fresh.resource, &resource);
    EXPECT_THAT(fresh.memoryByTx, IsEmpty());
}

// The lock is free again after an exception: another thread may go on.
TEST_F(TransactionDataTest, GetTxData_JoinThrows_LetsGoOfTheLock) {
    joinThrows = true;
    EXPECT_THROW(data.getTxData(ORV_TRACE_POINT, 1), std::runtime_error);
    EXPECT_TRUE(isFree(data.mMutex));
}

TEST_F(TransactionDataTest, GetTxData_Join_RunsWithTheEntryMadeAndTheLockHeld) {
    lookedAtByJoin = &data.mMutex;
    entriesSeenByJoin = &data.memoryByTx;
    freeDuringJoin = true;
    data.getTxData(ORV_TRACE_POINT, 1);
    EXPECT_EQ(joins, 1);
    EXPECT_TRUE(enteredBeforeJoin);
    EXPECT_FALSE(freeDuringJoin);
}

TEST_F(TransactionDataTest, GetTxData_Served_LetsGoOfTheLock) {
    data.getTxData(ORV_TRACE_POINT, 1);
    EXPECT_TRUE(isFree(data.mMutex));
    data.getTxData(ORV_TRACE_POINT, 1);
    EXPECT_TRUE(isFree(data.mMutex));
}

TEST_F(TransactionDataTest, Type_IsPolymorphicWithoutCopies) {
    static_assert(std::has_virtual_destructor_v<TransactionData>);
    static_assert(!std::is_copy_constructible_v<TransactionData>);
}

TEST_F(TransactionDataTest, Sweep_DropsAllInTheOrderOfTheirHandlesAndTheTable) {
    for (const int handle : {3, 1, 2}) {
        data.getTxData(ORV_TRACE_POINT, static_cast<unsigned long>(handle))
            ->own(new Witness(handle));
    }
    data.sweep();
    EXPECT_THAT(destroyed, ElementsAre(1, 2, 3));
    EXPECT_THAT(data.memoryByTx, IsEmpty());
    EXPECT_EQ(data.transaction, nullptr);
}

TEST_F(TransactionDataTest, Destruction_DropsAllInTheOrderOfTheirHandles) {
    {
        TransactionData shortLived(&resource);
        shortLived.transaction = &table;
        for (const int handle : {9, 4}) {
            shortLived.getTxData(ORV_TRACE_POINT, static_cast<unsigned long>(handle))
                ->own(new Witness(handle));
        }
    }
    EXPECT_THAT(destroyed, ElementsAre(4, 9));
}
