// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The classes that are shared between threads, each from several at once.

#include "ExtCmInterceptorRepository.h"
#include "MoImpl.h"
#include "MoInterceptorBase.h"
#include "life/TransactionData.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <string>
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

OrvReturnT newIterator(unsigned long, const char*, const char*, void** iterator) {
    *iterator = nullptr;
    return OrvOk;
}
OrvReturnT next(void*, char** result) {
    *result = nullptr;
    return OrvOk;
}

class Service : public IterImpl<OrvOamSpiManagedObject_1, void*> {
public:
    Service(IdMappings& ids, TransactionData& data) : IterImpl(ids), transactions(data) {
        table.newMoIterator = &newIterator;
        table.nextMo = &next;
    }
    Orv::AutoMemory* getTxData(unsigned long txHandle) override {
        return transactions.getTxData(ORV_TRACE_POINT, txHandle);
    }
    OrvOamSpiManagedObject_1* getCmRouter() override { return &table; }

private:
    TransactionData& transactions;
    OrvOamSpiManagedObject_1 table{};
};

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

TEST(Threads, Repository_RegistersAndFindsSideBySide) {
    ExtCmInterceptorRepository repository;
    MoInterceptorBase shared;
    ASSERT_EQ(repository.registerClass(shared, "Shared"), OrvOk);
    onThreads([&](unsigned int thread) {
        MoInterceptorBase own;
        const std::string path = "Own" + std::to_string(thread);
        for (unsigned int round = 0; round < kRounds; ++round) {
            EXPECT_EQ(repository.registerClass(own, path), OrvOk);
            EXPECT_EQ(repository.getInterceptor("Shared"), &shared);
            EXPECT_EQ(repository.getInterceptor(path), &own);
            repository.deregisterClass(path);
        }
    });
}

TEST(Threads, Iterators_OpenWalkAndEndInEachTransaction) {
    OrvOamSpiTransaction_1 table{{}, &join};
    OrvOamSpiTransactionalResource_2 resource{};
    TransactionData data(&resource);
    data.transaction = &table;
    IdMappings mappings(Orv::MeIdTranslator::instance());
    Service service(mappings, data);
    onThreads([&](unsigned int thread) {
        std::vector<void*> handles;
        char* text = nullptr;
        for (unsigned int round = 0; round < kRounds; ++round) {
            void* handle = nullptr;
            EXPECT_EQ(service.newMoIterator(thread, "A=1", "B", &handle), OrvOk);
            EXPECT_EQ(service.nextMo(handle, &text), OrvOk);
            handles.push_back(handle);
        }
        for (void* handle : handles) {
            EXPECT_EQ(service.nextMo(handle, &text), OrvOk);
        }
    });
    data.sweep();
}
