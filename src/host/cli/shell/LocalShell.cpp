// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "LocalShell.h"

#include "cli/shell/Pager.h"

#include <iostream>
#include <utility>

namespace OrvHost {

namespace {

template <class Items, class ToText>
std::string listed(const Items& items, const ToText& toText) {
    std::string text;
    for (const auto& item : items) {
        text += (text.empty() ? "" : ", ") + toText(item);
    }
    return text;
}

}

LocalShell::LocalShell(Session& session, const CommandTable& commands, const ShellLook& look,
                       std::vector<std::string> models)
    : mSession(session),
      mModels(std::move(models)),
      mInterpreter(session, commands, std::cerr),
      mCompleter(session, commands) {
    mInterpreter.echo(look.echo);
    mSession.setColours(Colours(look.answerColours), Colours(look.errorColours));
    mSession.giveHints(look.isTyped);
}

ExitStatus LocalShell::runTyped(const std::string& line) {
    const Pager pager(mSession);
    return mInterpreter.runLine(line);
}

std::string LocalShell::greeting() {
    return greetingOf(mSession, mModels);
}

std::vector<UncommittedWork> LocalShell::uncommittedOf(Session& session) {
    std::vector<UncommittedWork> work;
    for (const OpenTransactions::Entry& open : session.transactions().all()) {
        if (open.writes > 0) {
            work.push_back({open.name, open.writes});
        }
    }
    return work;
}

std::string LocalShell::greetingOf(Session& session, const std::vector<std::string>& models) {
    const auto name = [](const auto& one) { return one.name; };
    const auto itself = [](const std::string& one) { return one; };
    const std::size_t objects = session.host().store().size();
    return "orvhost " ORVHOST_VERSION ": " + std::to_string(session.model().classes.size()) +
           " classes" + (models.empty() ? "" : " of ") + listed(models, itself) + "; " +
           std::to_string(objects) + (objects == 1 ? " object" : " objects") +
           "\ncomponents: " + listed(session.host().components().components(), name) +
           "; 'help' lists the commands\n";
}

}
