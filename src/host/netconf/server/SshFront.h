// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_SERVER_SSHFRONT_H
#define ORV_HOST_NETCONF_SERVER_SSHFRONT_H

#include "base/Descriptor.h"
#include "netconf/server/Connections.h"
#include "netconf/server/UserTable.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include <libssh/server.h>

namespace OrvHost {

/// What an SSH connection may cost before and after its user is known.
struct SshLimits {
    int loginSeconds = 30; ///< from the connection to the start of the subsystem
    int failedLogins = 5;  ///< then the connection ends
    std::size_t unanswered =
        std::size_t{64} * 1024 * 1024; ///< bytes of requests without any byte of an answer
};

/// SSH in front of the protocol: exchanges keys, authenticates the user, and passes the bytes of
/// the subsystem `netconf` through a pair of sockets, of which the protocol gets the other end. One
/// channel for a connection; there is no shell and no forwarding.
///
/// Any thread.
class SshFront {
public:
    /// Runs the protocol over a socket until it ends.
    using Protocol =
        std::function<void(Descriptor channel, const NetconfUser& user, const std::string& from)>;

    /// \p users is borrowed. Throws ServerError if the key cannot be read.
    SshFront(const std::string& hostKey, const UserTable& users, SshLimits limits,
             Protocol protocol);
    ~SshFront();
    SshFront(const SshFront&) = delete;
    SshFront& operator=(const SshFront&) = delete;

    /// Serves a connection until it ends. \p enter: see Connections.
    void serve(Descriptor socket, const std::string& from, const Connections::Enter& enter);

private:
    ssh_session accept(Descriptor socket);

    const UserTable& mUsers;
    const SshLimits mLimits;
    const Protocol mProtocol;
    std::mutex mMutex; ///< guards mBind
    ssh_bind mBind;
};

}

#endif
