// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_COMMANDS_COMMITCOMMAND_H
#define ORV_HOST_CLI_COMMANDS_COMMITCOMMAND_H

#include "cli/Command.h"

namespace OrvHost {

/// `commit`: ends a transaction and makes its writes permanent.
class CommitCommand : public Command {
public:
    const CommandInfo& info() const override;
    void run(Session& session, Words words) override;
};

}

#endif
