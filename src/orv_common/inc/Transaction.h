// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_ORV_COMMON_TRANSACTION_H
#define ORV_ORV_COMMON_TRANSACTION_H

namespace Orv {

/// Base of what works inside a transaction of the host. One thread at a time.
class Transaction {
public:
    virtual ~Transaction();

    /// Binds this object to the transaction `txHandle`; everything done before goes to transaction
    /// 0.
    void useTransaction(const unsigned long& txHandle);

protected:
    unsigned long transactionHandle() const;

private:
    unsigned long mTxHandle = 0;
};

}

#endif
