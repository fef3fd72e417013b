// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_COMMANDS_SETCOMMAND_H
#define ORV_HOST_CLI_COMMANDS_SETCOMMAND_H

#include "cli/Command.h"

namespace OrvHost {

/// `set`: sets attributes of an object.
class SetCommand : public Command {
public:
    const CommandInfo& info() const override;
    void run(Session& session, Words words) override;
};

}

#endif
