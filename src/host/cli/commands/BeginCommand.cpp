// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "BeginCommand.h"

#include "cli/Session.h"

namespace OrvHost {

const CommandInfo& BeginCommand::info() const {
    static const CommandInfo theInfo{
        "begin",
        "[NAME]",
        "open a transaction and work in it",
        "Reads and writes go to it until it is committed or aborted, or another one is chosen\n"
        "(use). Any number of transactions can be open side by side.\n",
        {WordKind::Other},
        {}};
    return theInfo;
}

void BeginCommand::run(Session& session, Words words) {
    const auto name = words.takeOptional();
    words.end();
    const Transactions::Entry& begun =
        session.begin(name ? *name : session.transactions().freeName());
    if (session.wantsJson()) {
        session.print({{"command", "begin"}, {"transaction", begun.name}});
    } else {
        session.out() << "transaction " << begun.name << '\n';
    }
}

}
