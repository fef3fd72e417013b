// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_COMMANDS_INTERFACECOMMAND_H
#define ORV_HOST_CLI_COMMANDS_INTERFACECOMMAND_H

#include "cli/Command.h"

namespace OrvHost {

/// `interface`: shows or chooses the version of the MO interface.
class InterfaceCommand : public Command {
public:
    const CommandInfo& info() const override;
    void run(Session& session, Words words) override;
};

}

#endif
