// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_COMMANDS_EXPECTCOMMAND_H
#define ORV_HOST_CLI_COMMANDS_EXPECTCOMMAND_H

#include "cli/Command.h"
#include "cli/Expectation.h"

namespace OrvHost {

class CommandTable;

/// `expect`: runs a command and compares its answer with what is expected. See Expectation.
class ExpectCommand : public Command {
public:
    /// \p table must outlive the command.
    explicit ExpectCommand(const CommandTable& table) : mTable(table) {}

    const CommandInfo& info() const override;
    /// Throws AnswerError if the answer is different.
    void run(Session& session, Words words) override;

private:
    Answer answerOf(Session& session, const std::vector<std::string>& words) const;

    const CommandTable& mTable;
};

}

#endif
