// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Commands.h"

#include "cli/errors/CliErrors.h"
#include "cli/errors/UnknownClass.h"
#include "cli/input/ObjectFilter.h"
#include "cli/session/Session.h"
#include "client/DnResolver.h"
#include "client/SubtreeReader.h"

namespace OrvHost {

namespace {

void requireUsable(const Model& model, const ObjectFilter& filter) {
    bool isClass = false;
    bool hasAttribute = false;
    for (const ClassDef& moc : model.classes) {
        isClass = isClass || filter.matchesClass(moc);
        hasAttribute = hasAttribute || filter.canMatch(moc);
        if (filter.canMatch(moc) && filter.canCompare(moc)) {
            return;
        }
    }
    if (hasAttribute) {
        throw UsageError("'" + filter.value() + "' is no number, and " + filter.attribute() +
                         " is one");
    }
    if (isClass) {
        throw AnswerError("no class " + filter.className() + " has an attribute " +
                          filter.attribute());
    }
    throw unknownClass(filter.className(), classNames(model));
}

}

void runFind(Session& session, Words words) {
    const bool hasDn = isDnWord(words.peek());
    const std::string dn = hasDn ? words.takeDnOrTop(session.model()) : std::string(session.here());
    const ObjectFilter filter(session.model(), words.takeRest());
    requireUsable(session.model(), filter);
    JsonValue found = JsonValue::array();
    session.read([&](unsigned long txHandle) {
        const auto enter = [&](const ObjectState& object) {
            if (!filter.matches(object)) {
                return;
            }
            if (session.wantsJson()) {
                found.add(object.dn);
            } else {
                session.out() << object.dn << '\n';
            }
        };
        SubtreeReader(session, txHandle).read(dn, enter, [] {});
    });
    if (session.wantsJson()) {
        session.print({{"command", "find"}, {"dn", dn}, {"objects", found}});
    }
}

}
