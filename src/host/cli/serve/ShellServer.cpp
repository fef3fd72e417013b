// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ShellServer.h"

#include "cli/input/WordSplitter.h"
#include "cli/serve/OwnFolders.h"
#include "netconf/core/ServerLog.h"
#include "netconf/server/ServerError.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include <unistd.h>

namespace OrvHost {

namespace {

/// Each shell has two threads.
constexpr ConnectionLimits kConnections{32, 16};
constexpr std::chrono::milliseconds kHello{10'000};
/// For the last words to the clients.
constexpr std::chrono::milliseconds kFarewell{500};

/// Listens where nobody else can put a socket of their own.
Descriptor listenSafely(const std::string& path) {
    requireOwnFolders(path);
    return listenAt(path);
}

}

ShellServer::ShellServer(std::string path, ShellServices services)
    : mServices(std::move(services)) {
    Descriptor listening = listenSafely(path);
    mFile = SocketFile(std::move(path));
    mListener = std::make_unique<Listener>(
        std::move(listening), kConnections,
        [this](Descriptor socket, const std::string&, const Connections::Enter& enter) {
            serve(std::move(socket), enter);
        });
}

ShellServer::~ShellServer() {
    end(Deadline::max());
}

std::string ShellServer::address() const {
    return "shell at the socket " + mFile.path() + ": orvhost --connect " +
           quoteForTyping(mFile.path());
}

void ShellServer::serve(Descriptor socket, const Connections::Enter& enter) {
    const uid_t user = peerUser(socket.get());
    const std::string name = userName(user);
    ShellChannel channel(std::move(socket), kLongestHello, mServices.idleLimit);
    const auto refuse = [&](const std::string& why) {
        logServer(4, "a shell for " + name + " is refused: " + why);
        channel.send(FrameBye, why);
    };
    // The socket's mode does not keep out who had it open before, or root, who is welcome.
    if (user != geteuid() && user != 0) {
        refuse("only the user who runs the server, and root, can have a shell");
        return;
    }
    try {
        const std::optional<Frame> frame = channel.receive(kHello);
        if (!frame) {
            refuse("no hello came");
            return;
        }
        if (frame->kind != FrameHello) {
            throw FrameError("a hello was expected");
        }
        ShellHello hello = helloFrom(frame->body);
        if (hello.version != kShellProtocol) {
            refuse("the client speaks version " + std::to_string(hello.version) +
                   " of the shell's protocol, this server version " +
                   std::to_string(kShellProtocol) + "; use the orvhost of the server");
            return;
        }
        if (!enter()) {
            refuse("too many shells are open");
            return;
        }
        channel.allow(kLongestLine);
        std::uint64_t number = 0;
        {
            const std::lock_guard<std::mutex> lock(mMutex);
            number = ++mLastNumber;
        }
        ServedShell shell(mServices, channel, std::move(hello), name, number);
        if (!add(shell)) {
            refuse("the server ends");
            return;
        }
        try {
            shell.serve();
        } catch (...) {
            remove(shell);
            throw;
        }
        remove(shell);
    } catch (const FrameError& error) {
        refuse(error.what());
    }
}

bool ShellServer::add(ServedShell& shell) {
    const std::lock_guard<std::mutex> lock(mMutex);
    if (!mIsEnding) {
        mShells.insert(&shell);
    }
    return !mIsEnding;
}

void ShellServer::remove(ServedShell& shell) {
    const std::lock_guard<std::mutex> lock(mMutex);
    mShells.erase(&shell);
    mChanged.notify_all();
}

void ShellServer::tellEnd() {
    const std::lock_guard<std::mutex> lock(mMutex);
    mIsEnding = true;
    mFile.remove();
    for (ServedShell* shell : mShells) {
        shell->stop("the server ends; what was not committed is aborted");
    }
}

bool ShellServer::end(Deadline deadline) {
    tellEnd();
    {
        std::unique_lock<std::mutex> lock(mMutex);
        mChanged.wait_until(lock, std::min(deadline, std::chrono::steady_clock::now() + kFarewell),
                            [this] { return mShells.empty(); });
    }
    if (mListener->end(deadline)) {
        return true;
    }
    const std::lock_guard<std::mutex> lock(mMutex);
    for (const ServedShell* shell : mShells) {
        logServer(4, shell->author() + ": is still at work");
    }
    return false;
}

}
