// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_SERVE_SHELLCHANNEL_H
#define ORV_HOST_CLI_SERVE_SHELLCHANNEL_H

#include "base/Descriptor.h"
#include "cli/remote/Frame.h"

#include <chrono>
#include <functional>
#include <optional>
#include <streambuf>
#include <string>
#include <string_view>
#include <utility>

namespace OrvHost {

/// What became of a frame.
enum class Sent {
    Whole,
    Gone,   ///< the client does not read any more, or nothing is received from it any more
    Unread, ///< the client has read nothing for too long
};

/// The server's end of the socket of a shell. A message that has begun must come within some time.
/// What is sent is not kept here: who sends waits until the client reads, like a program that
/// writes to a terminal.
///
/// One thread receives, another one may send; cut() and close() are for any.
class ShellChannel {
public:
    /// \p most: the size of the longest body that is taken at first. \p unread: how long the client
    /// may read nothing of what is sent; 0: as long as it likes.
    ShellChannel(Descriptor socket, std::size_t most, std::chrono::seconds unread)
        : mSocket(std::move(socket)), mReader(most), mUnread(unread) {}

    int fd() const { return mSocket.get(); }
    /// See FrameReader::allow.
    void allow(std::size_t most) { mReader.allow(most); }

    /// The next frame; nothing at the end of the connection. \p patience: how long its first byte
    /// may take; nothing: as long as it likes. Throws FrameError, also if it is not whole in time.
    std::optional<Frame> receive(std::optional<std::chrono::milliseconds> patience = {});

    /// Gone also if the client is cut() off while it does not read.
    Sent send(char kind, std::string_view body);

    /// Nothing is received any more; what fits is still sent.
    void cut();
    /// Nothing is sent either.
    void close();

private:
    Descriptor mSocket;
    FrameReader mReader;
    const std::chrono::seconds mUnread;
};

/// A stream's text as frames of one kind.
class FrameOutput : public std::streambuf {
public:
    using Send = std::function<void(char kind, std::string_view body)>;
    /// \p send sends a frame of that kind, or drops it.
    FrameOutput(char kind, Send send) : mKind(kind), mSend(std::move(send)) {}

protected:
    int overflow(int character) override;
    std::streamsize xsputn(const char* text, std::streamsize size) override;
    int sync() override;

private:
    char mKind;
    Send mSend;
    std::string mHeld;
};

}

#endif
