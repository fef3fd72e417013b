// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_CORE_COMMITTER_H
#define ORV_HOST_NETCONF_CORE_COMMITTER_H

namespace OrvHost {

class NetconfSession;

/// The session on whose request this thread commits: watchers of commits, which are called on the
/// thread that commits, get to know it so. The author of a transaction is who began it.
class Committer {
public:
    /// From now on it is \p session, which is borrowed.
    explicit Committer(const NetconfSession& session);
    /// Nobody any more.
    ~Committer();
    Committer(const Committer&) = delete;
    Committer& operator=(const Committer&) = delete;

    /// Null: the server itself, or somebody who is no client of the server.
    static const NetconfSession* current();
};

}

#endif
