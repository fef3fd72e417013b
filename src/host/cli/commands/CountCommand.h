// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_COMMANDS_COUNTCOMMAND_H
#define ORV_HOST_CLI_COMMANDS_COUNTCOMMAND_H

#include "cli/Command.h"

namespace OrvHost {

/// `count`: counts the children of an object, of one class or of each.
class CountCommand : public Command {
public:
    const CommandInfo& info() const override;
    void run(Session& session, Words words) override;
};

}

#endif
