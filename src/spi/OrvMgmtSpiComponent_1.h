// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_SPI_ORVMGMTSPICOMPONENT_1_H
#define ORV_SPI_ORVMGMTSPICOMPONENT_1_H

#include "OrvMgmtSpiInterface_1.h"
#include "OrvReturn.h"

#include <cstddef>

/// Why the host starts or stops a component. The values are the host's; a component may ignore
/// them.
enum OrvStateChangeReason : int {
    OrvStateChangeReasonHostStart = 0,    ///< the host itself comes up
    OrvStateChangeReasonHostShutdown = 1, ///< the host itself goes down
    OrvStateChangeReasonRequested = 2     ///< an operator asked for this one component
};

/// What a component tells the host about itself. Allocated and owned by the component, which keeps
/// it, and the arrays behind it, from registration until the shared object is closed. A component
/// that is initialised a second time may move its arrays: a host reads them through the record.
struct OrvMgmtSpiComponent_1 {
    const char* componentName;    ///< unique in the host
    const char* interfaceName;    ///< "OrvMgmtSpiComponent"
    const char* interfaceVersion; ///< "1"

    /// Offered interfaces, ended by a null pointer. Each entry points at a table.
    VekMgmtSpiInterface_1** interfaceArray;

    /// Required interfaces, ended by a null pointer. Fields of an entry may be null.
    VekMgmtSpiInterface_1** dependencyArray;

    /// Called by the host on one thread, after registration, while no offered table is in use.
    /// A non-zero code leaves the component to the host as not started; start may be tried again.
    OrvReturnT (*start)(OrvStateChangeReason reason);

    /// Called by the host on one thread, after the last call into an offered table has returned.
    OrvReturnT (*stop)(OrvStateChangeReason reason);

    /// Never null; holds at least the null pointer that ends it.
    VekMgmtSpiInterface_1** emptyInterfaceArray;

    bool componentFlag; ///< reserved for the host
};

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
