// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "life/TransactionData.h"

#include "life/UnderLock.h"

#include <memory>
#include <stdexcept>

namespace OrvExtCmRouterService {

TransactionData::TransactionData(OrvOamSpiTransactionalResource_2* joined) : resource(joined) {}

TransactionData::~TransactionData() {
    sweep();
}

// The lock is held while the host's join runs, so that a transaction is joined only once.
Orv::AutoMemory* TransactionData::getTxData(const TracePoint& operation, unsigned long txHandle) {
    return underLock(mMutex, [&] {
        const auto found = memoryByTx.find(txHandle);
        return found != memoryByTx.end() ? found->second : join(operation, txHandle);
    });
}

Orv::AutoMemory* TransactionData::join(const TracePoint& operation, unsigned long txHandle) {
    // What is not joined would never be validated or finished.
    if (transaction == nullptr) {
        ORV_LOG_AT(operation, 3,
                   "Transaction %lu cannot be joined without the host's transaction table",
                   txHandle);
        throw std::runtime_error("no transaction table");
    }
    // Entered first, and kept whatever the host answers: an operation needs the memory in any case.
    auto memory = std::make_unique<Orv::AutoMemory>();
    memoryByTx.emplace(txHandle, memory.get());
    Orv::AutoMemory* const entered = memory.release();
    transaction->join(txHandle, resource);
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
