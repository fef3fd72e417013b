// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Session.h"

#include "base/DnView.h"

namespace OrvHost {

namespace {

// A hint must not turn the answer of a transaction into a failure.
std::vector<FoundReference> missingBy(Session& session, unsigned long txHandle,
                                      const ChangeSet& changes) {
    try {
        return ReferenceSearch(session, txHandle).missingBy(changes);
    } catch (const std::exception&) {
        return {};
    }
}

}

std::string Session::prompt() {
    const std::string prompt = transactions().prompt();
    if (mHere.empty()) {
        return prompt;
    }
    return prompt.substr(0, prompt.rfind('>')) + " " + std::string(DnView(mHere).last().text()) +
           "> ";
}

void Session::validate(const OpenTransactions::Entry& transaction) {
    ClientSession::validate(transaction);
    mMissing = missingBy(*this, transaction.handle, host().router().changesOf(transaction.handle));
}

std::string Session::commit(const OpenTransactions::Entry& transaction) {
    const ChangeSet changes = host().router().changesOf(transaction.handle);
    std::string problems = ClientSession::commit(transaction);
    const Host::ReadTransaction after(host());
    mMissing = missingBy(*this, after.handle(), changes);
    return problems;
}

}
