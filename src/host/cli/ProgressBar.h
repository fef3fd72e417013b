// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_PROGRESSBAR_H
#define ORV_HOST_CLI_PROGRESSBAR_H

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <ostream>
#include <string>
#include <thread>

namespace OrvHost {

/// Shows how far something has come, in one line that is drawn again and again and removed at the
/// end. Nothing is drawn during the first moments, so that quick work leaves no flicker.
///
/// A thread of its own draws, so that the line also moves while the work tells nothing. Threads:
/// operations on one; \p out is not to be used by others while the bar lives: see print.
class ProgressBar {
public:
    /// With \p isShown false nothing is ever drawn. \p out is borrowed.
    ProgressBar(std::ostream& out, bool isShown,
                std::chrono::milliseconds delay = std::chrono::seconds(1));
    /// Removes the line.
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    /// What is done now, and how much of it; \p all 0 means that nobody knows how much there is.
    void update(const std::string& what, std::uint64_t done, std::uint64_t all);

    /// Puts a line of text in the bar's place; the bar goes on below.
    void print(const std::string& text);

private:
    void run(std::chrono::milliseconds delay);
    void erase();
    std::string line();

    std::ostream& mOut;
    const std::chrono::steady_clock::time_point mBegin;
    std::mutex mMutex; ///< guards all below but the thread
    std::condition_variable mEnding;
    bool mIsEnding = false;
    bool mIsDrawn = false;
    std::string mWhat;
    std::uint64_t mDone = 0;
    std::uint64_t mAll = 0;
    std::thread mThread;
};

}

#endif
