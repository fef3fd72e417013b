// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_UNDERLOCK_H
#define ORV_EXT_CM_UNDERLOCK_H

#include <Poco/ScopedLock.h>

#include <type_traits>

namespace OrvExtCmRouterService {

/// Does \p work while \p mutex is held, and gives back what it returns.
///
/// A mutex that cannot be locked or unlocked raises Poco::SystemException. Where it cannot be
/// unlocked, what \p work has done stays done, and only what it returned is lost. When \p work
/// throws, its exception passes, and a failure to unlock after it is dropped. Traces in \p work
/// need the place of the function around it, see ORV_TRACE_AT.
template <class Mutex, class Work>
auto underLock(Mutex& mutex, const Work& work) {
    Poco::ScopedLockWithUnlock<Mutex> lock(mutex);
    if constexpr (std::is_void_v<decltype(work())>) {
        work();
        lock.unlock();
    } else {
        auto result = work();
        lock.unlock();
        return result;
    }
}

}

#endif
