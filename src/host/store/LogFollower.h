// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_LOGFOLLOWER_H
#define ORV_HOST_STORE_LOGFOLLOWER_H

#include "MoStore.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace OrvHost {

/// A thread that keeps a store in step with its log: it applies what other stores have appended,
/// and loads the objects anew when the log has become another one. While it does not succeed, the
/// pauses grow, since each try costs the server something.
class LogFollower {
public:
    /// Called on that thread, with a line for people: the log cannot be reached, or can be again;
    /// the objects must be loaded anew, or have been.
    using Report = std::function<void(const std::string& text)>;

    /// Looks at the log of \p store, to which one is attached and which must outlive the object,
    /// once in each \p pause.
    LogFollower(MoStore& store, std::chrono::milliseconds pause, Report report);
    /// Ends the thread, when its call to the log has ended.
    ~LogFollower();
    LogFollower(const LogFollower&) = delete;
    LogFollower& operator=(const LogFollower&) = delete;

private:
    void run();
    // Both: true if it succeeded.
    bool follow();
    bool loadAnew(const std::string& fault);

    MoStore& mStore;
    const std::chrono::milliseconds mPause;
    const Report mReport;

    // Used by the thread only.
    bool mIsAway = false;
    std::string mFault;   ///< the last one that was reported; empty: none since all went well
    std::string mFailure; ///< why the objects cannot be loaded, as it was reported

    std::mutex mMutex; ///< guards mIsOver
    std::condition_variable mChanged;
    bool mIsOver = false;
    std::thread mThread; // last: it uses all of the above
};

}

#endif
