// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "OtherThread.h"

#include "support/Require.h"

#include <chrono>

namespace Fuzz {

OtherThread& OtherThread::instance() {
    static OtherThread theInstance;
    return theInstance;
}

OtherThread::OtherThread() : mThread([this] { serve(); }) {}

OtherThread::~OtherThread() {
    {
        const std::lock_guard<std::mutex> guard(mMutex);
        mEnds = true;
    }
    mChanged.notify_all();
    mThread.join();
}

void OtherThread::run(const std::function<void()>& work, const char* after) {
    constexpr std::chrono::seconds kLongest(15);
    std::unique_lock<std::mutex> lock(mMutex);
    mWork = &work;
    mChanged.notify_all();
    const bool isDone = mChanged.wait_for(lock, kLongest, [this] { return mWork == nullptr; });
    require(isDone, std::string("a lock is held after ") + after);
}

void OtherThread::serve() {
    std::unique_lock<std::mutex> lock(mMutex);
    for (;;) {
        mChanged.wait(lock, [this] { return mWork != nullptr || mEnds; });
        if (mEnds) {
            return;
        }
        const std::function<void()>& work = *mWork;
        lock.unlock();
        work();
        lock.lock();
        mWork = nullptr;
        mChanged.notify_all();
    }
}

}
