// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "CountCommand.h"

#include "cli/ChildWalk.h"
#include "cli/Layout.h"
#include "cli/Session.h"

namespace OrvHost {

const CommandInfo& CountCommand::info() const {
    static const CommandInfo theInfo{
        "count",
        "[DN [CLASS]]",
        "count children, of one class or of each",
        "Without a DN, or with /, the objects at the top level are counted.\n",
        {WordKind::Dn, WordKind::ChildClass},
        {}};
    return theInfo;
}

void CountCommand::run(Session& session, Words words) {
    const std::string dn = words.takeDnOrTop();
    const auto oneClass = words.takeOptional();
    words.end();
    const ChildWalk walk(session, dn, oneClass);
    JsonValue counts = JsonValue::object();
    session.read([&](unsigned long txHandle) {
        for (const std::string& moc : walk.classes()) {
            counts[moc] = session.client().count(txHandle, dn, moc);
        }
    });
    if (session.wantsJson()) {
        session.print({{"command", "count"}, {"dn", dn}, {"counts", counts}});
    } else if (oneClass) {
        session.out() << scalarText(counts[*oneClass]) << '\n';
    } else {
        session.out() << layOut(counts);
    }
}

}
