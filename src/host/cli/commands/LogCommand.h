// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_COMMANDS_LOGCOMMAND_H
#define ORV_HOST_CLI_COMMANDS_LOGCOMMAND_H

#include "cli/Command.h"

namespace OrvHost {

/// `log`: shows and sets the level of logging, and shows the latest lines.
class LogCommand : public Command {
public:
    const CommandInfo& info() const override;
    void run(Session& session, Words words) override;
};

}

#endif
