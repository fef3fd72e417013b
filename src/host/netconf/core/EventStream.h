// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_CORE_EVENTSTREAM_H
#define ORV_HOST_NETCONF_CORE_EVENTSTREAM_H

#include "netconf/core/EventText.h"
#include "netconf/core/SubtreeFilter.h"
#include "runtime/Host.h"
#include "store/CommitFeed.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace OrvHost {

/// An event, ready to be sent.
struct Event {
    std::string time; ///< as RFC 3339 writes it
    std::string xml;
};

/// The stream NETCONF of RFC 5277: commits, and sessions that begin and end. Past events are not
/// kept. While somebody listens, commits run one after the other: see CommitFeed.
///
/// Any thread.
class EventStream {
public:
    /// Takes an event for one session. It is called on the thread that commits, so it must only put
    /// the event aside, and must not throw.
    using Listener = std::function<void(const std::shared_ptr<const Event>& event)>;

    /// Both are borrowed.
    EventStream(Host& host, const YangSchema& schema) : mHost(host), mSchema(schema) {}

    /// False if the session listens already.
    bool listen(std::uint32_t session, Listener listener);
    /// After that the listener of this session is not called any more.
    void leave(std::uint32_t session);

    void sessionBegins(const NetconfSession& session);
    void sessionEnds(const NetconfSession& session, const SessionEnd& end);

private:
    void publish(const std::function<std::string()>& makeXml);

    Host& mHost;
    const YangSchema& mSchema;

    std::mutex mMutex; ///< guards mListeners; held while they are called
    std::map<std::uint32_t, Listener> mListeners;

    /// Guards the feed. A watcher runs with the feed's own lock, and takes only mMutex.
    std::mutex mFeedMutex;
    std::optional<CommitFeed::Subscription> mFeed; ///< while somebody listens
};

}

#endif
