// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_COMMANDS_TREECOMMAND_H
#define ORV_HOST_CLI_COMMANDS_TREECOMMAND_H

#include "cli/Command.h"

namespace OrvHost {

/// `tree`: shows an object with its subtree.
class TreeCommand : public Command {
public:
    const CommandInfo& info() const override;
    void run(Session& session, Words words) override;
};

}

#endif
