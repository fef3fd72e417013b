// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_TRANSACTIONDATA_H
#define ORV_EXT_CM_TRANSACTIONDATA_H

#include "AutoMemory.h"
#include "OrvOamSpiTransaction_1.h"
#include "OrvOamSpiTransactionalResource_2.h"
#include "messages/Tracing.h"

#include <Poco/Mutex.h>

#include <map>

namespace OrvExtCmRouterService {

/// The transactions that the component takes part in, with the memory that lives as long as each.
/// An entry is made at the first touch of a transaction, which is also when the component joins it,
/// and goes when the transaction is finished or the component stops.
///
/// Threads: mMutex guards memoryByTx, not the memories in it: one transaction is driven by one
/// thread at a time. The mutex is held while the host's join runs and while memory is dropped; the
/// mutex of the iterators is taken inside it, never in the other order.
class TransactionData {
public:
    /// \p joined is the table that the host is given at each join; not owned.
    explicit TransactionData(OrvOamSpiTransactionalResource_2* joined);
    TransactionData(const TransactionData&) = delete;
    TransactionData& operator=(const TransactionData&) = delete;
    virtual ~TransactionData();

    /// The memory of the transaction, never null. The first call for a handle joins the host's
    /// transaction. What the host answers is not looked at, and a join that throws leaves the entry
    /// in place, so that the next call does not join again. \throws std::runtime_error, with
    /// nothing entered, if there is no table to join a new transaction at.
    Orv::AutoMemory* getTxData(const TracePoint& operation, unsigned long txHandle);

    /// Forgets the host's table and drops all transactions, in the order of their handles. Takes no
    /// lock: for when no operation runs.
    void sweep();

    std::map<unsigned long, Orv::AutoMemory*> memoryByTx; ///< owned
    OrvOamSpiTransaction_1* transaction = nullptr;        ///< set between start and stop
    Poco::Mutex mMutex;
    OrvOamSpiTransactionalResource_2* resource;

private:
    Orv::AutoMemory* join(const TracePoint& operation, unsigned long txHandle);
};

}

#endif
