// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_OUTPUT_PROGRESSBAR_H
#define ORV_HOST_CLI_OUTPUT_PROGRESSBAR_H

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <ostream>
#include <string>
#include <thread>

namespace OrvHost {

/// Shows the progress of some work in one line that is redrawn again and again and removed at the
/// end. Nothing is drawn during the first moments, so that quick work causes no flicker.
///
/// A separate thread draws, so that the line also moves while the work reports no progress.
/// Threads: call the operations on one thread; nobody else may use \p out while the bar lives: see
/// print.
class ProgressBar {
public:
    /// With \p isShown false nothing is ever drawn. \p out is borrowed.
    ProgressBar(std::ostream& out, bool isShown,
                std::chrono::milliseconds delay = std::chrono::seconds(1));
    /// Removes the line.
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    /// Sets what is being done and how much of it is done; \p all 0 means that the total is not
    /// known.
    void update(const std::string& what, std::uint64_t done, std::uint64_t all);

    /// Prints a line of text in the bar's place; the bar continues below.
    void print(const std::string& text);

private:
    void run(std::chrono::milliseconds delay);
    void erase();
    std::string line();

    std::ostream& mOut;
    const std::chrono::steady_clock::time_point mBegin;
    std::mutex mMutex; ///< guards everything below except the thread
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
