// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_REFUSAL_H
#define ORV_HOST_CLI_REFUSAL_H

#include "ValueJson.h"
#include "transactions/TransactionService.h"

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace OrvHost {

/// One message of a refusal, with the facts that a person needs to act on it.
struct Violation {
    std::string message; ///< as the client gets it
    JsonValue details;   ///< an object: which object, which attribute, the value there, and so on
};

/// A transaction that is not valid, or was not committed.
class Refusal : public std::runtime_error {
public:
    /// \p operation: "validate" or "commit"; \p transaction: its name, empty if it has none.
    Refusal(const std::string& operation, std::string transaction, TransactionOutcome outcome,
            std::vector<Violation> violations)
        : std::runtime_error(operation),
          mTransaction(std::move(transaction)),
          mOutcome(std::move(outcome)),
          mViolations(std::move(violations)) {}

    const std::string& transaction() const { return mTransaction; }
    const TransactionOutcome& outcome() const { return mOutcome; }
    const std::vector<Violation>& violations() const { return mViolations; }

private:
    std::string mTransaction;
    TransactionOutcome mOutcome;
    std::vector<Violation> mViolations;
};

}

#endif
