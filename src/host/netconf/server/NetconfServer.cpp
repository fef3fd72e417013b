// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "NetconfServer.h"

#include "HostKey.h"
#include "Listener.h"
#include "ServerError.h"
#include "SessionHub.h"
#include "SshFront.h"
#include "netconf/core/ServerLog.h"

#include <csignal>

#include <sys/socket.h>

namespace OrvHost {

namespace {

/// Of one listener.
constexpr ConnectionLimits kConnections{256, 64};

UserTable usersOf(const ServerOptions& options) {
    UserTable users;
    for (const auto& [name, file] : options.userKeys) {
        users.addKeys(name, file);
    }
    if (!options.passwordFile.empty()) {
        users.addPasswords(options.passwordFile);
    }
    for (const std::string& name : options.readOnlyUsers) {
        const std::optional<uid_t> local = options.unixPath ? systemUser(name) : std::nullopt;
        if (!users.isKnown(name) && !local) {
            throw ServerError("user " + name +
                              ", who may only read, cannot log in: a name was "
                              "expected that has a key or a password" +
                              (options.unixPath ? ", or a user of this machine" : ""));
        }
        users.setReadOnly(name, local);
    }
    return users;
}

}

struct NetconfServer::Parts {
    Parts(Host& host, const YangModelReader& reader, std::shared_ptr<const YangSchema> schema,
          const ServerOptions& options)
        : users(usersOf(options)), model(reader, std::move(schema)), hub(host, model) {
        hub.dispatcher().limitCandidate(options.candidateLimit);
        hub.dispatcher().noteUnconfirmedIn(options.unconfirmedNote);
    }

    /// True if nothing is at work any more.
    bool end(Deadline deadline) {
        hub.endAll();
        localFile.remove();
        const bool isSshDone = ssh == nullptr || ssh->end(deadline);
        return (local == nullptr || local->end(deadline)) && isSshDone;
    }

    UserTable users;
    WireModel model;
    SessionHub hub;
    std::unique_ptr<SshFront> front;
    std::unique_ptr<Listener> ssh;
    std::unique_ptr<Listener> local;
    SocketFile localFile;
};

NetconfServer::NetconfServer(Host& host, const YangModelReader& reader,
                             std::shared_ptr<const YangSchema> schema,
                             const ServerOptions& options) {
    // A client that is gone is seen where it is written to.
    std::signal(SIGPIPE, SIG_IGN);
    mParts = std::make_unique<Parts>(host, reader, std::move(schema), options);
    Parts& parts = *mParts;
    if (options.sshAddress) {
        if (parts.users.isEmpty()) {
            throw ServerError("nobody can log in by SSH: name a user and a file of public keys, or "
                              "a file of passwords");
        }
        const NetAddress address = NetAddress::parse(*options.sshAddress);
        Descriptor listening = listenAt(address);
        if (!address.isLoopback()) {
            logServer(4, address.host + " is no loopback address: others than this machine can "
                                        "reach the server");
        }
        ensureHostKey(options.hostKey);
        parts.front = std::make_unique<SshFront>(
            options.hostKey, parts.users, SshLimits(),
            [&parts](Descriptor channel, const NetconfUser& user, const std::string& from) {
                parts.hub.serve(std::move(channel), user, Transport::Ssh, from);
            });
        parts.ssh = std::make_unique<Listener>(
            std::move(listening), kConnections,
            [&parts](Descriptor socket, const std::string& from, const Connections::Enter& enter) {
                parts.front->serve(std::move(socket), from, enter);
            });
    }
    if (options.unixPath) {
        Descriptor listening = listenAt(*options.unixPath);
        parts.localFile = SocketFile(*options.unixPath);
        parts.local = std::make_unique<Listener>(
            std::move(listening), kConnections,
            [&parts](Descriptor socket, const std::string& from, const Connections::Enter& enter) {
                if (!enter()) {
                    logServer(4, "a connection from " + from + " is refused: too many are open");
                    return;
                }
                const uid_t user = peerUser(socket.get());
                parts.hub.serve(std::move(socket), parts.users.local(user, userName(user)),
                                Transport::UnixSocket, from);
            });
    }
}

NetconfServer::~NetconfServer() {
    mParts->end(Deadline::max());
    mParts->ssh.reset();
    mParts->local.reset();
}

void NetconfServer::tellLeftUnconfirmed() {
    mParts->hub.dispatcher().tellLeftUnconfirmed();
}

bool NetconfServer::end(std::chrono::milliseconds patience) {
    return mParts->end(std::chrono::steady_clock::now() + patience);
}

void NetconfServer::abandon() {
    mParts->hub.logWhoIsAtWork();
    mParts->hub.dispatcher().abandon();
}

void NetconfServer::commitBeside(const std::string& user, const std::function<void()>& commit) {
    mParts->hub.dispatcher().commitBeside(user, commit);
}

std::vector<std::string> NetconfServer::addresses() const {
    std::vector<std::string> lines;
    if (mParts->ssh) {
        lines.push_back("NETCONF over SSH at " + mParts->ssh->address());
    }
    if (mParts->local) {
        lines.push_back("NETCONF at the socket " + mParts->localFile.path());
    }
    return lines;
}

}
