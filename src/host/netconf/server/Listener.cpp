// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Listener.h"

#include "ServerError.h"
#include "base/TextScanner.h"
#include "base/UnixAddress.h"
#include "netconf/core/ServerLog.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <limits>
#include <memory>
#include <system_error>
#include <vector>

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/tcp.h>
#include <pwd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace OrvHost {

namespace {

constexpr int kBacklog = 64;

[[noreturn]] void fail(const std::string& what) {
    throw ServerError(what + ": " + std::generic_category().message(errno));
}

std::string textOf(const sockaddr_storage& address, socklen_t size) {
    std::array<char, NI_MAXHOST> host{};
    std::array<char, NI_MAXSERV> port{};
    if (address.ss_family == AF_UNIX ||
        getnameinfo(reinterpret_cast<const sockaddr*>(&address), size, host.data(), host.size(),
                    port.data(), port.size(), NI_NUMERICHOST | NI_NUMERICSERV) != 0) {
        return "this machine";
    }
    const bool isSix = address.ss_family == AF_INET6;
    return (isSix ? "[" : "") + std::string(host.data()) + (isSix ? "]:" : ":") + port.data();
}

/// Why nobody can connect; 0 if that is possible.
int probe(const sockaddr_un& address) {
    const Descriptor probing(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    return connect(probing.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0
               ? 0
               : errno;
}

void removeLeftOver(const std::string& path, const sockaddr_un& address) {
    struct stat known {};
    if (lstat(path.c_str(), &known) != 0) {
        return;
    }
    if (!S_ISSOCK(known.st_mode)) {
        throw ServerError(path + ": exists already, and is no socket");
    }
    const int error = probe(address);
    if (error == 0 || error == EAGAIN) { // that of a server that is busy
        throw ServerError(path + ": exists already; another program listens there");
    }
    if (error != ECONNREFUSED) {
        throw ServerError(
            path + ": exists already, and it is not known whether a program listens there (" +
            std::generic_category().message(error) + "); a path was expected where nothing is");
    }
    if (unlink(path.c_str()) != 0) {
        fail(path + ": what a server left there cannot be removed");
    }
}

}

NetAddress NetAddress::parse(const std::string& text) {
    const std::size_t colon = text.rfind(':');
    std::string host = text.substr(0, colon);
    const std::string port = colon != std::string::npos ? text.substr(colon + 1) : "";
    if (host.size() > 2 && host.front() == '[' && host.back() == ']') {
        host = host.substr(1, host.size() - 2);
    }
    const bool isPort = !port.empty() && port.size() <= 5 &&
                        port.find_first_not_of("0123456789") == std::string::npos &&
                        std::stoul(port) <= 65535;
    if (host.empty() || !isPort) {
        throw ServerError("'" + text + "': ADDRESS:PORT was expected, such as 127.0.0.1:8300");
    }
    return {host, port};
}

bool NetAddress::isLoopback() const {
    return host.compare(0, 4, "127.") == 0 || host == "::1";
}

Descriptor listenAt(const NetAddress& address) {
    addrinfo wanted{};
    wanted.ai_socktype = SOCK_STREAM;
    wanted.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV | AI_PASSIVE;
    addrinfo* found = nullptr;
    const std::string name = address.host + " port " + address.port;
    if (getaddrinfo(address.host.c_str(), address.port.c_str(), &wanted, &found) != 0) {
        throw ServerError(name + ": a numeric address was expected");
    }
    const std::unique_ptr<addrinfo, void (*)(addrinfo*)> owned(found, freeaddrinfo);
    Descriptor listening(socket(found->ai_family, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const int on = 1;
    setsockopt(listening.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
    if (bind(listening.get(), found->ai_addr, found->ai_addrlen) != 0 ||
        listen(listening.get(), kBacklog) != 0) {
        fail(name);
    }
    return listening;
}

Descriptor listenAt(const std::string& path) {
    const UnixAddress named(path);
    if (!named.isUsable()) {
        throw ServerError(path + ": " + named.problem());
    }
    const sockaddr_un& address = named.get();
    removeLeftOver(path, address);
    Descriptor listening(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    // Nobody can connect before listen(), so the mode is right in time.
    if (bind(listening.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0 ||
        chmod(path.c_str(), 0600) != 0 || listen(listening.get(), kBacklog) != 0) {
        fail(path);
    }
    return listening;
}

SocketFile::SocketFile(std::string path) : mPath(std::move(path)) {
    struct stat known {};
    if (lstat(mPath.c_str(), &known) == 0) {
        mNode.emplace(known.st_dev, known.st_ino);
    }
}

// The number of a file is not used again as long as the socket is open.
void SocketFile::remove() {
    struct stat known {};
    if (mNode && lstat(mPath.c_str(), &known) == 0 &&
        *mNode == std::pair(known.st_dev, known.st_ino)) {
        unlink(mPath.c_str());
    }
    mNode.reset();
}

uid_t peerUser(int socket) {
    ucred peer{};
    socklen_t size = sizeof(peer);
    if (getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0) {
        throw ServerError("it is not known who connects");
    }
    return peer.uid;
}

namespace {

/// What \p lookUp, a function such as getpwuid_r, finds, given to \p read; false if there is no
/// such user. Throws ServerError, which names \p whose, if it cannot be looked up.
template <class LookUp, class Read>
bool readUser(const std::string& whose, const LookUp& lookUp, const Read& read) {
    constexpr std::size_t kMost = 1 << 20;
    std::vector<char> buffer(16384);
    passwd entry{};
    passwd* found = nullptr;
    int problem = lookUp(&entry, buffer.data(), buffer.size(), &found);
    while (problem == ERANGE && buffer.size() < kMost) {
        buffer.resize(2 * buffer.size());
        problem = lookUp(&entry, buffer.data(), buffer.size(), &found);
    }
    if (found == nullptr && problem != 0 && problem != ENOENT && problem != ESRCH) {
        throw ServerError("user " + whose +
                          " cannot be looked up: " + std::generic_category().message(problem));
    }
    if (found != nullptr) {
        read(*found);
    }
    return found != nullptr;
}

}

std::string userName(uid_t user) {
    std::string name = std::to_string(user);
    readUser(
        name,
        [user](passwd* entry, char* buffer, std::size_t size, passwd** found) {
            return getpwuid_r(user, entry, buffer, size, found);
        },
        [&name](const passwd& entry) { name = entry.pw_name; });
    return name;
}

std::optional<uid_t> systemUser(const std::string& name) {
    std::optional<uid_t> user;
    const bool isKnown = readUser(
        name,
        [&name](passwd* entry, char* buffer, std::size_t size, passwd** found) {
            return getpwnam_r(name.c_str(), entry, buffer, size, found);
        },
        [&user](const passwd& entry) { user = entry.pw_uid; });
    if (const auto number = isKnown ? std::nullopt : numberIn(name);
        number && *number >= 0 && *number < std::numeric_limits<uid_t>::max()) {
        user = static_cast<uid_t>(*number);
    }
    return user;
}

Listener::Listener(Descriptor socket, ConnectionLimits limits, Serve serve)
    : mSocket(std::move(socket)),
      mServe(std::move(serve)),
      mConnections(limits),
      mThread([this] { acceptAll(); }) {}

Listener::~Listener() {
    end(Deadline::max());
}

bool Listener::end(Deadline deadline) {
    mIsEnding = true;
    shutdown(mSocket.get(), SHUT_RDWR);
    if (mThread.joinable()) {
        mThread.join();
    }
    return mConnections.endAll(deadline);
}

void Listener::acceptAll() {
    while (true) {
        sockaddr_storage address{};
        socklen_t size = sizeof(address);
        Descriptor accepted(
            accept4(mSocket.get(), reinterpret_cast<sockaddr*>(&address), &size, SOCK_CLOEXEC));
        const int problem = accepted.get() < 0 ? errno : 0;
        if (mIsEnding) {
            return;
        }
        if (problem != 0) {
            if (problem != EINTR && problem != ECONNABORTED) {
                // Other connections end; meanwhile this one waits in the queue. The network's own
                // errors come this way, too.
                std::this_thread::sleep_for(std::chrono::milliseconds(100));
            }
            continue;
        }
        contain("a connection is refused",
                [&] { start(std::move(accepted), textOf(address, size)); });
    }
}

void Listener::start(Descriptor accepted, const std::string& from) {
    const int on = 1;
    setsockopt(accepted.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
    const bool isStarted = mConnections.start(
        std::move(accepted), [this, from](Descriptor socket, const Connections::Enter& enter) {
            mServe(std::move(socket), from, enter);
        });
    if (!isStarted) {
        logServer(4, "a connection from " + from + " is refused: too many are open");
    }
}

std::string Listener::address() const {
    sockaddr_storage address{};
    socklen_t size = sizeof(address);
    getsockname(mSocket.get(), reinterpret_cast<sockaddr*>(&address), &size);
    return textOf(address, size);
}

}
