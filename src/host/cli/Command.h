// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_COMMAND_H
#define ORV_HOST_CLI_COMMAND_H

#include "Words.h"

#include <string>
#include <vector>

namespace OrvHost {

class Session;

/// What a word of a command means: for completion.
enum class WordKind {
    Dn,          ///< external DN of an object
    ChildClass,  ///< class of children of the object named earlier
    Attribute,   ///< attribute of the object named earlier
    AnyClass,    ///< class of the model
    Command,     ///< name of a command
    Assignment,  ///< ATTRIBUTE=VALUE for the object named earlier
    Action,      ///< action of the object named earlier
    Parameter,   ///< PARAMETER=VALUE for the action named earlier
    Transaction, ///< name of an open transaction
    Version,     ///< version of the MO interface
    Other
};

/// The help texts of a command.
struct CommandInfo {
    std::string name;
    std::string synopsis;             ///< words after the name
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

    /// Runs the command and prints its answer. \p words are the words after the command's name.
    /// Throws UsageError for words that it does not understand and OperationError for a code from
    /// the component; in JSON mode nothing has been printed then.
    virtual void run(Session& session, Words words) = 0;
};

}

#endif
