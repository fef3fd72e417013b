// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "LogValve.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace SystemTest {

namespace {

constexpr std::chrono::seconds kPatience{30};
constexpr int kPollMilliseconds = 100;

int makeReader(const std::string& path) {
    if (mkfifo(path.c_str(), 0600) != 0) {
        throw std::runtime_error("mkfifo failed");
    }
    const int reader = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (reader < 0) {
        throw std::runtime_error("the pipe cannot be opened");
    }
    return reader;
}

}

LogValve::LogValve(const std::string& path)
    : mReader(makeReader(path)), mThread([this] { run(); }) {}

LogValve::~LogValve() {
    release();
    {
        const std::lock_guard lock(mMutex);
        mIsEnding = true;
    }
    mThread.join();
    close(mReader);
}

void LogValve::holdAt(const std::string& text) {
    const std::lock_guard lock(mMutex);
    mWanted = text;
    mSeen.clear();
}

bool LogValve::waitUntilHeld() {
    std::unique_lock lock(mMutex);
    return mChanged.wait_for(lock, kPatience, [this] { return mIsHeld; });
}

void LogValve::release() {
    const std::lock_guard lock(mMutex);
    mWanted.clear();
    mIsHeld = false;
    mChanged.notify_all();
}

void LogValve::run() {
    for (;;) {
        pollfd waiting{mReader, POLLIN, 0};
        poll(&waiting, 1, kPollMilliseconds);
        char buffer[4096];
        const ssize_t count = read(mReader, buffer, sizeof buffer);
        if (count > 0) {
            take(std::string(buffer, static_cast<std::size_t>(count)));
            continue;
        }
        // There is nothing to read: because nobody writes, or not yet.
        const std::lock_guard lock(mMutex);
        if (mIsEnding) {
            return;
        }
    }
}

void LogValve::take(const std::string& text) {
    std::unique_lock lock(mMutex);
    if (mWanted.empty()) {
        return;
    }
    mSeen += text;
    if (mSeen.find(mWanted) != std::string::npos) {
        mIsHeld = true;
        mChanged.notify_all();
        mChanged.wait(lock, [this] { return !mIsHeld; });
    } else {
        mSeen.erase(0, mSeen.size() - std::min(mSeen.size(), mWanted.size()));
    }
}

}
