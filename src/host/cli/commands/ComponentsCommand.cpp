// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ComponentsCommand.h"

#include "cli/Layout.h"
#include "cli/Session.h"

namespace OrvHost {

namespace {

const char* stateText(ComponentState state) {
    switch (state) {
    case ComponentState::Registered:
        return "registered";
    case ComponentState::Starting:
        return "starting";
    case ComponentState::Started:
        return "started";
    case ComponentState::Failed:
        return "failed";
    case ComponentState::Blocked:
        return "blocked";
    }
    return "unknown";
}

}

const CommandInfo& ComponentsCommand::info() const {
    static const CommandInfo theInfo{"components", "", "show the loaded components and their state",
                                     "",           {}, {}};
    return theInfo;
}

void ComponentsCommand::run(Session& session, Words words) {
    words.end();
    JsonValue documents = JsonValue::array();
    std::vector<std::vector<std::string>> rows;
    for (const ComponentReport& report : session.host().components().components()) {
        const char* state = stateText(report.state);
        documents.push_back({{"name", report.name}, {"state", state}, {"problem", report.problem}});
        rows.push_back({report.name, state, report.problem});
    }
    if (session.wantsJson()) {
        session.print({{"command", "components"}, {"components", documents}});
    } else {
        session.out() << layOutTable({"COMPONENT", "STATE", "PROBLEM"}, rows);
    }
}

}
