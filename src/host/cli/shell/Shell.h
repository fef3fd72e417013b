// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_SHELL_SHELL_H
#define ORV_HOST_CLI_SHELL_SHELL_H

#include "cli/errors/CliErrors.h"
#include "cli/shell/Completer.h"
#include "client/CancellationToken.h"

#include <cstddef>
#include <functional>
#include <istream>
#include <string>
#include <vector>

namespace OrvHost {

/// How a shell answers.
struct ShellLook {
    bool json = false;
    bool echo = false;          ///< lines are shown before their answers
    bool answerColours = false; ///< answers can have colours
    bool errorColours = false;  ///< so can errors and notes
    bool isTyped = false; ///< somebody types and reads: there is a greeting, and there are hints
};

/// A transaction that is open, with writes that would be lost.
struct UncommittedWork {
    std::string transaction;
    std::size_t writes = 0;
};

/// What runs commands for the program: a session of its own, or one of a server. Answers go to the
/// standard output, errors to the standard error stream.
///
/// One thread; cancellation() may be used by signal handlers.
class Shell {
public:
    Shell() = default;
    virtual ~Shell() = default;
    Shell(const Shell&) = delete;
    Shell& operator=(const Shell&) = delete;

    /// See Interpreter. \p place may be empty.
    virtual ExitStatus runLine(const std::string& line, const std::string& place) = 0;
    virtual ExitStatus runWords(const std::vector<std::string>& words) = 0;
    virtual ExitStatus runScript(std::istream& script, const std::string& name, bool keepGoing) = 0;
    /// A line from the prompt.
    virtual ExitStatus runTyped(const std::string& line) { return runLine(line, {}); }

    /// What is loaded, for people: lines.
    virtual std::string greeting() = 0;
    virtual std::string prompt() = 0;
    virtual Completion complete(const std::string& line) = 0;
    /// To be cancelled while a command runs.
    virtual CancellationToken& cancellation() = 0;
    virtual std::vector<UncommittedWork> uncommitted() = 0;

    /// Asks the user before something that cannot be taken back; false means no. At the prompt.
    using Question = std::function<bool(const std::string& text)>;
    virtual void setQuestion(const Question& question) { static_cast<void>(question); }

    virtual bool isEnded() const = 0;
    virtual void end() = 0;
    /// Takes end() back.
    virtual void goOn() = 0;
    /// A descriptor that can be read as soon as the shell has ended without being asked; -1: it
    /// does not.
    virtual int endFd() const { return -1; }
    /// The shell has ended without being asked, and cannot go on.
    virtual bool isLost() const { return false; }
};

}

#endif
