// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_SPI_ORVMGMTSPICOMPONENT_1_H
#define ORV_SPI_ORVMGMTSPICOMPONENT_1_H

#include "OrvMgmtSpiInterface_1.h"
#include "OrvReturn.h"

#include <cstddef>

/// \file
/// What a component is to its host. Conventions: OrvConventions.h.

/// Why the host starts or stops a component. The values are the host's; a component may ignore
/// them.
enum OrvStateChangeReason : int {
    OrvStateChangeReasonHostStart = 0,    ///< the host itself comes up
    OrvStateChangeReasonHostShutdown = 1, ///< the host itself goes down
    OrvStateChangeReasonRequested = 2     ///< an operator asked for this one component
};

/// What a component tells the host about itself. Owned by the component, with all that hangs from
/// it, from registration until the shared object is closed. The arrays may move when orvLCMinit is
/// called again: a host reads them through the record each time. The host writes to nothing here.
///
/// The arrays point at identities. Each entry of interfaceArray is the head of something that the
/// component offers, and that may be called while it is started. ext_cm offers the four tables of
/// this directory whose identities end with ExtCmId, and a C++ object for interceptors
/// (OrvHostGuide.h, 7).
struct OrvMgmtSpiComponent_1 {
    const char* componentName;    ///< unique in the host
    const char* interfaceName;    ///< as in OrvMgmtSpiComponent_1_Id
    const char* interfaceVersion; ///< as in OrvMgmtSpiComponent_1_Id

    /// Offered interfaces, ended by a null pointer.
    VekMgmtSpiInterface_1** interfaceArray;

    /// Required interfaces, ended by a null pointer: for a host that starts components in an order,
    /// what it starts first. Fields of an entry may be null. ext_cm looks nothing up from this
    /// list. Of its five entries it uses one, the router of version "1"; the others need not exist.
    /// What it really looks up stands in OrvHostGuide.h, 1.
    VekMgmtSpiInterface_1** dependencyArray;

    /// Starts the component: it looks up the tables that it needs.
    /// When:  registered, on one thread, and no offered slot is called until it has returned. The
    ///        portal, and the function that Orv::Portal was given, are called from inside. A start
    ///        while started is legal. What it looks up again then, and after a stop, stands in
    ///        OrvHostGuide.h, 5: not everything.
    /// Codes: OrvOk; any other means not started. The component answers OrvFailure if a router is
    ///        missing that it looks up at the portal: OrvOamSpiManagedObject "1" or "3", or
    ///        VekOamSpiManagedObject "3_1". It may then be started again, or stopped, which lets go
    ///        of what was taken. Without any other table it starts all the same; OrvHostGuide.h, 1,
    ///        says what does not work then.
    OrvReturnT (*start)(OrvStateChangeReason reason);

    /// Stops the component: it lets go of all tables and of what it keeps for transactions.
    /// Orv::Portal keeps what it has found (OrvHostGuide.h, 5).
    /// When:  on one thread, when the last call of an offered slot has returned and all
    ///        transactions have ended. A stop while stopped is legal. A transaction that is still
    ///        open loses its iterators, its values of version 1 and its references that wait for
    ///        validation.
    /// Codes: OrvOk. OrvFailure only if a lock of the component fails: it is then stopped in part.
    OrvReturnT (*stop)(OrvStateChangeReason reason);

    /// A third list, ended by a null pointer. Never null. The component never puts an entry into
    /// it, and a host need not read it.
    VekMgmtSpiInterface_1** emptyInterfaceArray;

    bool componentFlag; ///< reserved for the host; false
};

/// Identity of the record; the component adds its own name.
constexpr VekMgmtSpiInterface_1 OrvMgmtSpiComponent_1_Id = {nullptr, "OrvMgmtSpiComponent", "1"};

static_assert(offsetof(OrvMgmtSpiComponent_1, componentName) == 0, "word 0");
static_assert(offsetof(OrvMgmtSpiComponent_1, interfaceName) == 1 * sizeof(void*), "word 1");
static_assert(offsetof(OrvMgmtSpiComponent_1, interfaceVersion) == 2 * sizeof(void*), "word 2");
static_assert(offsetof(OrvMgmtSpiComponent_1, interfaceArray) == 3 * sizeof(void*), "word 3");
static_assert(offsetof(OrvMgmtSpiComponent_1, dependencyArray) == 4 * sizeof(void*), "word 4");
static_assert(offsetof(OrvMgmtSpiComponent_1, start) == 5 * sizeof(void*), "word 5");
static_assert(offsetof(OrvMgmtSpiComponent_1, stop) == 6 * sizeof(void*), "word 6");
static_assert(offsetof(OrvMgmtSpiComponent_1, emptyInterfaceArray) == 7 * sizeof(void*), "word 7");
static_assert(offsetof(OrvMgmtSpiComponent_1, componentFlag) == 8 * sizeof(void*), "word 8");
static_assert(sizeof(OrvMgmtSpiComponent_1) == 9 * sizeof(void*), "nine words");

#endif
