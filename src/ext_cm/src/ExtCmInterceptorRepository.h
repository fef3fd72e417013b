// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_EXTCMINTERCEPTORREPOSITORY_H
#define ORV_EXT_CM_EXTCMINTERCEPTORREPOSITORY_H

#include "OrvMgmtSpiInterface_1.h"
#include "OrvReturn.h"
#include "OrvSpiNames.h"

#include <Poco/Mutex.h>

#include <map>
#include <string>

namespace OrvExtCmRouterService {

class MoInterceptorBase;

/// Identity of the component's repository. Its table is the object itself.
constexpr VekMgmtSpiInterface_1 ExtCmInterceptorRepositoryI_1_Id = {
    OrvOamSpiExtCmRouterService, "ExtCmInterceptorRepositoryI", "1"};

/// Which interceptor serves which class path. There is one, in the component; an interceptor finds
/// it through MoInterceptorBase::initialize and enters itself.
///
/// The object begins with its interface identity, so that its address is what the portal hands out
/// as the interface. There is no table behind it: the operations are these member functions.
///
/// A MOC path is the text that Orv::DnUtil::getMocPath gives for an internal DN, for example
/// "Parent,Unit". Paths are compared as a whole, byte for byte; a path says nothing about the paths
/// above or below it. The empty text is a path like any other.
///
/// Interceptors are not owned. An interceptor stays alive after deregisterClass until the
/// operations that may have found it before have returned: none of them is waited for.
///
/// Threads: every operation, any thread. The lock is never held while an interceptor runs. A lock
/// that fails raises Poco::SystemException.
class __attribute__((visibility("default"))) ExtCmInterceptorRepository {
public:
    ExtCmInterceptorRepository();
    ExtCmInterceptorRepository(const ExtCmInterceptorRepository&) = delete;
    ExtCmInterceptorRepository& operator=(const ExtCmInterceptorRepository&) = delete;
    ~ExtCmInterceptorRepository();

    /// Enters \p interceptor under \p mocPath. OrvAlreadyExist, with nothing changed, if the path
    /// has one, be it the same.
    OrvReturnT registerClass(MoInterceptorBase& interceptor, std::string const& mocPath);

    /// Takes out the entry of \p mocPath, if there is one.
    void deregisterClass(std::string const& mocPath);

    /// The interceptor of exactly \p mocPath, or null. Borrowed, and used without a lock.
    MoInterceptorBase* getInterceptor(std::string const& mocPath);

    /// This object as the interface that the portal knows.
    VekMgmtSpiInterface_1* getInterface();

private:
    VekMgmtSpiInterface_1 mIdentity; // must stay first, see above
    Poco::Mutex mMutex;              // guards mInterceptors
    std::map<std::string, MoInterceptorBase*> mInterceptors;
};

}

#endif
