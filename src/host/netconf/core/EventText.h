// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_CORE_EVENTTEXT_H
#define ORV_HOST_NETCONF_CORE_EVENTTEXT_H

#include "netconf/core/Committer.h"
#include "netconf/core/NetconfSession.h"
#include "store/ChangeSet.h"
#include "yang/schema/YangSchema.h"

#include <cstdint>
#include <optional>
#include <string>

namespace OrvHost {

/// How a session has ended.
struct SessionEnd {
    bool isClosed = false; ///< by close-session; otherwise its connection was lost
    std::optional<std::uint32_t> killedBy{};
};

/// The events of RFC 6470, as the XML of their element.

/// netconf-config-change: what a commit has changed in running, what the component changed to keep
/// associations in step included. A created or deleted object stands for all below it; an attribute
/// is named whole, but for leaf-lists, whose entries are named. \p by null: the server.
std::string configChangeEvent(const ChangeSet& changes, const Committer* by,
                              const YangSchema& schema);
/// netconf-session-start.
std::string sessionStartEvent(const NetconfSession& session);
/// netconf-session-end.
std::string sessionEndEvent(const NetconfSession& session, const SessionEnd& end);

}

#endif
