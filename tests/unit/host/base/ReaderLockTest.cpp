// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "base/ReaderLock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <mutex>
#include <shared_mutex>
#include <thread>
#include <vector>

namespace OrvHost {
namespace {

// More threads than the lock has places for readers, so that some share one.
constexpr int kReaders = 20;
constexpr int kTurns = 2000;

TEST(ReaderLock, ReadersAndWriters_NeverMeet) {
    ReaderLock lock;
    int one = 0; // not atomic: the lock must order all accesses
    int other = 0;
    std::atomic<int> torn{0};
    std::vector<std::thread> threads;
    for (int writer = 0; writer < 2; ++writer) {
        threads.emplace_back([&] {
            for (int turn = 0; turn < kTurns; ++turn) {
                const std::unique_lock<ReaderLock> guard(lock);
                ++one;
                ++other;
            }
        });
    }
    for (int reader = 0; reader < kReaders; ++reader) {
        threads.emplace_back([&] {
            for (int turn = 0; turn < kTurns; ++turn) {
                const std::shared_lock<ReaderLock> guard(lock);
                torn += one == other ? 0 : 1;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(torn, 0);
    EXPECT_EQ(one, 2 * kTurns);
}

TEST(ReaderLock, WritersWithoutAPause_LetReadersIn) {
    constexpr int kReads = 500;
    ReaderLock lock;
    std::atomic<int> reads{0};
    std::atomic<bool> isOver{false};
    std::atomic<int> writes{0};
    std::vector<std::thread> writers;
    for (int writer = 0; writer < 2; ++writer) {
        writers.emplace_back([&] {
            while (!isOver) {
                const std::unique_lock<ReaderLock> guard(lock);
                ++writes;
                const auto end = std::chrono::steady_clock::now() + std::chrono::microseconds(200);
                while (std::chrono::steady_clock::now() < end) {
                }
            }
        });
    }
    // Each read comes while a writer is inside or about to be.
    std::thread reader([&] {
        for (int seen = 0; !isOver && reads < kReads; ++reads) {
            while (!isOver && writes == seen) {
                std::this_thread::yield();
            }
            seen = writes;
            const std::shared_lock<ReaderLock> guard(lock);
        }
        isOver = true;
    });
    // This takes two seconds. Readers that are kept out do some dozens in this time.
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!isOver && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    isOver = true;
    reader.join();
    for (std::thread& writer : writers) {
        writer.join();
    }
    EXPECT_EQ(reads, kReads);
}

TEST(ReaderLock, Readers_AreInsideTogether) {
    ReaderLock lock;
    std::atomic<int> inside{0};
    std::vector<std::thread> threads;
    for (int reader = 0; reader < kReaders; ++reader) {
        threads.emplace_back([&] {
            const std::shared_lock<ReaderLock> guard(lock);
            ++inside;
            while (inside < kReaders) {
                std::this_thread::yield();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(inside, kReaders);
}

}
}
