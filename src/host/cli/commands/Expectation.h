// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_COMMANDS_EXPECTATION_H
#define ORV_HOST_CLI_COMMANDS_EXPECTATION_H

#include "cli/errors/Failure.h"
#include "cli/input/Words.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace OrvHost {

/// So many expectations can be within one another: each needs more of the stack.
constexpr int kMostExpectations = 20;

/// What a command answered.
struct Answer {
    std::string output;             ///< what it printed, without the end of the last line
    std::optional<Failure> failure; ///< nothing if all went well
};

/// What a command should answer.
///
/// As words: CLAUSES ":" COMMAND. Clauses are
///
/// - an outcome, at most one: `ok` (as without an outcome), `error`, `usage`, the name of a code or
///   its number;
/// - `message [containing] TEXT`: one of the messages that the client gets;
/// - `messages N`: so many messages;
/// - `output [containing] TEXT`: all that the command printed;
/// - `explanation containing TEXT`: what orvhost explains to people about the failure.
class Expectation {
public:
    /// Removes the clauses and the colon from \p words. Throws UsageError.
    explicit Expectation(Words& words);

    /// How \p answer differs, for people: a line "expected ..." and a line "got ...", each with a
    /// line end; empty if it does not.
    std::string compare(const Answer& answer) const;

private:
    struct Clause {
        std::string text; ///< as it was written
        std::function<bool(const Answer&)> isMet;
        std::function<std::string(const Answer&)> got;
    };

    Clause parseClause(const std::string& word, Words& words);
    static Clause parseText(const std::string& subject, Words& words);
    static Clause parseOutcome(const std::string& word);

    bool mHasOutcome = false;
    std::vector<Clause> mClauses;
};

}

#endif
