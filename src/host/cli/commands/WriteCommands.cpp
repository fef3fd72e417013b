// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Commands.h"

#include "WriteReport.h"
#include "base/Counted.h"
#include "cli/errors/CliErrors.h"
#include "cli/input/Assignments.h"
#include "cli/output/AlignedText.h"
#include "cli/session/Session.h"
#include "client/CountBelow.h"
#include "client/DnResolver.h"
#include "client/NamedRecords.h"

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

/// Outside of transactions a deletion is committed at once. Somebody at a prompt is asked before so
/// many objects are gone that it can be a slip.
void askBeforeMany(Session& session, const std::string& dn) {
    constexpr unsigned long long kMany = 10;
    if (!session.question() || session.transactions().current() != nullptr) {
        return;
    }
    const unsigned long long below = session.read([&](unsigned long txHandle) {
        return session.client().exists(txHandle, dn) ? countBelow(session, txHandle, dn) : 0;
    });
    if (below >= kMany && !session.question()("Delete " + dn + " and " + counted(below, "object") +
                                              " below it, at once? [y/N] ")) {
        throw AnswerError("nothing is deleted; 'begin' opens a transaction that can be aborted");
    }
}

}

void runCreate(Session& session, Words words) {
    const std::string dn = words.takeDn(session.model());
    const Model& model = session.model();
    const NewObject object = parseNewObject(model, dn);
    requireReachable(object);
    const auto moc = model.findClass(object.className);
    const std::vector<NamedValue> attributes =
        parseAssignments(words.takeRest(), [&](const std::string& name) {
            return definitionOf(moc ? &model.classes[*moc] : nullptr, name);
        });
    const bool isCommitted = session.write(
        [&](unsigned long txHandle) { session.client().create(txHandle, object, attributes); });
    reportWrite(session, {{"command", "create"}, {"dn", dn}}, "created", isCommitted);
}

void runSet(Session& session, Words words) {
    const std::string dn = words.takeDn(session.model());
    const ClassDef* moc = DnResolver(session.model()).classOf(dn);
    const std::vector<NamedValue> attributes = parseAssignments(
        words.takeRest(), [&](const std::string& name) { return definitionOf(moc, name); });
    if (attributes.empty()) {
        throw UsageError("ATTRIBUTE=VALUE is missing");
    }
    const bool isCommitted = session.write(
        [&](unsigned long txHandle) { session.client().set(txHandle, dn, attributes); });
    reportWrite(session, {{"command", "set"}, {"dn", dn}, {"attributes", namesOf(attributes)}},
                "set", isCommitted);
}

void runDelete(Session& session, Words words) {
    const std::string dn = words.takeDn(session.model());
    words.end();
    askBeforeMany(session, dn);
    const bool isCommitted =
        session.write([&](unsigned long txHandle) { session.client().remove(txHandle, dn); });
    reportWrite(session, {{"command", "delete"}, {"dn", dn}}, "deleted", isCommitted);
}

void runAction(Session& session, Words words) {
    const std::string dn = words.takeDn(session.model());
    const std::string name = words.take("the action");
    const ClassDef* moc = DnResolver(session.model()).classOf(dn);
    const ActionDef* action = moc != nullptr ? moc->findAction(name) : nullptr;
    const std::vector<NamedValue> parameters =
        parseAssignments(words.takeRest(), [&](const std::string& parameter) {
            return parameterOf(action, parameter);
        });
    JsonValue result;
    const bool isCommitted = session.write([&](unsigned long txHandle) {
        result = toJson(session.client().action(txHandle, dn, name, parameters, action));
    });
    const bool isSilent = result.isNull() || result == JsonValue::array();
    if (!isSilent && !session.wantsJson()) {
        session.out() << layOutValue(result);
    }
    reportWrite(session, {{"command", "action"}, {"dn", dn}, {"action", name}, {"result", result}},
                "done", isCommitted);
}

}
