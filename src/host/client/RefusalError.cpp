// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RefusalError.h"

#include "ClientErrors.h"

#include <utility>

namespace OrvHost {

namespace {

std::string summaryOf(const std::string& transaction, OrvReturnT code) {
    return (transaction.empty() ? "not committed: " : "transaction " + transaction + ": ") +
           codeText(code);
}

std::string whatOf(const std::string& transaction, const TransactionOutcome& outcome,
                   const std::vector<Violation>& violations) {
    std::string text = summaryOf(transaction, outcome.code);
    for (const Violation& violation : violations) {
        text += "; " + violation.message;
    }
    return text + "; " + outcome.reason;
}

}

RefusalError::RefusalError(Operation operation, std::string transaction, TransactionOutcome outcome,
                           std::vector<Violation> violations)
    : std::runtime_error(whatOf(transaction, outcome, violations)),
      mOperation(operation),
      mTransaction(std::move(transaction)),
      mOutcome(std::move(outcome)),
      mViolations(std::move(violations)) {}

std::string RefusalError::summary() const {
    return summaryOf(mTransaction, mOutcome.code);
}

}
