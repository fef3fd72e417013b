// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The list of a binder has each slot of its table.
// expect: the list has each slot of the table

#include "OrvInterfaceBinders.h"

struct Lamp {
    OrvMgmtSpiInterface_1 identity;
    OrvReturnT (*turnOn)(unsigned long txHandle);
    OrvReturnT (*turnOff)(unsigned long txHandle);
};

#ifdef MISTAKE
#define LAMP_SLOTS(SLOT) SLOT(turnOn)
#else
#define LAMP_SLOTS(SLOT) SLOT(turnOn) SLOT(turnOff)
#endif

ORV_DEFINE_BINDER(LampBinder, Lamp, LAMP_SLOTS)

struct Served {
    OrvReturnT turnOn(unsigned long) { return OrvOk; }
    OrvReturnT turnOff(unsigned long) { return OrvOk; }
};

Lamp* bind(const OrvMgmtSpiInterface_1& identity, Served& served) {
    static LampBinder<Served> binder(identity, served);
    return binder.getInterface();
}
