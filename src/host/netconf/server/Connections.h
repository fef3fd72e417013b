// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_SERVER_CONNECTIONS_H
#define ORV_HOST_NETCONF_SERVER_CONNECTIONS_H

#include "netconf/server/Descriptor.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <set>

namespace OrvHost {

using Deadline = std::chrono::steady_clock::time_point;

/// The connections of clients, each served on a thread of its own.
///
/// Any thread.
class Connections {
public:
    explicit Connections(std::size_t limit) : mLimit(limit) {}
    /// As endAll(), and waits as long as it takes.
    ~Connections();
    Connections(const Connections&) = delete;
    Connections& operator=(const Connections&) = delete;

    /// Runs \p serve on a thread. It takes over the socket, and must end soon after its connection
    /// is shut down. False, with the socket closed, if there are too many connections, or all are
    /// ended.
    bool start(Descriptor socket, std::function<void(Descriptor socket)> serve);

    /// Shuts all connections down and waits for their threads, until \p deadline at most. False if
    /// some are still at work then; they are still served, and this object must stay.
    bool endAll(Deadline deadline);

private:
    const std::size_t mLimit;
    std::mutex mMutex; ///< guards all below
    std::condition_variable mChanged;
    std::multiset<int> mSockets; ///< duplicates of the connections', so that they stay valid
    bool mIsEnding = false;
};

}

#endif
