// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_SESSION_H
#define ORV_HOST_CLI_SESSION_H

#include "Clients.h"
#include "Transactions.h"
#include "model/Model.h"
#include "runtime/Host.h"
#include "runtime/LogSink.h"

#include <functional>
#include <ostream>
#include <string>
#include <utility>

namespace OrvHost {

/// What commands work with: where they read, write and print. All arguments are borrowed and must
/// outlive the session.
///
/// One thread at a time.
class Session {
public:
    Session(Host& host, Clients& clients, LogSink& log, std::ostream& out, bool wantsJson)
        : mHost(host), mClients(clients), mLog(log), mOut(&out), mWantsJson(wantsJson) {}

    Host& host() { return mHost; }
    /// The client of the chosen version.
    Client& client() { return mClients.chosen(); }
    Clients& clients() { return mClients; }
    Transactions& transactions() { return mTransactions; }
    LogSink& log() { return mLog; }
    const Model& model() const { return mHost.model(); }

    /// True: each command prints one JSON document, in one line, and nothing else.
    bool wantsJson() const { return mWantsJson; }
    std::ostream& out() { return *mOut; }
    void print(const JsonValue& document) { out() << toLine(document) << '\n'; }
    /// Commands print to \p out from now on. Returns where they printed before.
    std::ostream& redirect(std::ostream& out) { return *std::exchange(mOut, &out); }

    /// Runs \p work with the handle of the current transaction. If there is none, \p work gets its
    /// own transaction, which is aborted afterwards.
    template <class Work>
    auto read(Work&& work) {
        if (const Transactions::Entry* current = mTransactions.current()) {
            return std::forward<Work>(work)(current->handle);
        }
        const Host::ReadTransaction transaction(mHost);
        return std::forward<Work>(work)(transaction.handle());
    }

    /// Runs \p work, which writes, with the handle of the current transaction. If there is none, \p
    /// work gets its own transaction, which is committed, or aborted if \p work throws. True if the
    /// write is committed. Throws Refusal.
    bool write(const std::function<void(unsigned long txHandle)>& work);

    const Transactions::Entry& begin(const std::string& name);
    /// Throws Refusal if the transaction is not valid. It stays open.
    void validate(const Transactions::Entry& transaction);
    /// Throws Refusal if it is refused, and thereby aborted. Returns problems that did not prevent
    /// the commit, for people; usually none.
    std::string commit(const Transactions::Entry& transaction);
    /// Returns the problems on the way, for people; usually none.
    std::string abort(const Transactions::Entry& transaction);

    bool isEnded() const { return mIsEnded; }
    void end() { mIsEnded = true; }

private:
    Host& mHost;
    Clients& mClients;
    LogSink& mLog;
    std::ostream* mOut;
    bool mWantsJson;
    bool mIsEnded = false;
    Transactions mTransactions;
};

}

#endif
