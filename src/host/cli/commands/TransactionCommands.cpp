// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Commands.h"

#include "WriteReport.h"
#include "base/Counted.h"
#include "cli/output/AlignedText.h"
#include "cli/session/Session.h"

namespace OrvHost {

void runBegin(Session& session, Words words) {
    const auto name = words.takeOptional();
    words.end();
    const OpenTransactions::Entry& begun =
        session.begin(name ? *name : session.transactions().freeName());
    if (session.wantsJson()) {
        session.print({{"command", "begin"}, {"transaction", begun.name}});
    } else {
        session.out() << "transaction " << begun.name << '\n';
    }
}

void runUse(Session& session, Words words) {
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

void runTransactions(Session& session, const Words& words) {
    words.end();
    const OpenTransactions::Entry* current = session.transactions().current();
    JsonValue documents = JsonValue::array();
    std::vector<std::vector<std::string>> rows;
    for (const OpenTransactions::Entry& entry : session.transactions().all()) {
        const bool isCurrent = &entry == current;
        documents.add({{"name", entry.name}, {"current", isCurrent}, {"writes", entry.writes}});
        rows.push_back({isCurrent ? "*" : "", entry.name, std::to_string(entry.writes)});
    }
    if (session.wantsJson()) {
        session.print({{"command", "transactions"}, {"transactions", documents}});
    } else if (rows.empty()) {
        session.out() << "none is open\n";
    } else {
        session.out() << layOutTable({"", "TRANSACTION", "WRITING COMMANDS"}, rows);
    }
}

void runInterface(Session& session, Words words) {
    const auto version = words.takeOptional();
    words.end();
    if (version) {
        session.clients().choose(*version);
    }
    if (session.wantsJson()) {
        session.print({{"command", "interface"}, {"version", session.clients().version()}});
    } else {
        session.out() << "version " << session.clients().version() << '\n';
    }
}

namespace {

/// What the check of the modules' rules has cost; empty if that is not to be shown.
std::string ruleCostText(Session& session, const OpenTransactions::Entry& transaction) {
    if (!session.showsRuleCost()) {
        return {};
    }
    const auto cost = session.host().router().ruleCostOf(transaction.handle);
    if (!cost) {
        return {};
    }
    return "rules of the modules: " + counted(cost->objects, "object") + " looked at in " +
           std::to_string(cost->time.count()) + " us";
}

}

void runValidate(Session& session, Words words) {
    const auto given = words.takeOptional();
    words.end();
    const OpenTransactions::Entry& transaction = session.transactions().require(given);
    session.validate(transaction);
    reportEnd(session, "validate", transaction.name, "valid", ruleCostText(session, transaction));
}

void runCommit(Session& session, Words words) {
    const auto given = words.takeOptional();
    words.end();
    const OpenTransactions::Entry& transaction = session.transactions().require(given);
    const std::string name = transaction.name;
    reportEnd(session, "commit", name, "committed", session.commit(transaction));
}

void runAbort(Session& session, Words words) {
    const auto given = words.takeOptional();
    words.end();
    const OpenTransactions::Entry& transaction = session.transactions().require(given);
    const std::string name = transaction.name;
    reportEnd(session, "abort", name, "aborted", session.abort(transaction));
}

}
