// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// What the client of a server's shell prints, and what it does not print any more.

#include "cli/remote/ServerLink.h"

#include "base/UnixAddress.h"
#include "cli/remote/ShellProtocol.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <csignal>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <pthread.h>
#include <pty.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

using namespace OrvHost;

namespace {

class ServerLinkTest : public testing::Test {
protected:
    ServerLinkTest() : mListening(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        std::string folder = (std::filesystem::temp_directory_path() / "link.XXXXXX").string();
        if (mkdtemp(folder.data()) == nullptr) {
            throw std::runtime_error("there is no folder for a socket");
        }
        mFolder = folder;
        path = folder + "/socket";
        const UnixAddress address(path);
        if (bind(mListening.get(), reinterpret_cast<const sockaddr*>(&address.get()),
                 sizeof(sockaddr_un)) != 0 ||
            listen(mListening.get(), 1) != 0) {
            throw std::runtime_error("there is no socket");
        }
        std::array<int, 2> ends{};
        if (pipe(ends.data()) != 0) {
            throw std::runtime_error("there is no pipe");
        }
        mBefore = Descriptor(dup(STDOUT_FILENO));
        writeTo(Descriptor(ends[0]), Descriptor(ends[1]));
    }
    ~ServerLinkTest() override {
        restore();
        std::filesystem::remove_all(mFolder);
    }

    /// The standard output is that of the process again.
    void restore() {
        if (mBefore.get() >= 0) {
            dup2(mBefore.get(), STDOUT_FILENO);
            mBefore = Descriptor();
        }
    }

    /// What was written to the standard output, which is that of the process again.
    std::string written() {
        restore();
        std::string text;
        std::array<char, 65536> buffer{};
        for (ssize_t size = 1; size > 0;) {
            size = read(mReading.get(), buffer.data(), buffer.size());
            text.append(buffer.data(), static_cast<std::size_t>(size > 0 ? size : 0));
        }
        return text;
    }

    /// Prints \p text with a link that drops what waits, and then presses Ctrl-C.
    void printAndCancel(ServerLink& link, const std::string& text) {
        link.dropWhenCancelled();
        link.print(STDOUT_FILENO, text);
        EXPECT_TRUE(link.flush());
        token.cancel();
    }

    /// The standard output is a terminal that nobody reads.
    void useTerminal() {
        int reading = -1;
        int writing = -1;
        if (openpty(&reading, &writing, nullptr, nullptr, nullptr) != 0) {
            throw std::runtime_error("there is no terminal");
        }
        writeTo(Descriptor(reading), Descriptor(writing));
    }

    /// Reads the terminal, and forgets what it reads.
    void readUntil(const std::atomic<bool>& isDone) {
        fcntl(mReading.get(), F_SETFL, O_NONBLOCK);
        std::array<char, 65536> buffer{};
        while (!isDone) {
            if (read(mReading.get(), buffer.data(), buffer.size()) <= 0) {
                std::this_thread::yield();
            }
        }
    }

    /// The server's end of the connection of a link. It waits 10 seconds at most, for a client that
    /// is stuck.
    Descriptor accepted() const {
        Descriptor socket(accept(mListening.get(), nullptr, nullptr));
        const timeval most{10, 0};
        setsockopt(socket.get(), SOL_SOCKET, SO_SNDTIMEO, &most, sizeof most);
        setsockopt(socket.get(), SOL_SOCKET, SO_RCVTIMEO, &most, sizeof most);
        return socket;
    }

    std::string path;
    CancellationToken token;

private:
    void writeTo(Descriptor reading, Descriptor writing) {
        mReading = std::move(reading);
        dup2(writing.get(), STDOUT_FILENO);
    }

