// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_EXT_CM_ISFREE_H
#define ORV_TESTS_EXT_CM_ISFREE_H

#include <Poco/Mutex.h>

#include <thread>

/// Whether nobody holds \p mutex. Asked on a thread of its own: the mutex lets its owner in again.
inline bool isFree(Poco::Mutex& mutex) {
    bool taken = false;
    std::thread([&] {
        taken = mutex.tryLock();
        if (taken) {
            mutex.unlock();
        }
    }).join();
    return taken;
}

#endif
