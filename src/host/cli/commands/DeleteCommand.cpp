// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "DeleteCommand.h"

#include "cli/Session.h"
#include "cli/WriteReport.h"

namespace OrvHost {

const CommandInfo& DeleteCommand::info() const {
    static const CommandInfo theInfo{"delete", "DN",           "delete an object with all below it",
                                     "",       {WordKind::Dn}, {}};
    return theInfo;
}

void DeleteCommand::run(Session& session, Words words) {
    const std::string dn = words.take("the DN");
    words.end();
    const bool isCommitted =
        session.write([&](unsigned long txHandle) { session.client().remove(txHandle, dn); });
    reportWrite(session, {{"command", "delete"}, {"dn", dn}}, "deleted", isCommitted);
}

}
