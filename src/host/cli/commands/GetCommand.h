// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_COMMANDS_GETCOMMAND_H
#define ORV_HOST_CLI_COMMANDS_GETCOMMAND_H

#include "cli/Command.h"

namespace OrvHost {

/// `get`: reads one attribute, several, or all of an object.
class GetCommand : public Command {
public:
    const CommandInfo& info() const override;
    void run(Session& session, Words words) override;
};

}

#endif
