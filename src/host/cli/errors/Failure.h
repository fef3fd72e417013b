// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_ERRORS_FAILURE_H
#define ORV_HOST_CLI_ERRORS_FAILURE_H

#include "CliErrors.h"
#include "cli/output/ValueJson.h"

#include <cstddef>
#include <exception>
#include <optional>
#include <string>
#include <vector>

namespace OrvHost {

class ClientSession;

/// All facts about a command that failed.
// NOLINTNEXTLINE(bugprone-exception-escape): moving JSON calls functions that cannot throw here
struct Failure {
    ExitStatus status = ExitCommandError;
    std::optional<OrvReturnT> code;    ///< if a table or the host returned one
    std::string text;                  ///< for people; can have several lines
    std::vector<std::string> messages; ///< of the thread context, as the client gets them
    JsonValue document;                ///< all of these
};

class PlanCancelledError;

/// Turns what a command threw into a Failure. One thread at a time.
class FailureReader {
public:
    /// \p session must outlive this object.
    explicit FailureReader(ClientSession& session) : mSession(session) {}

    /// \p error is what a command threw; never null. \p usage says how the command is written, for
    /// words that it did not understand; empty: there is no such command.
    Failure read(const std::string& usage, const std::exception_ptr& error);

private:
    Failure read(const OperationError& error);
    std::string explain(const OperationError& error);
    std::string whatStays(const PlanCancelledError& cancelled);

    ClientSession& mSession;
};

/// \p text in UTF-8, or, if it has more than \p most bytes, its beginning and how many it has.
std::string beginningOf(const std::string& text, std::size_t most);

/// The names of all codes that can be returned: "OrvNotExist".
std::string codeName(OrvReturnT code);
std::optional<OrvReturnT> codeOfName(const std::string& name);

}

#endif
