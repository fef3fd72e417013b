// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_COMMANDS_VALIDATECOMMAND_H
#define ORV_HOST_CLI_COMMANDS_VALIDATECOMMAND_H

#include "cli/Command.h"

namespace OrvHost {

/// `validate`: asks for the verdict on a transaction.
class ValidateCommand : public Command {
public:
    const CommandInfo& info() const override;
    void run(Session& session, Words words) override;
};

}

#endif
