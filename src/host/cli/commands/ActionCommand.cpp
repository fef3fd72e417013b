// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ActionCommand.h"

#include "cli/Assignments.h"
#include "cli/Diagnosis.h"
#include "cli/Layout.h"
#include "cli/Session.h"
#include "cli/WriteReport.h"

#include <algorithm>

namespace OrvHost {

namespace {

const AttributeDef* parameterOf(const ActionDef* action, const std::string& name) {
    if (action == nullptr) {
        return nullptr;
    }
    const auto& all = action->parameters;
    const auto found = std::find_if(all.begin(), all.end(),
                                    [&](const AttributeDef& one) { return one.name == name; });
    return found != all.end() ? &*found : nullptr;
}

}

const CommandInfo& ActionCommand::info() const {
    static const CommandInfo theInfo{
        "action",
        "DN ACTION [PARAMETER=VALUE...]",
        "call an action of an object",
        "Prints the result, if there is one. Values are as with set.\n",
        {WordKind::Dn, WordKind::Action, WordKind::Parameter},
        {}};
    return theInfo;
}

void ActionCommand::run(Session& session, Words words) {
    const std::string dn = words.take("the DN");
    const std::string name = words.take("the action");
    const ClassDef* moc = Diagnosis(session).classOf(dn);
    const ActionDef* action = moc != nullptr ? moc->findAction(name) : nullptr;
    const std::vector<NamedValue> parameters =
        parseAssignments(words.takeRest(), [&](const std::string& parameter) {
            return parameterOf(action, parameter);
        });
    JsonValue result;
    const bool isCommitted = session.write([&](unsigned long txHandle) {
        result = session.client().action(txHandle, dn, name, parameters, action);
    });
    const bool isSilent = result.is_null() || (result.is_array() && result.empty());
    if (!isSilent && !session.wantsJson()) {
        session.out() << layOutValue(result);
    }
    reportWrite(session, {{"command", "action"}, {"dn", dn}, {"action", name}, {"result", result}},
                "done", isCommitted);
}

}
