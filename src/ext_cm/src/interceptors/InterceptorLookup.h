// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_INTERCEPTORLOOKUP_H
#define ORV_EXT_CM_INTERCEPTORLOOKUP_H

#include "ExtCmInterceptorRepository.h"
#include "messages/Tracing.h"

#include <atomic>
#include <cstddef>

namespace OrvExtCmRouterService {

/// How many interceptors are registered in the process, in whichever repository. Each repository
/// counts its own here while it holds its lock; read without a lock.
inline std::atomic<std::size_t> registeredInterceptors{0};

/// The interceptor in \p repository that serves an MO, or null. Not owned. \p mocPath makes the
/// path of the MO's class: only if an interceptor is registered at all, or if the lookup is traced.
///
/// Threads: any. A registration that has returned before this call is seen.
template <class MocPath>
MoInterceptorBase* interceptorOf(ExtCmInterceptorRepository& repository, const MocPath& mocPath) {
    if (registeredInterceptors.load(std::memory_order_acquire) == 0 && !isTracing()) {
        return nullptr;
    }
    return repository.getInterceptor(mocPath());
}

}

#endif
