// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ExtCmInterceptorRepository.h"

#include "MoInterceptorBase.h"
#include "interceptors/InterceptorLookup.h"
#include "life/ComponentName.h"
#include "life/UnderLock.h"
#include "messages/Tracing.h"

namespace OrvExtCmRouterService {

ExtCmInterceptorRepository::ExtCmInterceptorRepository()
    : mIdentity(offered(ExtCmInterceptorRepositoryI_1_Id)) {}

ExtCmInterceptorRepository::~ExtCmInterceptorRepository() {
    registeredInterceptors -= mInterceptors.size();
}

// The first registration stays: an interceptor that serves a path must not lose it to another one
// without notice.
OrvReturnT ExtCmInterceptorRepository::registerClass(MoInterceptorBase& interceptor,
                                                     std::string const& mocPath) {
    ORV_TRACE_ENTRY(" >> interceptor: %p, mocPath: %s ", static_cast<const void*>(&interceptor),
                    mocPath.c_str());
    const TracePoint operation = ORV_TRACE_POINT;
    return underLock(mMutex, [&]() -> OrvReturnT {
        if (!mInterceptors.emplace(mocPath, &interceptor).second) {
            ORV_TRACE_AT(operation, "Interceptor with mocPath %s is already registered",
                         mocPath.c_str());
            return OrvAlreadyExist;
        }
        ++registeredInterceptors;
        return OrvOk;
    });
}

void ExtCmInterceptorRepository::deregisterClass(std::string const& mocPath) {
    underLock(mMutex, [&] { registeredInterceptors -= mInterceptors.erase(mocPath); });
}

// Only the lookup is locked. The interceptor runs without the lock, so that it may register and
// deregister, and so that a slow one holds up no other operation.
MoInterceptorBase* ExtCmInterceptorRepository::getInterceptor(std::string const& mocPath) {
    ORV_TRACE_ENTRY(" >> mocPath: %s ", mocPath.c_str());
    const TracePoint operation = ORV_TRACE_POINT;
    return underLock(mMutex, [&]() -> MoInterceptorBase* {
        const auto found = mInterceptors.find(mocPath);
        if (found == mInterceptors.end()) {
            return nullptr;
        }
        ORV_TRACE_AT(operation, "Found interceptor: %p", static_cast<const void*>(found->second));
        return found->second;
    });
}

VekMgmtSpiInterface_1* ExtCmInterceptorRepository::getInterface() {
    return &mIdentity;
}

}
