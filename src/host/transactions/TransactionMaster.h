// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_TRANSACTIONS_TRANSACTIONMASTER_H
#define ORV_HOST_TRANSACTIONS_TRANSACTIONMASTER_H

#include "OrvMgmtSpiInterface_1.h"
#include "OrvReturn.h"

/// A table with which a client drives transactions, offered by the reference host under
/// OrvOamSpiTransactionMaster_1_Id. Components require that
/// identity: if it is offered, the host has somebody who drives transactions. A client that has no
/// C++ object of the host may drive transactions with the table.
///
/// Messages of refusals are in the thread context of the calling thread. Any thread; each
/// transaction is driven by one thread at a time.
struct OrvHostTransactionMaster_1 {
    OrvMgmtSpiInterface_1 identity;

    /// Slot 1. Begins a transaction and writes its handle to \p txHandle.
    OrvReturnT (*begin)(unsigned long* txHandle);
    /// Slot 2. Asks all participants; the transaction stays open for every answer. After OrvOk
    /// the verdict is in \p result.
    OrvReturnT (*validate)(unsigned long txHandle, bool* result);
    /// Slot 3. Validates, prepares, commits and finishes. Any other code than OrvOk means that the
    /// transaction has been aborted and finished instead, or that the handle is unknown
    /// (OrvNotActive). After OrvHostOutcomeUnknown (-106) it may be committed nevertheless.
    OrvReturnT (*commit)(unsigned long txHandle);
    /// Slot 4. Aborts and finishes.
    OrvReturnT (*abort)(unsigned long txHandle);
};

#endif