    std::filesystem::path mFolder;
    Descriptor mListening;
    Descriptor mReading;
    Descriptor mBefore;
};

TEST_F(ServerLinkTest, Flush_Cancelled_DropsWhatWaits) {
    ServerLink link(path, token);
    printAndCancel(link, "begin");
    link.print(STDOUT_FILENO, std::string(10'000'000, 'x'));
    EXPECT_FALSE(link.flush());
    token.renew();
    link.print(STDOUT_FILENO, "next\n");
    EXPECT_TRUE(link.flush()) << "nothing was dropped since";
    EXPECT_EQ(written(), "begin\nnext\n") << "the line ends";
}

TEST_F(ServerLinkTest, Flush_CancelledAtTheEndOfALine_AddsNone) {
    ServerLink link(path, token);
    printAndCancel(link, "line\n");
    EXPECT_TRUE(link.flush()) << "nothing waited";
    link.print(STDOUT_FILENO, "dropped");
    EXPECT_FALSE(link.flush());
    EXPECT_EQ(written(), "line\n");
}

CancellationToken* theToken = nullptr;

/// Ctrl-C cancels a token, as long as this lives.
class CancelOnInterrupt {
public:
    explicit CancelOnInterrupt(CancellationToken& token) {
        theToken = &token;
        struct sigaction action {};
        action.sa_handler = [](int) { theToken->cancel(); };
        action.sa_flags = SA_RESTART;
        sigaction(SIGINT, &action, &mBefore);
    }
    ~CancelOnInterrupt() { sigaction(SIGINT, &mBefore, nullptr); }
    CancelOnInterrupt(const CancelOnInterrupt&) = delete;
    CancelOnInterrupt& operator=(const CancelOnInterrupt&) = delete;

private:
    struct sigaction mBefore {};
};

TEST_F(ServerLinkTest, Receive_TerminalIsNotRead_ReadsTheServerAndSendsTheCancel) {
    useTerminal();
    ServerLink link(path, token);
    const CancelOnInterrupt guard(token);
    std::string lines;
    for (int line = 0; line < 100'000; ++line) {
        lines += std::to_string(line) + " is a line\n";
    }
    link.print(STDOUT_FILENO, lines);
    const pthread_t client = pthread_self();
    // Until it is read, the terminal has taken what it can.
    const std::string frame = frameBytes(FrameErr, std::string(4'000'000, 'e'));
    ssize_t sent = 0;
    std::array<char, 6> cancel{};
    std::atomic<bool> isReceived{false};
    // What fails is said afterwards: nobody reads the standard output.
    std::thread server([&] {
        const Descriptor socket = accepted();
        sent = send(socket.get(), frame.data(), frame.size() - 1, MSG_NOSIGNAL);
        pthread_kill(client, SIGINT);
        recv(socket.get(), cancel.data(), cancel.size(), MSG_WAITALL);
        std::thread reader([&] { readUntil(isReceived); }); // ends a write that waits
        const std::string rest = frame.substr(static_cast<std::size_t>(sent > 0 ? sent : 0));
        for (std::size_t at = 0; at < rest.size();) {
            const ssize_t more =
                send(socket.get(), rest.data() + at, rest.size() - at, MSG_NOSIGNAL);
            if (more <= 0) {
                break;
            }
            at += static_cast<std::size_t>(more);
        }
        reader.join();
    });
    const std::optional<Frame> received = link.receive("cancel");
    isReceived = true;
    server.join();
    restore();
    EXPECT_EQ(sent, static_cast<ssize_t>(frame.size() - 1)) << "the client waits for its terminal";
    EXPECT_EQ(std::string(cancel.data(), cancel.size()), "cancel");
    ASSERT_TRUE(received);
    EXPECT_EQ(received->body.size(), 4'000'000U);
}

TEST_F(ServerLinkTest, Flush_CancelledButDocumentsAreWanted_WritesThem) {
    ServerLink link(path, token);
    token.cancel();
    link.print(STDOUT_FILENO, "{}\n");
    EXPECT_TRUE(link.flush());
    EXPECT_EQ(written(), "{}\n");
}

}
