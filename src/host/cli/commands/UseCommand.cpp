// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "UseCommand.h"

#include "cli/Session.h"

namespace OrvHost {

const CommandInfo& UseCommand::info() const {
    static const CommandInfo theInfo{
        "use",
        "[NAME]",
        "work in another open transaction, or in none",
        "Without a name no transaction is left or ended, but the commands behind see what is\n"
        "committed, and each write is committed by itself.\n",
        {WordKind::Transaction},
        {}};
    return theInfo;
}

void UseCommand::run(Session& session, Words words) {
    const auto name = words.takeOptional();
    words.end();
    if (name) {
        session.transactions().use(*name);
    } else {
        session.transactions().leave();
    }
    if (session.wantsJson()) {
        session.print({{"command", "use"}, {"transaction", name ? JsonValue(*name) : JsonValue()}});
    } else {
        session.out() << (name ? "transaction " + *name : "no transaction") << '\n';
    }
}

}
