// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_REMOTE_SERVERLINK_H
#define ORV_HOST_CLI_REMOTE_SERVERLINK_H

#include "base/Descriptor.h"
#include "cli/remote/Frame.h"
#include "client/CancellationToken.h"

#include <deque>
#include <optional>
#include <string>
#include <string_view>

namespace OrvHost {

/// The client's end of the socket of a server's shell. What the server answers is always read at
/// once, however slowly the standard output is read, because the server ends clients that do not
/// read. Ctrl-C, too, is noticed at once. Neither is so with a terminal that is not read and that
/// this process may not open once more, as after `su` to another user: what is written to it waits
/// then, and so does everything else.
///
/// One thread.
class ServerLink {
public:
    /// Connects. \p token says that nobody wants to see what is not printed yet; it is borrowed.
    /// Throws LoadError.
    ServerLink(const std::string& path, const CancellationToken& token);

    int fd() const { return mSocket.get(); }

    /// False if the server has closed the connection; what it said before can still be received.
    bool send(const std::string& bytes);

    /// The next frame; nothing at the end of the connection. Meanwhile writes what print() took.
    /// When the token is cancelled, sends \p cancel, but not twice the same. Throws FrameError.
    std::optional<Frame> receive(const std::string& cancel);
    /// The next frame, if it comes within that time and the connection does not end.
    std::optional<Frame> receiveWithin(int milliseconds);

    /// Writes to a stream, soon. \p fd: STDOUT_FILENO or STDERR_FILENO.
    void print(int fd, std::string text);
    /// From now on, when the token is cancelled, what waits for the standard output is dropped, and
    /// so is what comes for it before the token is renewed.
    void dropWhenCancelled() { mMayDrop = true; }
    /// Waits until all is written, or dropped. False if something was dropped since the last call.
    bool flush();
    /// False if something could not be written to the standard output.
    bool isPrinted() const { return mIsPrinted; }
    /// False as soon as receive() has met the end of the connection.
    bool isOpen() const { return mIsOpen; }

private:
    struct Waiting {
        int fd;
        std::string text;
    };

    bool readSome();
    void writeSome();
    int streamOf(int fd) const;
    void dropIfCancelled();

    const CancellationToken& mToken;
    Descriptor mSocket;
    const Descriptor mOutTerminal; ///< the standard output, if that is a terminal
    const Descriptor mErrTerminal;
    FrameReader mReader;
    std::deque<Waiting> mWaiting;
    std::string mLastCancel;
    bool mMayDrop = false;
    bool mHasDropped = false;
    bool mIsInLine = false; ///< the standard output does not end with the end of a line
    bool mIsPrinted = true;
    bool mIsOpen = true;
};

}

#endif
