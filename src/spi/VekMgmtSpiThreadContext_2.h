// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_SPI_VEKMGMTSPITHREADCONTEXT_2_H
#define ORV_SPI_VEKMGMTSPITHREADCONTEXT_2_H

#include "OrvMgmtSpiInterface_1.h"
#include "OrvReturn.h"
#include "OrvSpiNames.h"

#include <cstddef>

/// \file
/// Messages for clients. Conventions: OrvConventions.h.

/// What the host keeps for the client of the calling thread. If the portal has no such table, the
/// component starts all the same, but finds no transaction valid, and the client gets no message.
struct VekMgmtSpiThreadContext_2 {
    VekMgmtSpiInterface_1 identity;

    /// Slot 1. Adds a message for the client that the calling thread works for. The messages of one
    /// validation come in the order in which the client should read them.
    /// In:    \p text, never null, for people; it can be empty. DNs in it are internal. All texts
    ///        of the component stand in OrvAssociations.h, 7; an interceptor has its own, see
    ///        Refusal.h. \p kind is always 1: why the transaction is not valid, or why an
    ///        interceptor refuses.
    /// When:  started, within the resource's `validate`, on its thread. For unidirectional
    ///        associations with the reference lock held. From an interceptor: within the attribute
    ///        operation that it refuses, on the client's thread.
    /// Codes: OrvOk; any other means that the message was not taken. That is logged; the verdict
    ///        stays.
    OrvReturnT (*addMessage)(int kind, const char* text);
};

/// Identity of the host's table.
constexpr VekMgmtSpiInterface_1 VekMgmtSpiThreadContext_2_Id = {VekMgmtSpiThreadContextService,
                                                                "VekMgmtSpiThreadContext", "2"};

static_assert(offsetof(VekMgmtSpiThreadContext_2, addMessage) == 3 * sizeof(void*), "slot 1");

#endif
