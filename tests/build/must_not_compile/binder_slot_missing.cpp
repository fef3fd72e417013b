// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// A class that is bound to a table must have a member for each slot.
// expect: setMoAttributes

#include "OrvInterfaceBinders.h"

struct Served {
#ifndef MISTAKE
    OrvReturnT setMoAttributes(unsigned long, const char*, VekMoNamedAttributeValueContainer_3**) {
        return OrvOk;
    }
#endif
};

VekOamSpiManagedObject_3_1* bind(const VekMgmtSpiInterface_1& identity, Served& served) {
    static Orv::ManagedObject3_1Binder<Served> binder(identity, served);
    return binder.getInterface();
}
