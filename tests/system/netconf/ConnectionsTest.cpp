// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The threads that serve connections, and their end.

#include "netconf/server/Connections.h"

#include <atomic>
#include <chrono>
#include <thread>

#include <gtest/gtest.h>
#include <sys/socket.h>

namespace OrvHost {
namespace {

Descriptor newSocket() {
    return Descriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
}

/// Stands for what a library keeps for a thread.
class LeftToThread {
public:
    explicit LeftToThread(std::atomic<int>& left) : mLeft(left) { ++mLeft; }
    ~LeftToThread() {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        --mLeft;
    }
    LeftToThread(const LeftToThread&) = delete;
    LeftToThread& operator=(const LeftToThread&) = delete;

private:
    std::atomic<int>& mLeft;
};

TEST(ConnectionsTest, EndAll_OfThreadsThatAreDone_WaitsUntilNothingOfThemIsLeft) {
    std::atomic<int> left{0};
    std::atomic<int> served{0};
    Connections connections({4, 4});
    for (int number = 0; number < 3; ++number) {
        ASSERT_TRUE(connections.start(newSocket(), [&](Descriptor, const Connections::Enter&) {
            static thread_local const LeftToThread ofThread(left);
            ++served;
        }));
    }

    EXPECT_TRUE(connections.endAll(Deadline::max()));

    EXPECT_EQ(served, 3);
    EXPECT_EQ(left, 0);
}

TEST(ConnectionsTest, Start_AfterTheEnd_IsRefused) {
    Connections connections({4, 4});
    EXPECT_TRUE(connections.endAll(Deadline::max()));

    EXPECT_FALSE(connections.start(newSocket(), [](Descriptor, const Connections::Enter&) {}));
}

TEST(ConnectionsTest, EndAll_WhileOneIsAtWork_GivesUpAtTheDeadline) {
    std::atomic<bool> mayEnd{false};
    Connections connections({4, 4});
    ASSERT_TRUE(connections.start(newSocket(), [&](Descriptor, const Connections::Enter&) {
        while (!mayEnd) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }));

    EXPECT_FALSE(connections.endAll(Deadline::clock::now() + std::chrono::milliseconds(20)));
    mayEnd = true;
    EXPECT_TRUE(connections.endAll(Deadline::max()));
}

}
}
