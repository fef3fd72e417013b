// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The portal has a cached pointer for four tables; asking for any other is a mistake.
// expect: the portal caches no table of this type

#include "OrvOamSpiTransaction_1.h"
#include "Portal.h"
#include "VekMgmtSpiThreadContext_2.h"

#ifdef MISTAKE
using Wanted = OrvOamSpiTransaction_1;
#else
using Wanted = VekMgmtSpiThreadContext_2;
#endif

Wanted* lookUp(const VekMgmtSpiInterface_1& id) {
    return Orv::Portal::instance()->getInterface<Wanted>(id);
}
