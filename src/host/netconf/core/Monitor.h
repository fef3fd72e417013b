// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_CORE_MONITOR_H
#define ORV_HOST_NETCONF_CORE_MONITOR_H

#include "netconf/core/Datastores.h"
#include "netconf/core/SubtreeFilter.h"
#include "netconf/wire/WireModel.h"

#include <cstdint>
#include <ctime>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace OrvHost {

enum class Transport : std::uint8_t { Ssh, UnixSocket };

/// Messages of a session, or of all of them. A request counts when it has been answered.
struct MessageCounts {
    std::uint32_t requests = 0;      ///< that could be parsed
    std::uint32_t badRequests = 0;   ///< that could not
    std::uint32_t errorReplies = 0;  ///< replies with at least one error
    std::uint32_t notifications = 0; ///< sent

    void add(const MessageCounts& more);
};

/// Counts what happens in the server and shows it as `netconf-state` of RFC 6022.
///
/// Any thread.
class Monitor {
public:
    /// Both are borrowed. The server's start is now.
    Monitor(const WireModel& model, const Datastores& stores);

    /// What the hello announces.
    void setCapabilities(std::vector<std::string> capabilities);

    void sessionBegins(const NetconfSession& session, Transport transport);
    /// Of a session that has begun; others are ignored.
    void count(std::uint32_t session, const MessageCounts& more);
    /// \p isDropped: neither the client nor another session has ended it by a request.
    void sessionEnds(std::uint32_t session, bool isDropped);
    /// A hello came that could not be used.
    void badHello();

    /// The container with all below it, in XML.
    std::string toXml() const;

private:
    struct Session {
        std::string user;
        Transport transport;
        std::time_t begin;
        MessageCounts counts{};
    };

    std::string datastoresXml() const;
    std::string schemasXml() const;

    const WireModel& mModel;
    const Datastores& mStores;
    const std::time_t mStart;

    mutable std::mutex mMutex; ///< guards all below
    std::vector<std::string> mCapabilities;
    std::map<std::uint32_t, Session> mSessions;
    MessageCounts mTotal;
    std::uint32_t mAllSessions = 0;
    std::uint32_t mDroppedSessions = 0;
    std::uint32_t mBadHellos = 0;
};

}

#endif
