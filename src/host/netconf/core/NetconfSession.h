// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_CORE_NETCONFSESSION_H
#define ORV_HOST_NETCONF_CORE_NETCONFSESSION_H

#include "client/ClientSession.h"

#include <cstdint>
#include <string>
#include <utility>

namespace OrvHost {

/// A user as the transport has authenticated it.
struct NetconfUser {
    std::string name;
    bool isReadOnly = false; ///< may read, and lock nothing
};

/// A session of the protocol, with its own clients of the component.
///
/// One thread; client().cancellation() may be used by others.
class NetconfSession {
public:
    /// \p host is borrowed; its components stay started while the session lives.
    NetconfSession(Host& host, std::uint32_t id, NetconfUser user)
        : mId(id), mUser(std::move(user)), mClients(host), mClient(host, mClients) {}

    std::uint32_t id() const { return mId; }
    const NetconfUser& user() const { return mUser; }
    ClientSession& client() { return mClient; }

    /// For people, and in conflicts of transactions: "alice, session 4".
    std::string author() const { return mUser.name + ", session " + std::to_string(mId); }

private:
    std::uint32_t mId;
    NetconfUser mUser;
    Clients mClients;
    ClientSession mClient;
};

}

#endif
