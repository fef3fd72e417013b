// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "InterfaceCommand.h"

#include "cli/Session.h"

namespace OrvHost {

const CommandInfo& InterfaceCommand::info() const {
    static const CommandInfo theInfo{
        "interface",
        "[1 | 3 | 3_1]",
        "show or choose the version of the MO interface",
        "Operations that a version does not have go through version 3. Writes of version 1 take\n"
        "no part in associations: no back-pointer follows, and validate does not look at them.\n",
        {WordKind::Version},
        {}};
    return theInfo;
}

void InterfaceCommand::run(Session& session, Words words) {
    const auto version = words.takeOptional();
    words.end();
    if (version) {
        session.clients().choose(*version);
    }
    if (session.wantsJson()) {
        session.print({{"command", "interface"}, {"version", session.clients().version()}});
    } else {
        session.out() << "version " << session.clients().version() << '\n';
    }
}

}
