// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_CORE_COMMITTER_H
#define ORV_HOST_NETCONF_CORE_COMMITTER_H

#include <cstdint>
#include <string>

namespace OrvHost {

class NetconfSession;

/// On whose request this thread commits: watchers of commits, which are called on the
/// thread that commits, get to know it so. The author of a transaction is who began it.
class Committer {
public:
    /// From now on it is that session.
    explicit Committer(const NetconfSession& session);
    /// From now on it is a user without a session of the protocol.
    explicit Committer(std::string user);
    /// Nobody any more.
    ~Committer();
    Committer(const Committer&) = delete;
    Committer& operator=(const Committer&) = delete;

    /// Null: the server itself, or somebody who is no client of the server.
    static const Committer* current();

    const std::string& user() const { return mUser; }
    /// 0: none.
    std::uint32_t sessionId() const { return mSessionId; }

private:
    std::string mUser;
    std::uint32_t mSessionId = 0;
};

}

#endif
