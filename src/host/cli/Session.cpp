// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Session.h"

#include "ViolationReader.h"

namespace OrvHost {

bool Session::write(const std::function<void(unsigned long txHandle)>& work) {
    if (Transactions::Entry* current = mTransactions.current()) {
        work(current->handle);
        ++current->writes;
        return false;
    }
    const Transactions::Entry own{"", mHost.transactions().begin(), 0};
    mTransactions.addUnnamed(own.handle);
    try {
        work(own.handle);
    } catch (...) {
        mHost.transactions().abort(own.handle);
        throw;
    }
    commit(own);
    return true;
}

const Transactions::Entry& Session::begin(const std::string& name) {
    mTransactions.requireFree(name);
    mTransactions.add(name, mHost.transactions().begin());
    return mTransactions.require(name);
}

void Session::validate(const Transactions::Entry& transaction) {
    const TransactionOutcome outcome = mHost.transactions().validate(transaction.handle);
    if (!outcome.accepted) {
        throw Refusal("validate", transaction.name, outcome,
                      ViolationReader(*this, transaction.handle).read(outcome.messages));
    }
}

// The refusal aborts the transaction, so the violations must be read before that.
std::string Session::commit(const Transactions::Entry& transaction) {
    const Transactions::Entry ended = transaction;
    std::vector<Violation> violations;
    const TransactionOutcome outcome =
        mHost.transactions().commit(ended.handle, [&](const TransactionOutcome& refused) {
            violations = ViolationReader(*this, ended.handle).read(refused.messages);
        });
    mTransactions.remove(ended.handle);
    if (!outcome.accepted) {
        throw Refusal("commit", ended.name, outcome, violations);
    }
    return outcome.reason;
}

std::string Session::abort(const Transactions::Entry& transaction) {
    const unsigned long handle = transaction.handle;
    const TransactionOutcome outcome = mHost.transactions().abort(handle);
    mTransactions.remove(handle);
    return outcome.reason;
}

}
