// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_COMMANDS_MODELCOMMAND_H
#define ORV_HOST_CLI_COMMANDS_MODELCOMMAND_H

#include "cli/Command.h"

namespace OrvHost {

/// `model`: shows classes, attributes and associations as the model repository has them.
class ModelCommand : public Command {
public:
    const CommandInfo& info() const override;
    void run(Session& session, Words words) override;
};

}

#endif
