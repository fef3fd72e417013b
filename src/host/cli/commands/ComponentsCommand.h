// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_COMMANDS_COMPONENTSCOMMAND_H
#define ORV_HOST_CLI_COMMANDS_COMPONENTSCOMMAND_H

#include "cli/Command.h"

namespace OrvHost {

/// `components`: shows what is loaded, and its state.
class ComponentsCommand : public Command {
public:
    const CommandInfo& info() const override;
    void run(Session& session, Words words) override;
};

}

#endif
