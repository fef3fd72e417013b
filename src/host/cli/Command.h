// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_COMMAND_H
#define ORV_HOST_CLI_COMMAND_H

#include "Words.h"

#include <string>
#include <vector>

namespace OrvHost {

class Session;

/// What a word of a command stands for: for completion.
enum class WordKind {
    Dn,          ///< external DN of an object
    ChildClass,  ///< class of children of the object named before
    Attribute,   ///< attribute of the object named before
    AnyClass,    ///< class of the model
    Command,     ///< name of a command
    Assignment,  ///< ATTRIBUTE=VALUE for the object named before
    Action,      ///< action of the object named before
    Parameter,   ///< PARAMETER=VALUE for the action named before
    Transaction, ///< name of an open transaction
    Version,     ///< version of the MO interface
    Other
};

/// What a person is told of a command.
struct CommandInfo {
    std::string name;
    std::string synopsis;             ///< words behind the name
    std::string summary;              ///< one line
    std::string details;              ///< more of it, lines ended; may be empty
    std::vector<WordKind> words;      ///< the kinds of its words; the last one may repeat
    std::vector<std::string> options; ///< "--depth" and the like
};

/// One command of orvhost. A class for each, entered in CommandTable.
class Command {
public:
    virtual ~Command() = default;

    virtual const CommandInfo& info() const = 0;

    /// Runs the command and prints its answer. \p words are those behind the command's name.
    /// Throws UsageError for words that it does not understand and OperationError for a code from
    /// the component; nothing has been printed then in JSON mode.
    virtual void run(Session& session, Words words) = 0;
};

}

#endif
