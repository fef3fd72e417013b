// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// What the client of a server's shell prints, and what it does not print any more.

#include "cli/remote/ServerLink.h"

#include "base/UnixAddress.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <stdexcept>
#include <string>

#include <fcntl.h>
#include <sys/socket.h>
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
        mReading = Descriptor(ends[0]);
        const Descriptor writing(ends[1]);
        mBefore = Descriptor(dup(STDOUT_FILENO));
        dup2(writing.get(), STDOUT_FILENO);
    }
    ~ServerLinkTest() override {
        restore();
        std::filesystem::remove_all(mFolder);
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

    std::string path;
    CancellationToken token;

private:
    void restore() {
        if (mBefore.get() >= 0) {
            dup2(mBefore.get(), STDOUT_FILENO);
            mBefore = Descriptor();
        }
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

TEST_F(ServerLinkTest, Flush_CancelledButDocumentsAreWanted_WritesThem) {
    ServerLink link(path, token);
    token.cancel();
    link.print(STDOUT_FILENO, "{}\n");
    EXPECT_TRUE(link.flush());
    EXPECT_EQ(written(), "{}\n");
}

}
