// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "HelpCommand.h"

#include "cli/CommandTable.h"
#include "cli/Layout.h"
#include "cli/Session.h"

namespace OrvHost {

namespace {

std::string usageOf(const CommandInfo& info) {
    return info.name + (info.synopsis.empty() ? "" : " ") + info.synopsis;
}

JsonValue toJson(const CommandInfo& info) {
    return {{"name", info.name}, {"usage", usageOf(info)}, {"summary", info.summary}};
}

}

const CommandInfo& HelpCommand::info() const {
    static const CommandInfo theInfo{"help", "[COMMAND]",         "tell all commands, or one",
                                     "",     {WordKind::Command}, {}};
    return theInfo;
}

void HelpCommand::run(Session& session, Words words) {
    const auto name = words.takeOptional();
    words.end();
    JsonValue documents = JsonValue::array();
    std::vector<std::vector<std::string>> rows;
    for (const auto& command : mTable.all()) {
        documents.push_back(toJson(command->info()));
        rows.push_back({usageOf(command->info()), command->info().summary});
    }
    if (name) {
        const CommandInfo& one = mTable.require(*name).info();
        documents = JsonValue::array({toJson(one)});
        rows = {{usageOf(one), one.summary}};
    }
    if (session.wantsJson()) {
        session.print({{"command", "help"}, {"commands", documents}});
        return;
    }
    session.out() << layOutTable({"COMMAND", ""}, rows);
    if (name) {
        session.out() << mTable.require(*name).info().details;
    }
}

}
