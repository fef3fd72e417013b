// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Transaction.h"

namespace Orv {

Transaction::~Transaction() = default;

void Transaction::useTransaction(const unsigned long& txHandle) {
    mTxHandle = txHandle;
}

unsigned long Transaction::transactionHandle() const {
    return mTxHandle;
}

}
