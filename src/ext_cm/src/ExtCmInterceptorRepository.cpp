// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ExtCmInterceptorRepository.h"

#include "ComponentName.h"
#include "MoInterceptorBase.h"
#include "ServiceLock.h"
#include "Tracing.h"

namespace OrvExtCmRouterService {

ExtCmInterceptorRepository::ExtCmInterceptorRepository()
    : mIdentity(offered(ExtCmInterceptorRepositoryI_1_Id)) {}

ExtCmInterceptorRepository::~ExtCmInterceptorRepository() = default;

OrvReturnT ExtCmInterceptorRepository::registerClass(MoInterceptorBase& interceptor,
                                                     std::string const& mocPath) {
    ORV_TRACE_ENTRY(" >> interceptor: %p, mocPath: %s ", static_cast<const void*>(&interceptor),
                    mocPath.c_str());
    ServiceLock lock(mMutex);
    const bool entered = mInterceptors.emplace(mocPath, &interceptor).second;
    if (!entered) {
        ORV_TRACE("Interceptor with mocPath %s is already registered", mocPath.c_str());
    }
    lock.unlock();
    return entered ? OrvOk : OrvAlreadyExist;
}

void ExtCmInterceptorRepository::deregisterClass(std::string const& mocPath) {
    ServiceLock lock(mMutex);
    mInterceptors.erase(mocPath);
    lock.unlock();
}

MoInterceptorBase* ExtCmInterceptorRepository::getInterceptor(std::string const& mocPath) {
    ORV_TRACE_ENTRY(" >> mocPath: %s ", mocPath.c_str());
    MoInterceptorBase* interceptor = nullptr;
    ServiceLock lock(mMutex);
    const auto found = mInterceptors.find(mocPath);
    if (found != mInterceptors.end()) {
        interceptor = found->second;
        ORV_TRACE("Found interceptor: %p", static_cast<const void*>(interceptor));
    }
    lock.unlock();
    return interceptor;
}

VekMgmtSpiInterface_1* ExtCmInterceptorRepository::getInterface() {
    return &mIdentity;
}

}
