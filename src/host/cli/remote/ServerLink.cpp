// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ServerLink.h"

#include "base/UnixAddress.h"
#include "cli/errors/CliErrors.h"
#include "cli/remote/ShellProtocol.h"
#include "cli/session/HeldInterrupts.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <iostream>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace OrvHost {

namespace {

/// A pipe that can be written at all takes that much without a wait.
constexpr std::size_t kPiece = 4096;

/// A terminal that can be written takes some bytes, perhaps fewer than a piece, and then a write
/// waits for its reader. Not so one that is opened again; to change \p fd itself would change it
/// for the programs that share it. Nothing if it is no terminal, or one that may not be opened: of
/// another user, say.
Descriptor openAgain(int fd) {
    if (isatty(fd) == 0) {
        return {};
    }
    const std::string path = "/proc/self/fd/" + std::to_string(fd);
    return Descriptor(open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
}

std::string whyNotConnected(int error) {
    switch (error) {
    case ENOENT:
        return "there is no such socket; 'orvhost serve --shell-unix' makes one";
    case ECONNREFUSED:
        return "no server listens there";
    case EACCES:
        return "only the user who runs the server can connect";
    default:
        return std::generic_category().message(error);
    }
}

}

ServerLink::ServerLink(const std::string& path, const CancellationToken& token)
    : mToken(token),
      mOutTerminal(openAgain(STDOUT_FILENO)),
      mErrTerminal(openAgain(STDERR_FILENO)),
      mReader(kLongestAnswer) {
    const UnixAddress address(path);
    if (!address.isUsable()) {
        throw LoadError(path + ": " + address.problem());
    }
    mSocket = Descriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (connect(mSocket.get(), reinterpret_cast<const sockaddr*>(&address.get()),
                sizeof(sockaddr_un)) != 0) {
        throw LoadError(path + ": " + whyNotConnected(errno));
    }
}

bool ServerLink::send(const std::string& bytes) {
    for (std::size_t at = 0; at < bytes.size();) {
        const ssize_t sent =
            ::send(mSocket.get(), bytes.data() + at, bytes.size() - at, MSG_NOSIGNAL);
        if (sent < 0 && errno != EINTR) {
            return false;
        }
        at += sent > 0 ? static_cast<std::size_t>(sent) : 0;
    }
    return true;
}

std::optional<Frame> ServerLink::receive(const std::string& cancel) {
    const HeldInterrupts held;
    for (;;) {
        if (std::optional<Frame> frame = mReader.next()) {
            return frame;
        }
        if (mToken.isCancelled() && cancel != mLastCancel) {
            mLastCancel = cancel;
            send(cancel);
        }
        dropIfCancelled();
        std::array<pollfd, 2> wanted{{{mSocket.get(), POLLIN, 0},
                                      {mWaiting.empty() ? -1 : mWaiting.front().fd, POLLOUT, 0}}};
        if (ppoll(wanted.data(), wanted.size(), nullptr, &held.before()) < 0) {
            continue;
        }
        if (wanted[1].revents != 0) {
            writeSome();
        }
        if (wanted[0].revents != 0 && !readSome()) {
            return std::nullopt;
        }
    }
}

std::optional<Frame> ServerLink::receiveWithin(int milliseconds) {
    for (;;) {
        if (std::optional<Frame> frame = mReader.next()) {
            return frame;
        }
        pollfd wanted{mSocket.get(), POLLIN, 0};
        if (poll(&wanted, 1, milliseconds) <= 0 || !readSome()) {
            return std::nullopt;
        }
    }
}

bool ServerLink::readSome() {
    std::array<char, 65536> buffer{};
    const ssize_t size = recv(mSocket.get(), buffer.data(), buffer.size(), 0);
    if (size > 0) {
        mReader.add({buffer.data(), static_cast<std::size_t>(size)});
    }
    mIsOpen = size > 0 || (size < 0 && errno == EINTR);
    return mIsOpen;
}

void ServerLink::print(int fd, std::string text) {
    if (!text.empty()) {
        mWaiting.push_back({fd, std::move(text)});
    }
}

/// What to write to for \p fd.
int ServerLink::streamOf(int fd) const {
    const Descriptor& terminal = fd == STDOUT_FILENO ? mOutTerminal : mErrTerminal;
    return terminal.get() >= 0 ? terminal.get() : fd;
}

void ServerLink::writeSome() {
    Waiting& first = mWaiting.front();
    const ssize_t size =
        ::write(streamOf(first.fd), first.text.data(), std::min(first.text.size(), kPiece));
    if (size < 0 && errno != EINTR && errno != EAGAIN) {
        mIsPrinted = mIsPrinted && first.fd != STDOUT_FILENO;
        first.text.clear();
    }
    if (size > 0 && first.fd == STDOUT_FILENO) {
        mIsInLine = first.text[static_cast<std::size_t>(size) - 1] != '\n';
    }
    first.text.erase(0, size > 0 ? static_cast<std::size_t>(size) : 0);
    if (first.text.empty()) {
        mWaiting.pop_front();
    }
}

void ServerLink::dropIfCancelled() {
    if (!mMayDrop || !mToken.isCancelled()) {
        return;
    }
    const auto isOutput = [](const Waiting& one) {
        return one.fd == STDOUT_FILENO && one.text != "\n";
    };
    const auto kept = std::remove_if(mWaiting.begin(), mWaiting.end(), isOutput);
    if (kept == mWaiting.end()) {
        return;
    }
    mWaiting.erase(kept, mWaiting.end());
    mHasDropped = true;
    if (std::exchange(mIsInLine, false)) {
        mWaiting.push_front({STDOUT_FILENO, "\n"});
    }
}

bool ServerLink::flush() {
    const HeldInterrupts held;
    for (;;) {
        dropIfCancelled();
        if (mWaiting.empty()) {
            return !std::exchange(mHasDropped, false);
        }
        pollfd wanted{mWaiting.front().fd, POLLOUT, 0};
        if (ppoll(&wanted, 1, nullptr, &held.before()) > 0) {
            writeSome();
        }
    }
}

}
