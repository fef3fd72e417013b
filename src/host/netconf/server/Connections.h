// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_SERVER_CONNECTIONS_H
#define ORV_HOST_NETCONF_SERVER_CONNECTIONS_H

#include "base/Descriptor.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <mutex>
#include <thread>

namespace OrvHost {

using Deadline = std::chrono::steady_clock::time_point;

/// How many connections there may be at a time.
struct ConnectionLimits {
    std::size_t entered; ///< whose user is known; more are refused
    std::size_t waiting; ///< whose user is not known; for one more the oldest of them is shut down
};

/// The connections of clients, each served on a thread of its own.
///
/// Any thread.
class Connections {
public:
    explicit Connections(ConnectionLimits limits) : mLimits(limits) {}
    /// As endAll(), and waits as long as it takes.
    ~Connections();
    Connections(const Connections&) = delete;
    Connections& operator=(const Connections&) = delete;

    /// To be called when the user of a connection is known. If it is false, the connection must
    /// end: there are too many, or it was shut down.
    using Enter = std::function<bool()>;
    using Serve = std::function<void(Descriptor socket, const Enter& enter)>;

    /// Runs \p serve on a thread. It takes over the socket, and must end soon after its connection
    /// is shut down. False, with the socket closed, if there are too many threads, or all
    /// connections are ended.
    bool start(Descriptor socket, Serve serve);

    /// Shuts all connections down and waits for their threads, until \p deadline at most. False if
    /// some are still at work then; they are still served, and this object must stay.
    bool endAll(Deadline deadline);

private:
    enum class State : std::uint8_t { Waiting, Entered, ShutDown };
    struct Connection {
        Descriptor socket; ///< a duplicate of the connection's, so that it stays valid
        State state;
        std::thread thread;
    };

    std::size_t countOf(State state) const;
    void makeRoom();
    bool enter(Connection& connection);
    void forget(std::list<Connection>::iterator connection);
    void joinEnded();

    const ConnectionLimits mLimits;
    std::mutex mMutex; ///< guards all below
    std::condition_variable mChanged;
    std::list<Connection> mConnections; ///< the oldest first
    /// Those that are over. Their threads are joined, as libraries free what they keep for a thread
    /// at its very end.
    std::list<Connection> mEnded;
    bool mIsEnding = false;
};

}

#endif
