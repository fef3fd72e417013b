// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_ORV_COMMON_TRANSACTION_H
#define ORV_ORV_COMMON_TRANSACTION_H

namespace Orv {

/// Base of what works inside a transaction of the host. It begins and ends none and keeps only the
/// handle. Threads: one at a time. Conventions: OrvConventions.h.
class Transaction {
public:
    virtual ~Transaction();

    /// Binds this object to the transaction `txHandle`, in place of the one before; what is done
    /// before the first call goes to transaction 0. The handle is copied and not checked.
    void useTransaction(const unsigned long& txHandle);

protected:
    unsigned long transactionHandle() const;

private:
    unsigned long mTxHandle = 0;
};

}

#endif
