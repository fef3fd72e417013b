// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_SPI_ORVOAMSPITRANSACTION_1_H
#define ORV_SPI_ORVOAMSPITRANSACTION_1_H

#include "OrvMgmtSpiInterface_1.h"
#include "OrvOamSpiTransactionalResource_2.h"
#include "OrvReturn.h"

#include <cstddef>

/// The host's transaction table, as far as participants use it. A host's table may go on behind it.
struct OrvOamSpiTransaction_1 {
    OrvMgmtSpiInterface_1 identity;

    /// Slot 1. Makes \p resource a participant of the transaction. The table is borrowed from the
    /// component and stays valid until the component is stopped. Called with a lock of the calling
    /// component held: an implementation may call the resource's own join, and nothing else of it.
    OrvReturnT (*join)(unsigned long txHandle, OrvOamSpiTransactionalResource_2* resource);
};

static_assert(offsetof(OrvOamSpiTransaction_1, join) == 3 * sizeof(void*), "slot 1");

#endif
