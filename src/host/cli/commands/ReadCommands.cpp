// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Commands.h"

#include "base/DnView.h"
#include "cli/errors/CliErrors.h"
#include "cli/output/AlignedText.h"
#include "cli/session/Session.h"
#include "client/ChildWalk.h"
#include "client/DnResolver.h"

namespace OrvHost {

namespace {

JsonValue readValues(Session& session, const std::string& dn, const std::vector<std::string>& names,
                     const ClassDef* moc) {
    return session.read([&](unsigned long txHandle) {
        if (names.size() != 1) {
            return toJson(session.client().get(txHandle, dn, names, moc));
        }
        JsonValue values = JsonValue::object();
        values[names[0]] = toJson(session.client().get(txHandle, dn, names[0], moc));
        return values;
    });
}

}

void runExists(Session& session, Words words) {
    const std::string dn = words.takeDn(session.model());
    words.end();
    const bool exists =
        session.read([&](unsigned long txHandle) { return session.client().exists(txHandle, dn); });
    if (session.wantsJson()) {
        session.print({{"command", "exists"}, {"dn", dn}, {"exists", exists}});
    } else {
        session.out() << (exists ? "yes" : "no") << '\n';
    }
}

void runCount(Session& session, Words words) {
    const std::string dn = words.takeDnOrHere(session.model());
    const auto oneClass = words.takeOptional();
    words.end();
    const ChildWalk walk(session, dn, oneClass);
    JsonValue counts = JsonValue::object();
    session.read([&](unsigned long txHandle) {
        for (const std::string& moc : walk.classes()) {
            counts[moc] = session.client().count(txHandle, dn, moc);
        }
    });
    if (session.wantsJson()) {
        session.print({{"command", "count"}, {"dn", dn}, {"counts", counts}});
    } else if (oneClass) {
        session.out() << scalarText(counts.at(*oneClass)) << '\n';
    } else {
        session.out() << layOut(counts);
    }
}

void runGet(Session& session, Words words) {
    const std::string dn = words.takeDn(session.model());
    std::vector<std::string> names = words.takeRest();
    const ClassDef* moc = DnResolver(session.model()).classOf(dn);
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
        session.out() << layOutValue(values.at(names[0]));
    } else {
        session.out() << layOut(values);
    }
}

void runList(Session& session, Words words) {
    const std::string dn = words.takeDnOrHere(session.model());
    const auto oneClass = words.takeOptional();
    words.end();
    const ChildWalk walk(session, dn, oneClass);
    JsonValue children = JsonValue::array();
    session.read([&](unsigned long txHandle) {
        walk.forEach(txHandle, [&](const std::string& className, const std::string& name) {
            const std::string child = DnView(dn).child(className, name);
            if (session.wantsJson()) {
                children.add({{"dn", child}, {"class", className}, {"name", name}});
            } else {
                session.out() << child << '\n';
            }
            return true;
        });
    });
    if (session.wantsJson()) {
        session.print({{"command", "ls"}, {"dn", dn}, {"children", children}});
    }
}

}
