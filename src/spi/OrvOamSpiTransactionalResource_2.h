// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_SPI_ORVOAMSPITRANSACTIONALRESOURCE_2_H
#define ORV_SPI_ORVOAMSPITRANSACTIONALRESOURCE_2_H

#include "OrvMgmtSpiInterface_1.h"
#include "OrvReturn.h"

#include <cstddef>

/// A participant of transactions, offered by a component. The host calls it on the thread that
/// drives the transaction.
struct OrvOamSpiTransactionalResource_2 {
    OrvMgmtSpiInterface_1 identity;

    OrvReturnT (*join)(unsigned long txHandle);    ///< slot 1: the participant has been enrolled
    OrvReturnT (*prepare)(unsigned long txHandle); ///< slot 2: last chance to refuse
    OrvReturnT (*commit)(unsigned long txHandle);  ///< slot 3: make it so
    OrvReturnT (*abort)(unsigned long txHandle);   ///< slot 4: forget it
    OrvReturnT (*finish)(unsigned long txHandle);  ///< slot 5: drop all that was kept for it
    /// Slot 6. Judges the transaction. With OrvOk the verdict is in `*result`; a code that is not
    /// zero means that no verdict was reached, and `*result` may be untouched.
    OrvReturnT (*validate)(unsigned long txHandle, bool* result);
};

static_assert(offsetof(OrvOamSpiTransactionalResource_2, join) == 3 * sizeof(void*), "slot 1");
static_assert(offsetof(OrvOamSpiTransactionalResource_2, prepare) == 4 * sizeof(void*), "slot 2");
static_assert(offsetof(OrvOamSpiTransactionalResource_2, commit) == 5 * sizeof(void*), "slot 3");
static_assert(offsetof(OrvOamSpiTransactionalResource_2, abort) == 6 * sizeof(void*), "slot 4");
static_assert(offsetof(OrvOamSpiTransactionalResource_2, finish) == 7 * sizeof(void*), "slot 5");
static_assert(offsetof(OrvOamSpiTransactionalResource_2, validate) == 8 * sizeof(void*), "slot 6");
static_assert(sizeof(OrvOamSpiTransactionalResource_2) == 9 * sizeof(void*), "six slots");

#endif
