// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_SERVICELOCK_H
#define ORV_EXT_CM_SERVICELOCK_H

#include <Poco/Mutex.h>
#include <Poco/ScopedLock.h>

namespace OrvExtCmRouterService {

/// Holds the mutex of a service for a block. Unlike the guard that Poco::Mutex brings along, it can
/// be let go of (`unlock`) where a failure to do so can still be told; its destructor, for the
/// other ways out, keeps such a failure to itself.
using ServiceLock = Poco::ScopedLockWithUnlock<Poco::Mutex>;

}

#endif
