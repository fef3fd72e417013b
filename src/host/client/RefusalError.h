// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_REFUSALERROR_H
#define ORV_HOST_CLIENT_REFUSALERROR_H

#include "ReadValue.h"
#include "transactions/TransactionService.h"

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

namespace OrvHost {

/// What is wrong with a number of values or references.
enum class CountProblem : std::uint8_t { TooFew, TooMany };

/// One message of a refusal, with the facts that a person needs to act on it. Facts that are not
/// known are left out.
struct Violation {
    std::string message;               ///< as the client gets it
    std::optional<std::string> object; ///< external DN; "/" for the top level
    std::optional<std::string> attribute;
    /// In words, or the values of the attribute; std::monostate: not known.
    std::variant<std::monostate, std::string, ReadValue> found;
    std::optional<std::string> allowed; ///< in words
    std::optional<CountProblem> count;  ///< if it is about a number of values or references
};

/// A transaction that is not valid, or was not committed. what() has its name, the code and the
/// messages.
class RefusalError : public std::runtime_error {
public:
    /// What was refused.
    enum class Operation { Validate, Commit };

    /// \p transaction: its name, empty if it has none.
    RefusalError(Operation operation, std::string transaction, TransactionOutcome outcome,
                 std::vector<Violation> violations);

    Operation operation() const { return mOperation; }
    const std::string& transaction() const { return mTransaction; }
    const TransactionOutcome& outcome() const { return mOutcome; }
    const std::vector<Violation>& violations() const { return mViolations; }
    /// The name and the code: "transaction move: OrvValidationFailed (-9)".
    std::string summary() const;

private:
    Operation mOperation;
    std::string mTransaction;
    TransactionOutcome mOutcome;
    std::vector<Violation> mViolations;
};

}

#endif
