// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_SERVER_SUBSCRIBER_H
#define ORV_HOST_NETCONF_SERVER_SUBSCRIBER_H

#include "netconf/core/EventStream.h"
#include "netconf/wire/WireModel.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

struct nc_session;

namespace OrvHost {

/// Sends events to one session, on a thread of its own: a client that does not read keeps no commit
/// waiting. If too many events wait, the session is lost.
class Subscriber {
public:
    using Filter = std::optional<std::vector<FilterNode>>;

    /// \p session and \p model are borrowed. \p lose ends the session's connection; it must not
    /// throw.
    Subscriber(nc_session* session, const WireModel& model, Filter filter,
               std::function<void()> lose);
    /// The connection must be at its end, so that no write waits for the client any more.
    ~Subscriber();
    Subscriber(const Subscriber&) = delete;
    Subscriber& operator=(const Subscriber&) = delete;

    /// Any thread.
    void push(const std::shared_ptr<const Event>& event);

    /// Begins to send, when the answer to the subscription is sent. Again: nothing.
    void start();

private:
    void run();
    void send(const Event& event);

    nc_session* mSession;
    const WireModel& mModel;
    const Filter mFilter;
    const std::function<void()> mLose;

    std::mutex mMutex; ///< guards all below but the thread
    std::condition_variable mChanged;
    std::deque<std::shared_ptr<const Event>> mWaiting;
    bool mIsEnding = false;
    std::thread mThread;
};

}

#endif
