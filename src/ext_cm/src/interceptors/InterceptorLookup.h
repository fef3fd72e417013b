// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_INTERCEPTORLOOKUP_H
#define ORV_EXT_CM_INTERCEPTORLOOKUP_H

#include "DnUtil.h"
#include "ExtCmInterceptorRepository.h"
#include "messages/Tracing.h"

#include <atomic>
#include <cstddef>
#include <string>

namespace OrvExtCmRouterService {

/// How many interceptors are registered in the process. Kept by the repositories, beside their
/// tables and under their locks; read without a lock.
inline std::atomic<std::size_t> registeredInterceptors{0};

/// The interceptor in \p repository that serves the MO \p internalDn, or null. Not owned. Most
/// hosts have none at all, so the path of the DN is made only if there is one, or if the lookup is
/// traced.
///
/// Threads: any. A registration that happened before this call is seen.
inline MoInterceptorBase* interceptorOf(ExtCmInterceptorRepository& repository,
                                        const std::string& internalDn) {
    if (registeredInterceptors.load(std::memory_order_acquire) == 0 && !isTracing()) {
        return nullptr;
    }
    return repository.getInterceptor(Orv::DnUtil::getMocPath(internalDn));
}

}

#endif
