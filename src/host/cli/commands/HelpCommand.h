// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_COMMANDS_HELPCOMMAND_H
#define ORV_HOST_CLI_COMMANDS_HELPCOMMAND_H

#include "cli/Command.h"

namespace OrvHost {

class CommandTable;

/// `help`: shows all commands, or one.
class HelpCommand : public Command {
public:
    /// \p table, which contains this command too, must outlive it.
    explicit HelpCommand(const CommandTable& table) : mTable(table) {}

    const CommandInfo& info() const override;
    void run(Session& session, Words words) override;

private:
    const CommandTable& mTable;
};

}

#endif
