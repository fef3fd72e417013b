// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_COMMANDS_GRAPHCOMMAND_H
#define ORV_HOST_CLI_COMMANDS_GRAPHCOMMAND_H

#include "cli/Command.h"

namespace OrvHost {

/// `graph`: draws a part of the MO tree with its references, or the classes.
class GraphCommand : public Command {
public:
    const CommandInfo& info() const override;
    void run(Session& session, Words words) override;
};

}

#endif
