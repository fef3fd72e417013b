// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// A slot is served by the member of its own name, also where another one has the same arguments.
// expect: turnOff

#include "OrvInterfaceBinders.h"

struct Lamp {
    OrvMgmtSpiInterface_1 identity;
    OrvReturnT (*turnOn)(unsigned long txHandle);
    OrvReturnT (*turnOff)(unsigned long txHandle);
};

#define LAMP_SLOTS(SLOT) SLOT(turnOn) SLOT(turnOff)

ORV_DEFINE_BINDER(LampBinder, Lamp, LAMP_SLOTS)

struct Served {
    OrvReturnT turnOn(unsigned long) { return OrvOk; }
#ifdef MISTAKE
    OrvReturnT turnDown(unsigned long) {
        return OrvOk;
    }
#else
    OrvReturnT turnOff(unsigned long) {
        return OrvOk;
    }
#endif
};

Lamp* bind(const OrvMgmtSpiInterface_1& identity, Served& served) {
    static LampBinder<Served> binder(identity, served);
    return binder.getInterface();
}
