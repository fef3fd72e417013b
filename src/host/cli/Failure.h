// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_FAILURE_H
#define ORV_HOST_CLI_FAILURE_H

#include "CliError.h"
#include "ValueJson.h"

#include <exception>
#include <optional>
#include <string>
#include <vector>

namespace OrvHost {

class CommandTable;
class Refusal;
class Session;

/// All facts about a command that failed.
// NOLINTNEXTLINE(bugprone-exception-escape): moving JSON calls functions that cannot throw here
struct Failure {
    ExitStatus status = ExitCommandError;
    std::optional<OrvReturnT> code;    ///< if a table or the host returned one
    std::string text;                  ///< for people; can have several lines
    std::vector<std::string> messages; ///< of the thread context, as the client gets them
    JsonValue document;                ///< all of these
};

/// Turns what a command threw into a Failure. One thread at a time.
class FailureReader {
public:
    /// Both must outlive this object.
    FailureReader(Session& session, const CommandTable& commands)
        : mSession(session), mCommands(commands) {}

    /// \p error is what the command with that name threw; never null.
    Failure read(const std::string& command, const std::exception_ptr& error);

private:
    Failure read(const OperationError& error);
    std::string explain(const OperationError& error);

    Session& mSession;
    const CommandTable& mCommands;
};

/// The names of all codes that can be returned: "OrvNotExist".
std::string codeName(OrvReturnT code);
std::optional<OrvReturnT> codeOfName(const std::string& name);

}

#endif
