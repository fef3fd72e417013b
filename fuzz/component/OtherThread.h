// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_FUZZ_COMPONENT_OTHERTHREAD_H
#define ORV_FUZZ_COMPONENT_OTHERTHREAD_H

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace Fuzz {

/// A thread that lives as long as the process and works while another waits for it. What it cannot
/// do because of a lock that the waiting thread holds ends the process.
class OtherThread {
public:
    static OtherThread& instance();

    /// Runs \p work to its end; \p after is what has happened before, for the message.
    void run(const std::function<void()>& work, const char* after);

private:
    OtherThread();
    ~OtherThread();
    void serve();

    std::mutex mMutex;
    std::condition_variable mChanged;
    const std::function<void()>* mWork = nullptr;
    bool mEnds = false;
    std::thread mThread; ///< last, so that all is there when it begins
};

}

#endif
