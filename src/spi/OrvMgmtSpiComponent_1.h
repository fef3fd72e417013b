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
/// The arrays point at identities. Each entry of interfaceArray is the head of a table that the
/// component offers; the table may be called while the component is started.
struct OrvMgmtSpiComponent_1 {
    const char* componentName;    ///< unique in the host
    const char* interfaceName;    ///< as in OrvMgmtSpiComponent_1_Id
    const char* interfaceVersion; ///< as in OrvMgmtSpiComponent_1_Id

    /// Offered interfaces, ended by a null pointer.
    VekMgmtSpiInterface_1** interfaceArray;

    /// Required interfaces, ended by a null pointer: what the host starts first. Fields of an entry
    /// may be null. The component looks nothing up from this list, and looks up more than it names.
    VekMgmtSpiInterface_1** dependencyArray;

    /// Starts the component: it looks up the tables that it needs.
    /// When:  registered, on one thread, and no offered slot is called until it has returned. The
    ///        portal is called from inside. A start while started is legal: the routers of its own
    ///        tables are kept, all else is looked up again.
    /// Codes: OrvOk; any other means not started. The component answers OrvFailure if a router of
    ///        version "1", "3" or "3_1" is missing. It may then be started again, or stopped, which
    ///        lets go of what was taken. Without the transaction table, the model or the thread
    ///        context it starts all the same; their headers say what does not work then.
    OrvReturnT (*start)(OrvStateChangeReason reason);

    /// Stops the component: it lets go of all tables and of what it keeps for transactions.
    /// When:  on one thread, when the last call of an offered slot has returned and all
    ///        transactions have ended. A stop while stopped is legal. A transaction that is still
    ///        open loses its iterators, its values of version 1 and its references that wait for
    ///        validation.
    /// Codes: OrvOk. OrvFailure only if a lock of the component fails: it is then stopped in part.
    OrvReturnT (*stop)(OrvStateChangeReason reason);

    /// Never null; holds at least the null pointer that ends it.
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
