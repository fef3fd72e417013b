// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_SPI_ORVOAMSPITRANSACTION_1_H
#define ORV_SPI_ORVOAMSPITRANSACTION_1_H

#include "OrvMgmtSpiInterface_1.h"
#include "OrvOamSpiTransactionalResource_2.h"
#include "OrvReturn.h"
#include "OrvSpiNames.h"

#include <cstddef>

/// \file
/// How a component becomes a participant of a transaction. Conventions: OrvConventions.h.

/// The host's transaction table, as far as participants use it. A host's table may have more slots
/// after these.
///
/// If the portal has no such table, the component starts all the same. An operation then answers
/// OrvFailure when it comes to the point where it joins; those that do not join are served. When a
/// component joins, and how its phases stand to those of the router: OrvHostGuide.h, 6.
struct OrvOamSpiTransaction_1 {
    OrvMgmtSpiInterface_1 identity;

    /// Slot 1. Makes \p resource a participant: the host will call its phases. For one handle the
    /// component calls it once, until that is finished; then again if the handle comes again.
    /// In:    \p resource, owned by the component until its shared object is closed; kept for the
    ///        whole transaction.
    /// When:  started, in the middle of a client's operation, on its thread, with the registry lock
    ///        held. An implementation may call the resource's own `join`, and nothing else of the
    ///        component.
    /// Codes: not looked at: the operation goes on. An exception gives OrvFailure, and the handle
    ///        counts as joined all the same.
    /// Why:   a host that cannot enrol the participant must refuse the transaction by itself. If it
    ///        goes on, the component's rules are not checked and its memory of the transaction
    ///        stays until `stop`.
    OrvReturnT (*join)(unsigned long txHandle, OrvOamSpiTransactionalResource_2* resource);
};

/// Identity of the host's table.
constexpr VekMgmtSpiInterface_1 OrvOamSpiTransaction_1_Id = {OrvOamSpiTransactionService,
                                                             "OrvOamSpiTransaction", "1"};

static_assert(offsetof(OrvOamSpiTransaction_1, join) == 3 * sizeof(void*), "slot 1");

#endif
