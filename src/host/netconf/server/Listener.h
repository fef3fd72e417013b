// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_SERVER_LISTENER_H
#define ORV_HOST_NETCONF_SERVER_LISTENER_H

#include "base/Descriptor.h"
#include "netconf/server/Connections.h"

#include <atomic>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <utility>

#include <sys/types.h>

namespace OrvHost {

/// Where a listener listens.
struct NetAddress {
    std::string host; ///< a number: "127.0.0.1", "::1"
    std::string port; ///< "0": any free one

    /// "127.0.0.1:8300" or "[::1]:8300". Throws ServerError if the text has another form.
    static NetAddress parse(const std::string& text);
    bool isLoopback() const;
};

/// Accepts connections on a thread of its own and gives each to a function on another thread.
class Listener {
public:
    /// See Connections::start.
    using Serve = std::function<void(Descriptor socket, const std::string& from,
                                     const Connections::Enter& enter)>;

    /// \p socket listens.
    Listener(Descriptor socket, ConnectionLimits limits, Serve serve);
    /// As end(), and waits as long as it takes.
    ~Listener();
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    /// Ends the listening and all connections, and waits for them. See Connections::endAll.
    bool end(Deadline deadline);

    /// The address with the port that was taken.
    std::string address() const;

private:
    void acceptAll();
    void start(Descriptor accepted, const std::string& from);

    Descriptor mSocket;
    Serve mServe;
    Connections mConnections;
    std::atomic<bool> mIsEnding{false};
    std::thread mThread;
};

/// A socket that listens at an address. Throws ServerError.
Descriptor listenAt(const NetAddress& address);
/// A socket that listens at a path; only its owner can connect. A socket that is left there from a
/// server that does not run any more is replaced. Throws ServerError.
Descriptor listenAt(const std::string& path);

/// The file of a listening socket: it goes away with its server, unless another one is there by
/// now.
class SocketFile {
public:
    SocketFile() = default;
    /// What is at \p path now.
    explicit SocketFile(std::string path);

    const std::string& path() const { return mPath; }
    /// Removes it, once.
    void remove();

private:
    std::string mPath;
    std::optional<std::pair<dev_t, ino_t>> mNode; ///< nothing: it is removed
};

/// The user at the other end of a UNIX socket. Throws ServerError if that is not known.
uid_t peerUser(int socket);
/// The name of a user of this machine, or the number if there is no name. For people: while a
/// directory of users is away, a user can seem to have no name. Throws ServerError if it cannot be
/// looked up.
std::string userName(uid_t user);
/// The user of this machine with a name, or with a number that is no name; nothing if there is
/// none. Throws ServerError if it cannot be looked up.
std::optional<uid_t> systemUser(const std::string& name);

}

#endif
