// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_ROUTERCLIENT_H
#define ORV_EXT_CM_ROUTERCLIENT_H

#include "OpeningSteps.h"
#include "OrvMgmtSpiInterfacePortal.h"
#include "OrvMgmtSpiInterface_1.h"
#include "OrvReturn.h"
#include "ServiceLock.h"

#include <Poco/Mutex.h>

namespace OrvExtCmRouterService {

/// A managed-object service's hold on the host's router of its version, and with it the service's
/// life: it is started as long as it holds a router that it has looked up. Base of the services.
///
/// Threads: `started` and `router` are read without a lock; mMutex guards the two writes in
/// letGoOfRouter. Not to be called while operations run.
template <class Table>
class RouterClient {
protected:
    RouterClient() = default;
    RouterClient(const RouterClient&) = delete;
    RouterClient& operator=(const RouterClient&) = delete;
    ~RouterClient() = default;

    /// Looks the router up, unless started. False, and not started, if there is none.
    bool takeRouter(const VekMgmtSpiInterface_1& identity) {
        if (!started) {
            started = lookUpTable(portal, identity, router) == OrvOk;
        }
        return started;
    }

    void letGoOfRouter() {
        ServiceLock lock(mMutex);
        started = false;
        router = nullptr;
        lock.unlock();
    }

    Poco::Mutex mMutex;
    Table* router = nullptr;                       ///< the host's
    OrvMgmtSpiInterfacePortal_1* portal = nullptr; ///< the host's, given in init
    bool started = false;
};

}

#endif
