// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_COMMANDS_COMMANDTABLE_H
#define ORV_HOST_CLI_COMMANDS_COMMANDTABLE_H

#include "cli/input/Words.h"

#include <functional>
#include <string>
#include <vector>

namespace OrvHost {

class Session;

/// What a word of a command means: for completion.
enum class WordKind {
    Dn,         ///< external DN of an object
    ChildClass, ///< class of children of the object named earlier
    Attribute,  ///< attribute of the object named earlier
    AnyClass,   ///< class of the model
    /// class of the model, or CLASS.ATTRIBUTE
    ClassOrAttribute,
    DnOrClass,   ///< external DN of an object, or ClassOrAttribute
    Command,     ///< name of a command
    Assignment,  ///< ATTRIBUTE=VALUE for the object named earlier
    Action,      ///< action of the object named earlier
    Parameter,   ///< PARAMETER=VALUE for the action named earlier
    Transaction, ///< name of an open transaction
    Version,     ///< version of the MO interface
    File,        ///< name of a file
    State,       ///< what diff compares: committed, an open transaction, or a file
    LoadMode,    ///< merge or replace
    LogPart,     ///< level or tail
    LogLevel,    ///< name of a level of logging
    Other
};

/// One command of orvhost: everything that help, completion and the interpreter need.
struct Command {
    std::string name;
    std::string synopsis{};             ///< words after the name
    std::string summary;                ///< one line
    std::string details{};              ///< more of it, lines ended; may be empty
    std::vector<WordKind> words{};      ///< the kinds of its words; the last one may repeat
    std::vector<std::string> options{}; ///< "--depth" and the like
    std::string alias{};                ///< another name, not shown in lists; may be empty
    bool takesCommand = false;          ///< its words are another command with its options
    std::string whyNotServed{};         ///< why a server's shell does not have it; empty: it has

    /// Runs the command and prints its answer. `words` are the words after the command's name.
    /// Throws RequestError (UsageError is one) for words that it does not understand, AnswerError
    /// for an answer that is no, OperationError for a code from the component, CancelledError when
    /// the session is cancelled; in JSON mode nothing has been printed then. What each means for
    /// the exit status stands in errors/Failure.cpp.
    std::function<void(Session& session, Words words)> run;

    /// \p given are the words after the command's name; returns those for run(). The value of an
    /// option can be the next word or come after a "=". Words after "--" are no options. Throws
    /// UsageError for a word before it that is written as an option, in small letters and hyphens,
    /// and is none of this command.
    Words read(const std::vector<std::string>& given, const std::string& here) const;

    /// Name and synopsis.
    std::string usage() const { return name + (synopsis.empty() ? "" : " ") + synopsis; }
};

/// All commands, in the order in which help shows them. To add a command, declare its function in
/// Commands.h and add an entry to the constructor. Immutable.
class CommandTable {
public:
    CommandTable();
    CommandTable(const CommandTable&) = delete;
    CommandTable& operator=(const CommandTable&) = delete;

    const std::vector<Command>& all() const { return mCommands; }
    std::vector<std::string> names() const;
    /// Those that the session has: a server's shell does not have all of them.
    std::vector<std::string> names(const Session& session) const;

    /// Runs the command that \p words, which are not empty, begin with. Throws what Command::run
    /// throws, UsageError if there is no such command or it has no such option, and AnswerError if
    /// a server's shell does not have it.
    void run(Session& session, const std::vector<std::string>& words) const;

    /// The command with that name or alias, or null.
    const Command* find(const std::string& name) const;

    /// The same, but throws UsageError with a suggestion.
    const Command& require(const std::string& name) const;

    /// What \p words, which are not empty, call, for a log: the name of the command, or
    /// "expect : commit" for one within expectations. Nothing else of the words is in it.
    std::string namesIn(std::vector<std::string> words) const;

    /// How the command is written; empty if there is none with that name.
    std::string usageOf(const std::string& name) const;

private:
    std::vector<Command> mCommands;
};

}

#endif
