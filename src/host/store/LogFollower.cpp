// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "LogFollower.h"

#include <utility>

namespace OrvHost {

LogFollower::LogFollower(MoStore& store, std::chrono::milliseconds pause, Report report)
    : mStore(store), mPause(pause), mReport(std::move(report)), mThread([this] { run(); }) {}

LogFollower::~LogFollower() {
    {
        const std::lock_guard<std::mutex> guard(mMutex);
        mIsOver = true;
    }
    mChanged.notify_all();
    mThread.join();
}

void LogFollower::run() {
    std::unique_lock<std::mutex> lock(mMutex);
    while (!mIsOver) {
        lock.unlock();
        const std::string fault = mStore.logFault();
        if (fault.empty()) {
            follow();
        } else {
            loadAnew(fault);
        }
        lock.lock();
        mChanged.wait_for(lock, mPause, [this] { return mIsOver; });
    }
}

void LogFollower::follow() {
    try {
        mStore.catchUp();
        if (std::exchange(mIsAway, false)) {
            mReport("the store can be reached again");
        }
    } catch (const std::exception& error) {
        // A fault is reported when it is dealt with.
        if (mStore.logFault().empty() && !std::exchange(mIsAway, true)) {
            mReport(error.what());
        }
    }
}

// Refused while a transaction is open, and while the log cannot be reached.
void LogFollower::loadAnew(const std::string& fault) {
    if (!std::exchange(mIsFaultKnown, true)) {
        mReport(fault + "; commits are refused until the objects are loaded anew, which is done "
                        "when no transaction is open");
    }
    try {
        mStore.reload();
        mIsFaultKnown = false;
        mReport("the objects of the store were loaded anew");
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): it tries again
    }
}

}
