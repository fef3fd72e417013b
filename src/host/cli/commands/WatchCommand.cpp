// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Commands.h"

#include "cli/errors/CliErrors.h"
#include "cli/input/Place.h"
#include "cli/session/Session.h"

namespace OrvHost {

namespace {

std::string shown(const std::string& dn) {
    return dn.empty() ? "/" : dn;
}

void list(Session& session) {
    JsonValue documents = JsonValue::array();
    for (const std::string& dn : session.watches().dns()) {
        documents.add(shown(dn));
    }
    if (session.wantsJson()) {
        session.print({{"command", "watch"}, {"watched", documents}});
        return;
    }
    for (const std::string& dn : session.watches().dns()) {
        session.out() << shown(dn) << '\n';
    }
}

}

void runWatch(Session& session, Words words) {
    const bool isEnd = words.takeFlag("--off");
    if (words.peek().empty()) {
        words.end();
        if (isEnd) {
            session.watches().clear();
        }
        list(session);
        return;
    }
    const std::string dn = words.takeDnOrTop(session.model());
    words.end();
    if (!isEnd) {
        requirePlace(session.model(), dn);
        session.watches().add(dn);
    } else if (!session.watches().remove(dn)) {
        throw AnswerError(shown(dn) + " is not watched");
    }
    list(session);
}

}
