// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Commands.h"

#include "base/HostError.h"
#include "cli/errors/CliErrors.h"
#include "cli/session/Session.h"

namespace OrvHost {

void runBackup(Session& session, Words words) {
    const std::string file = words.take("the FILE");
    words.end();
    if (!session.backup()) {
        throw AnswerError("this host keeps no store; it would with the option --store");
    }
    try {
        session.backup()(file);
    } catch (const HostError& failure) {
        throw AnswerError(failure.what());
    }
    if (session.wantsJson()) {
        session.print({{"command", "backup"}, {"file", file}});
    } else {
        session.out() << file << ": written\n";
    }
}

}
