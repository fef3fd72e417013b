// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The registry of transactions, from several threads at once.

#include "life/TransactionData.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

using namespace OrvExtCmRouterService;

namespace {

constexpr unsigned int kThreads = 4;
constexpr unsigned int kRounds = 500;

void onThreads(const std::function<void(unsigned int thread)>& work) {
    std::vector<std::thread> threads;
    for (unsigned int number = 0; number < kThreads; ++number) {
        threads.emplace_back(work, number);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

std::atomic<unsigned int> joins = 0;
OrvReturnT join(unsigned long, OrvOamSpiTransactionalResource_2*) {
    ++joins;
    return OrvOk;
}

}

TEST(Threads, Registry_EveryHandleIsJoinedOnce) {
    OrvOamSpiTransaction_1 table{{}, &join};
    OrvOamSpiTransactionalResource_2 resource{};
    TransactionData data(&resource);
    data.transaction = &table;
    joins = 0;
    onThreads([&](unsigned int) {
        for (unsigned long handle = 0; handle < kRounds; ++handle) {
            EXPECT_NE(data.getTxData(ORV_TRACE_POINT, handle), nullptr);
        }
    });
    EXPECT_EQ(joins, kRounds);
    EXPECT_EQ(data.memoryByTx.size(), kRounds);
}
