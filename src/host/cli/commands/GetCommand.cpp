// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "GetCommand.h"

#include "cli/CliError.h"
#include "cli/Diagnosis.h"
#include "cli/Layout.h"
#include "cli/Session.h"

namespace OrvHost {

namespace {

JsonValue readValues(Session& session, const std::string& dn, const std::vector<std::string>& names,
                     const ClassDef* moc) {
    return session.read([&](unsigned long txHandle) {
        if (names.size() != 1) {
            return session.client().get(txHandle, dn, names, moc);
        }
        JsonValue values = JsonValue::object();
        values[names[0]] = session.client().get(txHandle, dn, names[0], moc);
        return values;
    });
}

}

const CommandInfo& GetCommand::info() const {
    static const CommandInfo theInfo{
        "get",
        "DN [ATTRIBUTE...]",
        "read attributes: one, several, or all of the class",
        "One attribute is printed as its bare value, a line for each of several values; more are\n"
        "printed with their names. What is not set shows as -.\n",
        {WordKind::Dn, WordKind::Attribute},
        {}};
    return theInfo;
}

void GetCommand::run(Session& session, Words words) {
    const std::string dn = words.take("the DN");
    std::vector<std::string> names = words.takeRest();
    const Diagnosis diagnosis(session);
    const ClassDef* moc = diagnosis.classOf(dn);
    const bool isOne = names.size() == 1;
    if (names.empty()) {
        if (moc == nullptr) {
            throw OperationError(OrvNotExist, {"getMoAttributes", dn, {}, {}}, {});
        }
        names = attributeNames(*moc);
    }
    const JsonValue values = readValues(session, dn, names, moc);
    if (session.wantsJson()) {
        session.print({{"command", "get"}, {"dn", dn}, {"attributes", values}});
    } else if (isOne) { // the form for scripts
        session.out() << layOutValue(values[names[0]]);
    } else {
        session.out() << layOut(values);
    }
}

}
