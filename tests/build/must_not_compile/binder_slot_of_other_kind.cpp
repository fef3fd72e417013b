// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// A member of a slot's name with other arguments does not serve the slot.
// expect: validate

#include "OrvInterfaceBinders.h"

struct Served {
    OrvReturnT join(unsigned long) { return OrvOk; }
    OrvReturnT prepare(unsigned long) { return OrvOk; }
    OrvReturnT commit(unsigned long) { return OrvOk; }
    OrvReturnT abort(unsigned long) { return OrvOk; }
    OrvReturnT finish(unsigned long) { return OrvOk; }
#ifdef MISTAKE
    OrvReturnT validate(unsigned long) {
        return OrvOk;
    }
#else
    OrvReturnT validate(unsigned long, bool*) {
        return OrvOk;
    }
#endif
};

OrvOamSpiTransactionalResource_2* bind(const OrvMgmtSpiInterface_1& identity, Served& served) {
    static Orv::TransactionalResource2Binder<Served> binder(identity, served);
    return binder.getInterface();
}
