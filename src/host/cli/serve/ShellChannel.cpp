// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ShellChannel.h"

#include <algorithm>
#include <array>
#include <cerrno>

#include <poll.h>
#include <sys/socket.h>

namespace OrvHost {

namespace {

constexpr std::chrono::milliseconds kRestOfMessage{10'000};
constexpr std::chrono::milliseconds kUnread{30'000};
constexpr std::size_t kPiece = std::size_t{32} << 10;

/// False if nothing of \p events comes in time, or the connection ends.
bool waitFor(int fd, short events, std::optional<std::chrono::milliseconds> patience) {
    pollfd wanted{fd, events, 0};
    int found = -1;
    do {
        found = poll(&wanted, 1, patience ? static_cast<int>(patience->count()) : -1);
    } while (found < 0 && errno == EINTR);
    return found > 0 && (wanted.revents & events) != 0;
}

}

std::optional<Frame> ShellChannel::receive(std::optional<std::chrono::milliseconds> patience) {
    for (;;) {
        if (std::optional<Frame> frame = mReader.next()) {
            return frame;
        }
        const bool isBegun = mReader.isInFrame();
        if (!waitFor(mSocket.get(), POLLIN, isBegun ? kRestOfMessage : patience)) {
            if (isBegun) {
                throw FrameError("the rest of a message has not come within " +
                                 std::to_string(kRestOfMessage.count() / 1000) + " s");
            }
            return std::nullopt;
        }
        std::array<char, 16384> buffer{};
        const ssize_t size = recv(mSocket.get(), buffer.data(), buffer.size(), MSG_DONTWAIT);
        if (size > 0) {
            mReader.add({buffer.data(), static_cast<std::size_t>(size)});
        } else if (size == 0 || (errno != EINTR && errno != EAGAIN)) {
            return std::nullopt;
        }
    }
}

bool ShellChannel::send(char kind, std::string_view body) {
    const std::string bytes = frameBytes(kind, body);
    for (std::size_t at = 0; at < bytes.size();) {
        const ssize_t sent = ::send(mSocket.get(), bytes.data() + at, bytes.size() - at,
                                    MSG_DONTWAIT | MSG_NOSIGNAL);
        if (sent > 0) {
            at += static_cast<std::size_t>(sent);
        } else if (sent < 0 && errno == EAGAIN) {
            pollfd wanted{mSocket.get(), POLLOUT | POLLRDHUP, 0};
            const int found = poll(&wanted, 1, static_cast<int>(kUnread.count()));
            if ((found < 0 && errno != EINTR) || found == 0 ||
                (found > 0 && wanted.revents != POLLOUT)) {
                return false;
            }
        } else if (sent == 0 || errno != EINTR) {
            return false;
        }
    }
    return true;
}

void ShellChannel::cut() {
    shutdown(mSocket.get(), SHUT_RD);
}

void ShellChannel::close() {
    shutdown(mSocket.get(), SHUT_RDWR);
}

int FrameOutput::overflow(int character) {
    const char one = static_cast<char>(character);
    xsputn(&one, 1);
    return character;
}

std::streamsize FrameOutput::xsputn(const char* text, std::streamsize size) {
    for (std::string_view left(text, static_cast<std::size_t>(size)); !left.empty();) {
        const std::size_t taken = std::min(left.size(), kPiece - mHeld.size());
        mHeld += left.substr(0, taken);
        left.remove_prefix(taken);
        if (mHeld.size() == kPiece) {
            sync();
        }
    }
    return size;
}

// What cannot be sent is dropped.
int FrameOutput::sync() {
    if (!mHeld.empty() && !mHasFailed && !mChannel.send(mKind, mHeld)) {
        mHasFailed = true;
        mOnFailure();
    }
    mHeld.clear();
    return 0;
}

}
