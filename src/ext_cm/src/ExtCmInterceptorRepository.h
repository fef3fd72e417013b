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

/// Which interceptor serves which MOC path. There is one repository, in the component; an
/// interceptor finds it through MoInterceptorBase::initialize and enters itself. A host offers its
/// identity to other components, like all that stands in interfaceArray, and does no more with it.
/// Conventions: OrvConventions.h.
///
/// The object begins with its interface identity, so that its address is what the portal hands out
/// as the interface. There is no table after it: the operations are these member functions, which
/// the shared object exports. They are C++: use the compiler family and the C++ library that it was
/// built with.
///
/// A MOC path is the text that Orv::DnUtil::getMocPath gives for an internal DN, for example
/// "Parent,Unit". Paths are compared as a whole, byte for byte; a path says nothing about the paths
/// above or below it. The empty text is a path like any other.
///
/// Interceptors are not owned. An interceptor stays alive after deregisterClass until the
/// operations that may have found it before have returned: nothing waits for them.
///
/// Threads: every operation, any thread, while the component's shared object is open. A change
/// takes effect with the next operation of a client. The lock is never held while an interceptor
/// runs. A lock that fails raises Poco::SystemException, a lack of memory std::bad_alloc.
class __attribute__((visibility("default"))) ExtCmInterceptorRepository {
public:
    ExtCmInterceptorRepository();
    ExtCmInterceptorRepository(const ExtCmInterceptorRepository&) = delete;
    ExtCmInterceptorRepository& operator=(const ExtCmInterceptorRepository&) = delete;
    /// Leaves the interceptors alone.
    ~ExtCmInterceptorRepository();

    /// Enters \p interceptor under \p mocPath; the text is copied. One interceptor may be entered
    /// under several paths. OrvOk; or OrvAlreadyExist, with nothing changed, if the path is taken,
    /// also if it is taken by \p interceptor itself.
    OrvReturnT registerClass(MoInterceptorBase& interceptor, std::string const& mocPath);

    /// Takes out the entry of \p mocPath, if there is one. It does not ask who entered it: take out
    /// only what you have entered.
    void deregisterClass(std::string const& mocPath);

    /// The interceptor of exactly \p mocPath, or null. Not owned; the caller uses it without a
    /// lock.
    MoInterceptorBase* getInterceptor(std::string const& mocPath);

    /// This object as the interface that the portal knows. Owned by this object.
    VekMgmtSpiInterface_1* getInterface();

private:
    VekMgmtSpiInterface_1 mIdentity; // must stay first, see above
    Poco::Mutex mMutex;              // guards mInterceptors
    std::map<std::string, MoInterceptorBase*> mInterceptors;
};

}

#endif
