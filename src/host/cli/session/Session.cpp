// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Session.h"

#include "base/DnView.h"

#include <iostream>

namespace OrvHost {

namespace {

// A hint must not turn the answer of a transaction into a failure.
template <class Look>
ReferenceHint hintBy(const Look& look) {
    try {
        return {look(), {}};
    } catch (const std::exception& error) {
        return {{}, error.what()};
    }
}

}

Session::Session(Host& host, Clients& clients, LogSink& log, std::ostream& out, bool wantsJson)
    : ClientSession(host, clients),
      mLog(log),
      mWatches(host),
      mOut(&out),
      mErrors(&std::cerr),
      mWantsJson(wantsJson) {}

std::string Session::prompt() {
    const std::string prompt = transactions().prompt();
    if (mHere.empty()) {
        return prompt;
    }
    return prompt.substr(0, prompt.rfind('>')) + " " + std::string(DnView(mHere).last().text()) +
           "> ";
}

bool Session::write(const std::function<void(unsigned long txHandle)>& work) {
    ChangeSet changes;
    const bool isCommitted = ClientSession::write([&](unsigned long txHandle) {
        work(txHandle);
        if (mGivesHints && transactions().current() == nullptr) {
            changes = host().router().changesOf(txHandle);
        }
    });
    if (mGivesHints && isCommitted) {
        lookAtCommitted(changes);
    }
    return isCommitted;
}

void Session::validate(const OpenTransactions::Entry& transaction) {
    ClientSession::validate(transaction);
    if (mGivesHints) {
        mHint = hintBy([&] {
            return ReferenceSearch(*this, transaction.handle)
                .missingBy(host().router().changesOf(transaction.handle));
        });
        mHinted = transaction;
    }
}

std::string Session::commit(const OpenTransactions::Entry& transaction) {
    const bool isHinted = mHinted && mHinted->handle == transaction.handle &&
                          mHinted->name == transaction.name &&
                          mHinted->writes == transaction.writes;
    const bool wantsHint = mGivesHints && !isHinted;
    const ChangeSet changes =
        wantsHint ? host().router().changesOf(transaction.handle) : ChangeSet();
    mHinted.reset();
    std::string problems = ClientSession::commit(transaction);
    if (wantsHint) {
        lookAtCommitted(changes);
    }
    return problems;
}

void Session::lookAtCommitted(const ChangeSet& changes) {
    mHint = hintBy([&] {
        const Host::ReadTransaction after(host());
        return ReferenceSearch(*this, after.handle()).missingBy(changes);
    });
}

}
