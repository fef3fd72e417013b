// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_ORV_COMMON_MOACCESSOR_H
#define ORV_ORV_COMMON_MOACCESSOR_H

#include "OrvReturn.h"
#include "Transaction.h"

#include <list>
#include <string>

namespace Orv {

/// How an accessor locks what it reads. The values are the host's; 1 is the only one in use.
enum OrvLockPolicyT : int { OrvLockPolicyRead = 1 };

/// Reads the MO tree through the router of version "3" (OrvOamSpiManagedObject_3_RouterId), which
/// it finds through the Portal. No interceptor is asked. Conventions: OrvConventions.h.
///
/// Threads: one at a time; the router's rules for the bound transaction hold.
class MoAccessor : public Transaction {
public:
    /// `limit` is the number of seconds a host may spend waiting for a lock. The router that this
    /// accessor reads through locks by rules of its own, so neither argument has an effect here.
    MoAccessor(OrvLockPolicyT policy, int limit);

    /// Appends to `children` the full internal DNs of the children of `parentDn` (internal; empty:
    /// the top level) of the class `className`, in the router's order. The router's iterator is
    /// finalized on every way out. Returns OrvOk; the code of the router's first step that fails,
    /// after which `children` holds what was found until then; or OrvFailure if there is no router
    /// or its list does not end. A name that the router gives again is left out. An exception of
    /// the router passes.
    OrvReturnT getChildren(const std::string& parentDn, const std::string& className,
                           std::list<std::string>& children);
};

}

#endif
