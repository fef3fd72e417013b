// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_CORE_ALARM_H
#define ORV_HOST_NETCONF_CORE_ALARM_H

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace OrvHost {

/// Calls a function when a time has come, on a thread of its own. A call may come a moment after
/// the alarm was set to another time or switched off, so the function must look again whether it is
/// wanted.
///
/// Any thread.
class Alarm {
public:
    using Clock = std::chrono::steady_clock;

    /// What \p ring throws is logged. It may set the alarm, and must not destroy it.
    explicit Alarm(std::function<void()> ring)
        : mRing(std::move(ring)), mThread([this] { run(); }) {}
    /// Waits for a call that is running. None comes any more.
    ~Alarm() { stop(); }
    Alarm(const Alarm&) = delete;
    Alarm& operator=(const Alarm&) = delete;

    /// Rings once, at \p when, and not at the time that was set before.
    void set(Clock::time_point when);
    void off();

    /// As the destructor does. The alarm cannot be set any more.
    void stop();

private:
    void run();

    const std::function<void()> mRing;
    std::mutex mMutex; ///< guards all below
    std::condition_variable mChanged;
    std::optional<Clock::time_point> mWhen;
    bool mIsEnding = false;
    std::thread mThread;
};

}

#endif
