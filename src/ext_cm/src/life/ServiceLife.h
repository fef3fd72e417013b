// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_SERVICELIFE_H
#define ORV_EXT_CM_SERVICELIFE_H

#include "OrvMgmtSpiInterfacePortal.h"
#include "OrvMgmtSpiInterface_1.h"
#include "OrvReturn.h"
#include "life/UnderLock.h"

#include <Poco/Mutex.h>

/// \file
/// The life of a managed-object service: it is started as long as it holds the host's router of its
/// version. Not to be called while operations run: they read \p router and \p started without a
/// lock.

namespace OrvExtCmRouterService {

/// Asks the host's portal, which may be null, for a table. \p table gets what the host writes,
/// whatever its code.
template <class Table>
OrvReturnT lookUpTable(OrvMgmtSpiInterfacePortal_1* portal, const VekMgmtSpiInterface_1& identity,
                       Table*& table) {
    if (portal == nullptr) {
        return OrvFailure;
    }
    void* found = table;
    const OrvReturnT code = portal->getInterface(identity, &found);
    table = static_cast<Table*>(found);
    return code;
}

/// Looks \p router up at \p portal, unless \p started. False, and not started, if there is none,
/// also if the portal reports success and gives no table.
template <class Table>
bool takeRouter(OrvMgmtSpiInterfacePortal_1* portal, const VekMgmtSpiInterface_1& identity,
                Table*& router, bool& started) {
    if (!started) {
        router = nullptr; // what an earlier lookup has left is no answer to this one
        started = lookUpTable(portal, identity, router) == OrvOk && router != nullptr;
        if (!started) {
            router = nullptr;
        }
    }
    return started;
}

/// \p mutex guards the two writes. \throws Poco::SystemException if it cannot be locked or
/// unlocked.
template <class Table>
void letGoOfRouter(Poco::Mutex& mutex, Table*& router, bool& started) {
    underLock(mutex, [&] {
        started = false;
        router = nullptr;
    });
}

}

#endif
