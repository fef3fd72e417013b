// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_COMMANDS_LISTCOMMAND_H
#define ORV_HOST_CLI_COMMANDS_LISTCOMMAND_H

#include "cli/Command.h"

namespace OrvHost {

/// `ls`: iterates over the children of an object, of one class or of all.
class ListCommand : public Command {
public:
    const CommandInfo& info() const override;
    void run(Session& session, Words words) override;
};

}

#endif
