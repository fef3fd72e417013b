// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "LogFollower.h"

#include <algorithm>
#include <utility>

namespace OrvHost {

namespace {

constexpr std::chrono::milliseconds kLongestPause{1000};

}

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
    std::chrono::milliseconds pause = mPause;
    std::unique_lock<std::mutex> lock(mMutex);
    while (!mIsOver) {
        lock.unlock();
        const std::string fault = mStore.logFault();
        const bool isDone = fault.empty() ? follow() : loadAnew(fault);
        pause = isDone ? mPause : std::min(2 * pause, std::max(mPause, kLongestPause));
        lock.lock();
        mChanged.wait_for(lock, pause, [this] { return mIsOver; });
    }
}

bool LogFollower::follow() {
    try {
        mStore.catchUp();
        if (std::exchange(mIsAway, false)) {
            mReport("the store can be reached again");
        }
        return true;
    } catch (const std::exception& error) {
        // A fault is reported when it is dealt with.
        const bool isFault = !mStore.logFault().empty();
        if (!isFault && !std::exchange(mIsAway, true)) {
            mReport(error.what());
        }
        return isFault;
    }
}

bool LogFollower::loadAnew(const std::string& fault) {
    if (std::exchange(mFault, fault) != fault) {
        mReport(fault + "; commits are refused until the objects are loaded anew");
    }
    try {
        mStore.reload();
        mFault.clear();
        mFailure.clear();
        mReport("the objects of the store were loaded anew; transactions that have written before "
                "cannot be committed");
        return true;
    } catch (const std::exception& error) {
        if (std::exchange(mFailure, error.what()) != error.what()) {
            mReport(std::string("the objects of the store cannot be loaded anew: ") + error.what());
        }
        return false;
    }
}

}
