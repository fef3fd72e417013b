// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ListCommand.h"

#include "cli/ChildWalk.h"
#include "cli/Session.h"

namespace OrvHost {

const CommandInfo& ListCommand::info() const {
    static const CommandInfo theInfo{
        "ls",
        "[DN [CLASS]]",
        "list children, of one class or of all",
        "Prints the DN of each child. Without a DN, or with /, the top level is listed.\n",
        {WordKind::Dn, WordKind::ChildClass},
        {}};
    return theInfo;
}

void ListCommand::run(Session& session, Words words) {
    const std::string dn = words.takeDnOrTop();
    const auto oneClass = words.takeOptional();
    words.end();
    const ChildWalk walk(session, dn, oneClass);
    JsonValue children = JsonValue::array();
    session.read([&](unsigned long txHandle) {
        walk.forEach(txHandle, [&](const std::string& className, const std::string& name) {
            const std::string child = childOf(dn, className, name);
            if (session.wantsJson()) {
                children.push_back({{"dn", child}, {"class", className}, {"name", name}});
            } else {
                session.out() << child << '\n';
            }
            return true;
        });
    });
    if (session.wantsJson()) {
        session.print({{"command", "ls"}, {"dn", dn}, {"children", children}});
    }
}

}
