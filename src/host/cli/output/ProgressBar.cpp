// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ProgressBar.h"

#include <algorithm>

namespace OrvHost {

namespace {

constexpr std::chrono::milliseconds kInterval{100};
constexpr std::uint64_t kWidth = 30;
constexpr const char* kEraseLine = "\r\x1b[K"; // to column one, then erase to the end of the line

}

ProgressBar::ProgressBar(std::ostream& out, bool isShown, std::chrono::milliseconds delay)
    : mOut(out), mBegin(std::chrono::steady_clock::now()) {
    if (isShown) {
        mThread = std::thread([this, delay] { run(delay); });
    }
}

ProgressBar::~ProgressBar() {
    if (!mThread.joinable()) {
        return;
    }
    {
        const std::lock_guard lock(mMutex);
        mIsEnding = true;
    }
    mEnding.notify_all();
    mThread.join();
}

void ProgressBar::update(const std::string& what, std::uint64_t done, std::uint64_t all) {
    const std::lock_guard lock(mMutex);
    mWhat = what;
    mDone = done;
    mAll = all;
}

void ProgressBar::print(const std::string& text) {
    const std::lock_guard lock(mMutex);
    erase();
    mOut << text << std::endl;
}

void ProgressBar::run(std::chrono::milliseconds delay) {
    std::unique_lock lock(mMutex);
    std::chrono::milliseconds pause = delay;
    while (!mEnding.wait_for(lock, pause, [this] { return mIsEnding; })) {
        mOut << kEraseLine << line() << std::flush;
        mIsDrawn = true;
        pause = kInterval;
    }
    erase();
}

void ProgressBar::erase() {
    if (mIsDrawn) {
        mOut << kEraseLine << std::flush;
        mIsDrawn = false;
    }
}

std::string ProgressBar::line() {
    const auto seconds =
        std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - mBegin)
            .count();
    const std::string time = " " + std::to_string(seconds) + " s";
    if (mAll == 0) {
        return mWhat + (mDone > 0 ? " " + std::to_string(mDone) : "") + time;
    }
    const std::uint64_t done = std::min(mDone, mAll);
    const auto filled = static_cast<std::size_t>(kWidth * done / mAll);
    return mWhat + " [" + std::string(filled, '#') + std::string(kWidth - filled, '.') + "] " +
           std::to_string(100 * done / mAll) + "% " + std::to_string(done) + " of " +
           std::to_string(mAll) + time;
}

}
