// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "QuitCommand.h"

#include "cli/Session.h"

namespace OrvHost {

const CommandInfo& QuitCommand::info() const {
    static const CommandInfo theInfo{"quit", "", "end the session", "So does Ctrl-D.\n", {}, {}};
    return theInfo;
}

void QuitCommand::run(Session& session, Words words) {
    words.end();
    session.end();
    if (session.wantsJson()) {
        session.print({{"command", "quit"}});
    }
}

}
