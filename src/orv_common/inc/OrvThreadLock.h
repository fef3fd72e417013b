// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_ORV_COMMON_ORVTHREADLOCK_H
#define ORV_ORV_COMMON_ORVTHREADLOCK_H

#include <mutex>

namespace Orv {

/// A mutex that is ready before any constructor has run, for what must be built lazily and once.
/// Not recursive. Threads: any.
class OrvThreadLock {
public:
    constexpr OrvThreadLock() = default;
    OrvThreadLock(const OrvThreadLock&) = delete;
    OrvThreadLock& operator=(const OrvThreadLock&) = delete;

    // The names that std::lock_guard asks for. `lock` raises std::system_error if it fails.
    void lock() { mMutex.lock(); }
    void unlock() { mMutex.unlock(); }

private:
    std::mutex mMutex;
};

}

#endif
