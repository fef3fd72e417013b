// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ShellChannel.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>

#include <poll.h>
#include <sys/socket.h>

namespace OrvHost {

namespace {

/// For a whole message, from its first byte on.
constexpr std::chrono::seconds kMessage{10};
constexpr std::size_t kPiece = std::size_t{32} << 10;

using Clock = std::chrono::steady_clock;

/// What came of \p events at a socket; 0 if nothing comes until \p end.
short waitFor(int fd, short events, std::optional<Clock::time_point> end) {
    pollfd wanted{fd, events, 0};
    int found = -1;
    do {
        int left = -1;
        if (end) {
            const auto until = std::chrono::ceil<std::chrono::milliseconds>(*end - Clock::now());
            left = static_cast<int>(std::clamp<long long>(until.count(), 0, INT_MAX));
        }
        found = poll(&wanted, 1, left);
    } while (found < 0 && errno == EINTR);
    return found > 0 ? wanted.revents : short{0};
}

}

std::optional<Frame> ShellChannel::receive(std::optional<std::chrono::milliseconds> patience) {
    // Of the wait for a message, and then of the message.
    std::optional<Clock::time_point> end =
        patience ? std::optional(Clock::now() + *patience) : std::nullopt;
    bool isBegun = false;
    for (;;) {
        if (std::optional<Frame> frame = mReader.next()) {
            return frame;
        }
        if (!isBegun && mReader.isInFrame()) {
            isBegun = true;
            end = Clock::now() + kMessage;
        }
        if ((waitFor(mSocket.get(), POLLIN, end) & POLLIN) == 0 ||
            (isBegun && Clock::now() >= *end)) {
            if (isBegun) {
                throw FrameError("a message was not whole within " +
                                 std::to_string(kMessage.count()) + " s");
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

Sent ShellChannel::send(char kind, std::string_view body) {
    const std::string bytes = frameBytes(kind, body);
    for (std::size_t at = 0; at < bytes.size();) {
        const ssize_t sent = ::send(mSocket.get(), bytes.data() + at, bytes.size() - at,
                                    MSG_DONTWAIT | MSG_NOSIGNAL);
        if (sent > 0) {
            at += static_cast<std::size_t>(sent);
        } else if (sent < 0 && errno == EAGAIN) {
            const auto end =
                mUnread.count() > 0 ? std::optional(Clock::now() + mUnread) : std::nullopt;
            const short found = waitFor(mSocket.get(), POLLOUT | POLLRDHUP, end);
            if (found != POLLOUT) {
                return found == 0 ? Sent::Unread : Sent::Gone;
            }
        } else if (sent == 0 || errno != EINTR) {
            return Sent::Gone;
        }
    }
    return Sent::Whole;
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

int FrameOutput::sync() {
    if (!mHeld.empty()) {
        mSend(mKind, mHeld);
    }
    mHeld.clear();
    return 0;
}

}
