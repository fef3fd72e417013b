// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_COMMANDTABLE_H
#define ORV_HOST_CLI_COMMANDTABLE_H

#include "Command.h"

#include <memory>
#include <string>
#include <vector>

namespace OrvHost {

/// All commands, in the order in which help shows them. To add a command, write a class and add a
/// line to the constructor. Immutable.
class CommandTable {
public:
    CommandTable();
    CommandTable(const CommandTable&) = delete;
    CommandTable& operator=(const CommandTable&) = delete;

    const std::vector<std::unique_ptr<Command>>& all() const { return mCommands; }
    std::vector<std::string> names() const;

    /// The command with that name, or null.
    Command* find(const std::string& name) const;

    /// The same, but throws UsageError with a suggestion.
    Command& require(const std::string& name) const;

private:
    std::vector<std::unique_ptr<Command>> mCommands;
};

}

#endif
