// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_COMMANDS_USECOMMAND_H
#define ORV_HOST_CLI_COMMANDS_USECOMMAND_H

#include "cli/Command.h"

namespace OrvHost {

/// `use`: makes one of the open transactions the current one.
class UseCommand : public Command {
public:
    const CommandInfo& info() const override;
    void run(Session& session, Words words) override;
};

}

#endif
