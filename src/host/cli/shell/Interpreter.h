// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_SHELL_INTERPRETER_H
#define ORV_HOST_CLI_SHELL_INTERPRETER_H

#include "cli/commands/CommandTable.h"
#include "cli/errors/CliErrors.h"
#include "cli/session/Session.h"
#include "cli/shell/ScriptRunner.h"

#include <exception>
#include <istream>
#include <ostream>
#include <string>
#include <vector>

namespace OrvHost {

/// Runs commands and prints their answers and errors. One thread at a time.
///
/// Errors go to the error stream as text; in JSON mode they go to the session's output, as the only
/// document of the command that failed.
class Interpreter {
public:
    /// All must outlive this object.
    Interpreter(Session& session, const CommandTable& commands, std::ostream& errors);

    /// Whether lines are printed before they run, as if somebody had typed them. Lines with only a
    /// comment are printed as they are. Not in JSON mode.
    void echo(bool wanted) { mEchoes = wanted && !mSession.wantsJson(); }

    /// Runs one line; an empty one, or one with only a comment, gives ExitOk. \p place comes before
    /// errors, for example "file:12"; it may be empty.
    ExitStatus runLine(const std::string& line, const std::string& place = {});

    /// The same for a line that is already split into words.
    ExitStatus runWords(const std::vector<std::string>& words, const std::string& place = {});

    /// Runs a script line by line until its end, `quit`, or, unless \p keepGoing, the first error.
    /// Returns the first status that was not ExitOk.
    ExitStatus runScript(std::istream& script, const std::string& name, bool keepGoing) {
        return mScripts.run(script, name, keepGoing);
    }

private:
    ExitStatus runSource(Words words);
    void show(const std::string& line, bool isCommand);
    ExitStatus report(const std::string& command, const std::string& place,
                      const std::exception_ptr& error);

    Session& mSession;
    const CommandTable& mCommands;
    std::ostream& mErrors;
    bool mEchoes = false;
    ScriptRunner mScripts;
};

}

#endif
