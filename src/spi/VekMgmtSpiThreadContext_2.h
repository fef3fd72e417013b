// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_SPI_VEKMGMTSPITHREADCONTEXT_2_H
#define ORV_SPI_VEKMGMTSPITHREADCONTEXT_2_H

#include "OrvMgmtSpiInterface_1.h"
#include "OrvReturn.h"

#include <cstddef>

/// What the host keeps for the client of the calling thread.
struct VekMgmtSpiThreadContext_2 {
    VekMgmtSpiInterface_1 identity;

    /// Slot 1. Adds a message for the client of the calling thread. \p kind is 1; \p text is
    /// borrowed. A result that is not zero means that the message was not taken. Called with locks
    /// of the calling component held: it must not call back into that component.
    OrvReturnT (*addMessage)(int kind, const char* text);
};

static_assert(offsetof(VekMgmtSpiThreadContext_2, addMessage) == 3 * sizeof(void*), "slot 1");

#endif
