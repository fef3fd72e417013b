// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_SYSTEM_LOGVALVE_H
#define ORV_TESTS_SYSTEM_LOGVALVE_H

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace SystemTest {

/// A pipe that a program logs into. A program that writes into a full pipe waits, so a test can
/// hold it in the middle of its work: it is held as long as nobody reads what it logs.
///
/// Threads: a test uses it on one thread; a thread of its own reads.
class LogValve {
public:
    /// Makes the pipe \p path. It is read from now on.
    explicit LogValve(const std::string& path);
    /// Reads what there still is. The program must have ended.
    ~LogValve();
    LogValve(const LogValve&) = delete;
    LogValve& operator=(const LogValve&) = delete;

    /// From now on, reading stops as soon as \p text has been logged. What fits into a pipe can be
    /// logged after it.
    void holdAt(const std::string& text);
    /// Waits until reading has stopped; false if it does not stop in time.
    bool waitUntilHeld();
    /// Reads on.
    void release();

private:
    void run();
    void take(const std::string& text);

    const int mReader;
    std::mutex mMutex; ///< guards everything below except the thread
    std::condition_variable mChanged;
    std::string mWanted; ///< empty: nothing is to be held
    std::string mSeen;   ///< the end of what was read
    bool mIsHeld = false;
    bool mIsEnding = false;
    std::thread mThread;
};

}

#endif
