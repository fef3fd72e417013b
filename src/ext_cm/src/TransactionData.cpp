// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "TransactionData.h"
#include "ServiceLock.h"

#include <memory>

namespace OrvExtCmRouterService {

TransactionData::TransactionData(OrvOamSpiTransactionalResource_2* joined) : resource(joined) {}

TransactionData::~TransactionData() {
    sweep();
}

Orv::AutoMemory* TransactionData::getTxData(unsigned long txHandle) {
    ServiceLock lock(mMutex);
    const auto found = memoryByTx.find(txHandle);
    if (found != memoryByTx.end()) {
        Orv::AutoMemory* const known = found->second;
        lock.unlock();
        return known;
    }
    auto memory = std::make_unique<Orv::AutoMemory>();
    memoryByTx.emplace(txHandle, memory.get());
    Orv::AutoMemory* const entered = memory.release();
    transaction->join(txHandle, resource);
    lock.unlock();
    return entered;
}

void TransactionData::sweep() {
    transaction = nullptr;
    for (const auto& entry : memoryByTx) {
        delete entry.second;
    }
    memoryByTx.clear();
}

}
