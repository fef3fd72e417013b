// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "CommandTable.h"

#include "CliError.h"
#include "Suggestion.h"
#include "commands/AbortCommand.h"
#include "commands/ActionCommand.h"
#include "commands/BeginCommand.h"
#include "commands/CommitCommand.h"
#include "commands/ComponentsCommand.h"
#include "commands/CountCommand.h"
#include "commands/CreateCommand.h"
#include "commands/DeleteCommand.h"
#include "commands/ExistsCommand.h"
#include "commands/ExpectCommand.h"
#include "commands/GetCommand.h"
#include "commands/GraphCommand.h"
#include "commands/HelpCommand.h"
#include "commands/InterfaceCommand.h"
#include "commands/ListCommand.h"
#include "commands/LogCommand.h"
#include "commands/ModelCommand.h"
#include "commands/QuitCommand.h"
#include "commands/SetCommand.h"
#include "commands/TransactionsCommand.h"
#include "commands/TreeCommand.h"
#include "commands/UseCommand.h"
#include "commands/ValidateCommand.h"

namespace OrvHost {

CommandTable::CommandTable() {
    mCommands.push_back(std::make_unique<ExistsCommand>());
    mCommands.push_back(std::make_unique<CountCommand>());
    mCommands.push_back(std::make_unique<GetCommand>());
    mCommands.push_back(std::make_unique<ListCommand>());
    mCommands.push_back(std::make_unique<TreeCommand>());
    mCommands.push_back(std::make_unique<BeginCommand>());
    mCommands.push_back(std::make_unique<UseCommand>());
    mCommands.push_back(std::make_unique<TransactionsCommand>());
    mCommands.push_back(std::make_unique<InterfaceCommand>());
    mCommands.push_back(std::make_unique<CreateCommand>());
    mCommands.push_back(std::make_unique<SetCommand>());
    mCommands.push_back(std::make_unique<DeleteCommand>());
    mCommands.push_back(std::make_unique<ActionCommand>());
    mCommands.push_back(std::make_unique<ValidateCommand>());
    mCommands.push_back(std::make_unique<CommitCommand>());
    mCommands.push_back(std::make_unique<AbortCommand>());
    mCommands.push_back(std::make_unique<ExpectCommand>(*this));
    mCommands.push_back(std::make_unique<GraphCommand>());
    mCommands.push_back(std::make_unique<ModelCommand>());
    mCommands.push_back(std::make_unique<ComponentsCommand>());
    mCommands.push_back(std::make_unique<LogCommand>());
    mCommands.push_back(std::make_unique<HelpCommand>(*this));
    mCommands.push_back(std::make_unique<QuitCommand>());
}

std::vector<std::string> CommandTable::names() const {
    std::vector<std::string> names;
    for (const auto& command : mCommands) {
        names.push_back(command->info().name);
    }
    return names;
}

Command* CommandTable::find(const std::string& name) const {
    for (const auto& command : mCommands) {
        if (command->info().name == name) {
            return command.get();
        }
    }
    return nullptr;
}

Command& CommandTable::require(const std::string& name) const {
    Command* command = find(name);
    if (command == nullptr) {
        throw UsageError("there is no command '" + name + "'." + didYouMean(name, names()) +
                         " 'help' tells all");
    }
    return *command;
}

}
