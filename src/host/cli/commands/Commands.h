// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_COMMANDS_COMMANDS_H
#define ORV_HOST_CLI_COMMANDS_COMMANDS_H

#include "CommandTable.h"

#include <optional>
#include <ostream>
#include <string>

namespace OrvHost {

// The functions of the commands. CommandTable.cpp says what each does and how it is written.

void runExists(Session& session, Words words);
void runCount(Session& session, Words words);
void runGet(Session& session, Words words);
void runList(Session& session, Words words);
void runTree(Session& session, Words words);
void runFind(Session& session, Words words);
void runGoTo(Session& session, Words words);
void runSource(Session& session, const Words& words);
void runBegin(Session& session, Words words);
void runUse(Session& session, Words words);
void runTransactions(Session& session, const Words& words);
void runInterface(Session& session, Words words);
void runCreate(Session& session, Words words);
void runSet(Session& session, Words words);
void runDelete(Session& session, Words words);
void runAction(Session& session, Words words);
void runValidate(Session& session, Words words);
void runCommit(Session& session, Words words);
void runAbort(Session& session, Words words);
void runExpect(const CommandTable& table, Session& session, Words words);
void runSave(Session& session, Words words);
void runBackup(Session& session, Words words);
void runCommits(Session& session, Words words);
void runLoad(Session& session, Words words);
void runDiff(Session& session, Words words);
void runGraph(Session& session, Words words);
void runAudit(Session& session, Words words);
void runWho(Session& session, Words words);
void runWatch(Session& session, Words words);
void runModel(Session& session, Words words);
void runComponents(Session& session, const Words& words);
void runLog(Session& session, Words words);
void runHelp(const CommandTable& table, Session& session, Words words);
void runQuit(Session& session, const Words& words);

/// How help is printed.
struct HelpForm {
    bool wantsJson = false;
    bool isServed = false; ///< for a server's shell, which does not have all commands
};

/// The help on all commands, or on the one with that name; throws UsageError if there is none.
void printHelp(const CommandTable& table, const std::optional<std::string>& name, HelpForm form,
               std::ostream& out);

}

#endif
