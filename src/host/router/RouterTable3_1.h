// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_ROUTER_ROUTERTABLE3_1_H
#define ORV_HOST_ROUTER_ROUTERTABLE3_1_H

#include "OrvInterfaceBinders.h"
#include "RouterCore.h"

namespace OrvHost {

/// The router's table of version "3_1": sets several attributes of one object at once, all or none.
class RouterTable3_1 {
public:
    explicit RouterTable3_1(RouterCore& core);

    VekOamSpiManagedObject_3_1* getInterface() { return mBinder.getInterface(); }

    /// A null array counts as an empty one. No attribute may be given twice.
    OrvReturnT setMoAttributes(unsigned long txHandle, const char* dn,
                               VekMoNamedAttributeValueContainer_3** attributes);

private:
    RouterCore& mCore;
    Orv::ManagedObject3_1Binder<RouterTable3_1> mBinder;
};

}

#endif
