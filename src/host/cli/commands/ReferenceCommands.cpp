// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Commands.h"

#include "ReferenceReport.h"
#include "cli/session/Session.h"

namespace OrvHost {

void runAudit(Session& session, Words words) {
    const std::string dn = words.takeDnOrHere(session.model());
    words.end();
    const std::vector<FoundReference> found = session.read(
        [&](unsigned long txHandle) { return ReferenceSearch(session, txHandle).missing(dn); });
    if (session.wantsJson()) {
        session.print({{"command", "audit"}, {"dn", dn}, {"missing", toJson(found)}});
        return;
    }
    for (const FoundReference& reference : found) {
        session.out() << toText(reference) << '\n';
    }
}

void runWho(Session& session, Words words) {
    const std::string dn = words.takeDn(session.model());
    words.end();
    const std::vector<FoundReference> found = session.read(
        [&](unsigned long txHandle) { return ReferenceSearch(session, txHandle).to(dn); });
    if (found.empty()) {
        session.requireObject(dn);
    }
    if (session.wantsJson()) {
        session.print({{"command", "who"}, {"dn", dn}, {"references", toJson(found)}});
        return;
    }
    for (const FoundReference& reference : found) {
        session.out() << reference.dn << ' ' << reference.attribute << '\n';
    }
}

}
