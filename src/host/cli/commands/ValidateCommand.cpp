// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ValidateCommand.h"

#include "cli/Session.h"
#include "cli/WriteReport.h"

namespace OrvHost {

const CommandInfo& ValidateCommand::info() const {
    static const CommandInfo theInfo{"validate",
                                     "[NAME]",
                                     "ask for the verdict on a transaction",
                                     "Without a name, on the current one. It stays open. What is "
                                     "wrong is told as the component\n"
                                     "tells it, with the objects and values in question.\n",
                                     {WordKind::Transaction},
                                     {}};
    return theInfo;
}

void ValidateCommand::run(Session& session, Words words) {
    const auto given = words.takeOptional();
    words.end();
    const Transactions::Entry& transaction = session.transactions().require(given);
    session.validate(transaction);
    reportEnd(session, "validate", transaction.name, "valid", "");
}

}
