// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_SERVER_SUBSCRIBER_H
#define ORV_HOST_NETCONF_SERVER_SUBSCRIBER_H

#include "base/Descriptor.h"
#include "netconf/core/EventStream.h"
#include "netconf/wire/WireModel.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

struct nc_session;

namespace OrvHost {

/// The events that wait for one session: whoever commits adds them, the session's own thread sends
/// them. So a client that does not read keeps no commit waiting, and no event meets a reply. If too
/// many events wait, the session is lost.
class Subscriber {
public:
    using Filter = std::optional<std::vector<FilterNode>>;

    /// \p session and \p model are borrowed. \p lose ends the session's connection; it must not
    /// throw. Throws std::system_error if there are no more descriptors.
    Subscriber(nc_session* session, const WireModel& model, Filter filter,
               std::function<void()> lose);
    ~Subscriber();
    Subscriber(const Subscriber&) = delete;
    Subscriber& operator=(const Subscriber&) = delete;

    /// Any thread.
    void push(const std::shared_ptr<const Event>& event);

    /// A descriptor that can be read while events wait.
    int waitingFd() const { return mSignal.get(); }

    /// Sends what waits now, unless the connection ends meanwhile, and waits for the client to take
    /// it. Returns how many it has sent. On the session's thread.
    std::uint32_t sendWaiting();

private:
    /// False if the connection is at its end; nothing if the filter leaves nothing of the event.
    std::optional<bool> send(const Event& event);

    nc_session* mSession;
    const WireModel& mModel;
    const Filter mFilter;
    const std::function<void()> mLose;
    const Descriptor mSignal;

    std::mutex mMutex; ///< guards all below
    std::deque<std::shared_ptr<const Event>> mWaiting;
    std::size_t mWaitingBytes = 0;
    bool mIsLost = false;
};

}

#endif
