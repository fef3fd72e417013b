// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ExistsCommand.h"

#include "cli/Session.h"

namespace OrvHost {

const CommandInfo& ExistsCommand::info() const {
    static const CommandInfo theInfo{
        "exists",       "DN", "tell whether an object is there", "Answers yes or no.\n",
        {WordKind::Dn}, {}};
    return theInfo;
}

void ExistsCommand::run(Session& session, Words words) {
    const std::string dn = words.take("the DN");
    words.end();
    const bool exists =
        session.read([&](unsigned long txHandle) { return session.client().exists(txHandle, dn); });
    if (session.wantsJson()) {
        session.print({{"command", "exists"}, {"dn", dn}, {"exists", exists}});
    } else {
        session.out() << (exists ? "yes" : "no") << '\n';
    }
}

}
