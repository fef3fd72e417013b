// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ServiceManager.h"

#include "base/Environment.h"

#include <cstddef>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace OrvHost {

// One datagram: no library is needed for that.
void tellServiceManager(const std::string& state) {
    const std::string path = environmentVariable("NOTIFY_SOCKET").value_or("");
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.empty() || path.size() >= sizeof(address.sun_path)) {
        return;
    }
    path.copy(address.sun_path, path.size());
    if (path.front() == '@') { // the name of an abstract socket
        address.sun_path[0] = '\0';
    }
    const int socket = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (socket < 0) {
        return;
    }
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size());
    sendto(socket, state.data(), state.size(), MSG_NOSIGNAL,
           reinterpret_cast<const sockaddr*>(&address), length);
    close(socket);
}

}
