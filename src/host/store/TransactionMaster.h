// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_TRANSACTIONMASTER_H
#define ORV_HOST_STORE_TRANSACTIONMASTER_H

#include "OrvMgmtSpiInterface_1.h"
#include "OrvReturn.h"

/// The driving side of transactions as a table, offered by the reference host under
/// "OrvOamSpiTransactionService", "OrvOamSpiTransactionMaster", "1". Components name that identity
/// among what they require, which tells them that somebody drives transactions here; a client that
/// holds no C++ object of the host may drive them with it.
///
/// Messages of refusals wait in the thread context of the calling thread. Any thread; one
/// transaction is driven by one thread at a time.
struct OrvHostTransactionMaster_1 {
    OrvMgmtSpiInterface_1 identity;

    /// Slot 1. Begins a transaction and leaves its handle in \p txHandle.
    OrvReturnT (*begin)(unsigned long* txHandle);
    /// Slot 2. Asks all participants; the transaction goes on whatever they say. The verdict is in
    /// \p result after OrvOk.
    OrvReturnT (*validate)(unsigned long txHandle, bool* result);
    /// Slot 3. Validates, prepares, commits and finishes. Any other code than OrvOk means that the
    /// transaction has been aborted and finished instead, or that the handle is unknown
    /// (OrvNotActive).
    OrvReturnT (*commit)(unsigned long txHandle);
    /// Slot 4. Aborts and finishes.
    OrvReturnT (*abort)(unsigned long txHandle);
};

#endif
