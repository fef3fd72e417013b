// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "AbortCommand.h"

#include "cli/Session.h"
#include "cli/WriteReport.h"

namespace OrvHost {

const CommandInfo& AbortCommand::info() const {
    static const CommandInfo theInfo{"abort",
                                     "[NAME]",
                                     "end a transaction and drop its writes",
                                     "Without a name, the current one. Nothing of it is left.\n",
                                     {WordKind::Transaction},
                                     {}};
    return theInfo;
}

void AbortCommand::run(Session& session, Words words) {
    const auto given = words.takeOptional();
    words.end();
    const Transactions::Entry& transaction = session.transactions().require(given);
    const std::string name = transaction.name;
    reportEnd(session, "abort", name, "aborted", session.abort(transaction));
}

}
