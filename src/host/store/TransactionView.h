// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_TRANSACTIONVIEW_H
#define ORV_HOST_STORE_TRANSACTIONVIEW_H

#include "StoreTransaction.h"
#include "model/RuleCheck.h"

#include <string>
#include <vector>

namespace OrvHost {

/// The objects as a transaction sees them, for a check of rules. What is not there is answered with
/// an exception of the store. The transaction must outlive this object.
class TransactionView : public ObjectView {
public:
    explicit TransactionView(const StoreTransaction& transaction) : mTransaction(transaction) {}

    bool exists(const std::string& dn) const override { return mTransaction.exists(dn); }
    std::vector<NamedValue> valuesOf(const std::string& dn) const override {
        return mTransaction.stored(dn);
    }
    std::vector<std::string> namesOf(const std::string& parentDn,
                                     const std::string& className) const override;

private:
    const StoreTransaction& mTransaction;
};

/// The objects that differ from what was committed.
std::vector<TouchedObject> touchedBy(const StoreTransaction& transaction);

}

#endif
