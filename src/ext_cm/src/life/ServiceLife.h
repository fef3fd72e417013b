// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_SERVICELIFE_H
#define ORV_EXT_CM_SERVICELIFE_H

#include "OrvMgmtSpiInterfacePortal.h"
#include "OrvMgmtSpiInterface_1.h"
#include "OrvReturn.h"
#include "life/UnderLock.h"
#include "messages/Tracing.h"

#include <Poco/Mutex.h>

/// \file
/// The life of a managed-object service: it is started as long as it holds the host's router of its
/// version. Not to be called while operations run: they read `router` and `started` without a lock.
/// Messages are those of the operation at the point that is handed over.

namespace OrvExtCmRouterService {

/// Asks the host's portal, which may be null, for a table. \p table gets what the host writes,
/// whatever its code.
template <class Table>
OrvReturnT lookUpTable(OrvMgmtSpiInterfacePortal_1* portal, const VekMgmtSpiInterface_1& identity,
                       Table*& table) {
    if (portal == nullptr) {
        return OrvFailure; // GCOVR_EXCL_LINE: a host gets `start` only through its portal
    }
    void* found = table;
    const OrvReturnT code = portal->getInterface(identity, &found);
    table = static_cast<Table*>(found);
    return code;
}

/// `start` of a service: looks \p router up at \p portal, unless \p started. OrvFailure, and not
/// started, if there is none, also if the portal reports success and gives no table.
template <class Table>
OrvReturnT startService(const TracePoint& operation, OrvMgmtSpiInterfacePortal_1* portal,
                        const VekMgmtSpiInterface_1& identity, Table*& router, bool& started) {
    ORV_TRACE_OF_KIND(operation, TraceEntry, " >> ");
    if (!started) {
        router = nullptr; // what an earlier lookup has left is no answer to this one
        started = lookUpTable(portal, identity, router) == OrvOk && router != nullptr;
    }
    if (!started) {
        router = nullptr; // what a portal has written with a failure is no router
        ORV_LOG_AT(operation, 3, "Could not lookup cmrouterservice");
    }
    return traceResult(operation, started ? OrvOk : OrvFailure);
}

/// `stop` of a service, started or not. \p mutex guards the two writes. \throws
/// Poco::SystemException if it cannot be locked or unlocked.
template <class Table>
OrvReturnT stopService(const TracePoint& operation, Poco::Mutex& mutex, Table*& router,
                       bool& started) {
    ORV_TRACE_OF_KIND(operation, TraceEntry, " >> ");
    underLock(mutex, [&] {
        started = false;
        router = nullptr;
    });
    return traceResult(operation, OrvOk);
}

}

#endif
