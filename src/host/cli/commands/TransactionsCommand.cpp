// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "TransactionsCommand.h"

#include "cli/Layout.h"
#include "cli/Session.h"

namespace OrvHost {

const CommandInfo& TransactionsCommand::info() const {
    static const CommandInfo theInfo{
        "transactions",
        "",
        "list the open transactions",
        "A star marks the one that commands work in; writes are counted by commands.\n",
        {},
        {}};
    return theInfo;
}

void TransactionsCommand::run(Session& session, Words words) {
    words.end();
    const Transactions::Entry* current = session.transactions().current();
    JsonValue documents = JsonValue::array();
    std::vector<std::vector<std::string>> rows;
    for (const Transactions::Entry& entry : session.transactions().all()) {
        const bool isCurrent = &entry == current;
        documents.push_back(
            {{"name", entry.name}, {"current", isCurrent}, {"writes", entry.writes}});
        rows.push_back({isCurrent ? "*" : "", entry.name, std::to_string(entry.writes)});
    }
    if (session.wantsJson()) {
        session.print({{"command", "transactions"}, {"transactions", documents}});
    } else if (rows.empty()) {
        session.out() << "none is open\n";
    } else {
        session.out() << layOutTable({"", "TRANSACTION", "WRITES"}, rows);
    }
}

}
