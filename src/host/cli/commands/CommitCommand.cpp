// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "CommitCommand.h"

#include "cli/Session.h"
#include "cli/WriteReport.h"

namespace OrvHost {

const CommandInfo& CommitCommand::info() const {
    static const CommandInfo theInfo{"commit",
                                     "[NAME]",
                                     "end a transaction so that its writes hold",
                                     "Without a name, the current one. It is validated first; if "
                                     "that or the commit is refused,\n"
                                     "it is aborted, and nothing of it is left.\n",
                                     {WordKind::Transaction},
                                     {}};
    return theInfo;
}

void CommitCommand::run(Session& session, Words words) {
    const auto given = words.takeOptional();
    words.end();
    const Transactions::Entry& transaction = session.transactions().require(given);
    const std::string name = transaction.name;
    reportEnd(session, "commit", name, "committed", session.commit(transaction));
}

}
