// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_SESSION_H
#define ORV_HOST_CLI_SESSION_H

#include "Client.h"
#include "model/Model.h"
#include "runtime/Host.h"
#include "runtime/LogSink.h"

#include <ostream>
#include <utility>

namespace OrvHost {

/// What commands work with. Everything is borrowed and outlives the session.
///
/// One thread at a time.
class Session {
public:
    Session(Host& host, Client& client, LogSink& log, std::ostream& out, bool wantsJson)
        : mHost(host), mClient(client), mLog(log), mOut(out), mWantsJson(wantsJson) {}

    Host& host() { return mHost; }
    Client& client() { return mClient; }
    LogSink& log() { return mLog; }
    const Model& model() const { return mHost.model(); }

    /// True: each command prints one JSON document, in one line, and nothing else.
    bool wantsJson() const { return mWantsJson; }
    std::ostream& out() { return mOut; }
    void print(const JsonValue& document) { mOut << toLine(document) << '\n'; }

    /// Runs \p work with the handle of a transaction of its own, which ends with it and leaves
    /// nothing behind.
    template <class Work>
    auto read(Work&& work) {
        const Host::ReadTransaction transaction(mHost);
        return std::forward<Work>(work)(transaction.handle());
    }

    bool isEnded() const { return mIsEnded; }
    void end() { mIsEnded = true; }

private:
    Host& mHost;
    Client& mClient;
    LogSink& mLog;
    std::ostream& mOut;
    bool mWantsJson;
    bool mIsEnded = false;
};

}

#endif
