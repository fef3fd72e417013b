// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Alarm.h"

#include "ServerLog.h"

#include <utility>

namespace OrvHost {

void Alarm::set(Clock::time_point when) {
    const std::lock_guard<std::mutex> lock(mMutex);
    if (mIsEnding) {
        return;
    }
    mWhen = when;
    mChanged.notify_one();
}

void Alarm::off() {
    const std::lock_guard<std::mutex> lock(mMutex);
    mWhen.reset();
    mChanged.notify_one();
}

void Alarm::stop() {
    std::thread thread;
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mIsEnding = true;
        mChanged.notify_one();
        thread = std::move(mThread);
    }
    if (thread.joinable()) {
        thread.join();
    }
}

void Alarm::run() {
    std::unique_lock<std::mutex> lock(mMutex);
    while (!mIsEnding) {
        if (!mWhen) {
            mChanged.wait(lock);
        } else if (Clock::now() < *mWhen) {
            const Clock::time_point when = *mWhen;
            mChanged.wait_until(lock, when);
        } else {
            mWhen.reset();
            lock.unlock();
            contain("what was due is not done", mRing);
            lock.lock();
        }
    }
}

}
