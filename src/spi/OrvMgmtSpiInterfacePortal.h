// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_SPI_ORVMGMTSPIINTERFACEPORTAL_H
#define ORV_SPI_ORVMGMTSPIINTERFACEPORTAL_H

#include "OrvMgmtSpiComponent_1.h"
#include "OrvMgmtSpiInterface_1.h"
#include "OrvReturn.h"

#include <cstddef>

/// A slot that keeps its place in a table and is never called by a client of these headers.
typedef void (*OrvReservedSlot)();

/// The way to the host's portal tables, handed to orvLCMinit. Owned by the host, valid until the
/// component is unloaded. It has no identity fields.
struct OrvMgmtSpiInterfacePortalAccessor {
    /// Gives the portal table of \p version ("1" or "3"), or null if the host has none. The table
    /// is owned by the host and lives as long as the accessor.
    void* (*getPortal)(const char* version);
};

/// Portal of version "1".
struct OrvMgmtSpiInterfacePortal_1 {
    OrvMgmtSpiInterface_1 identity;

    /// Slot 1. Looks up the table that a component offers under \p id. On OrvOk \p result holds the
    /// table, owned by the component that offers it and valid until that component is stopped.
    OrvReturnT (*getInterface)(VekMgmtSpiInterface_1 id, void** result);

    OrvReservedSlot reserved2;

    /// Slot 3. Announces a component. The record is the component's and must outlive its
    /// registration. The host does not call start before orvLCMinit has returned.
    OrvReturnT (*registerComponent)(OrvMgmtSpiComponent_1* component);

    /// Slot 4. Takes back what registerComponent announced.
    OrvReturnT (*unregisterComponent)(OrvMgmtSpiComponent_1* component);
};

/// Portal of version "3": the slots of version "1".
struct OrvMgmtSpiInterfacePortal_3 {
    OrvMgmtSpiInterface_1 identity;
    OrvReturnT (*getInterface)(VekMgmtSpiInterface_1 id, void** result); ///< slot 1
    OrvReservedSlot reserved2;
    OrvReturnT (*registerComponent)(OrvMgmtSpiComponent_1* component);   ///< slot 3
    OrvReturnT (*unregisterComponent)(OrvMgmtSpiComponent_1* component); ///< slot 4
};

static_assert(offsetof(OrvMgmtSpiInterfacePortalAccessor, getPortal) == 0, "first word");
static_assert(offsetof(OrvMgmtSpiInterfacePortal_1, getInterface) == 3 * sizeof(void*), "slot 1");
static_assert(offsetof(OrvMgmtSpiInterfacePortal_1, registerComponent) == 5 * sizeof(void*),
              "slot 3");
static_assert(offsetof(OrvMgmtSpiInterfacePortal_1, unregisterComponent) == 6 * sizeof(void*),
              "slot 4");
static_assert(sizeof(OrvMgmtSpiInterfacePortal_1) == 7 * sizeof(void*), "four slots");
static_assert(offsetof(OrvMgmtSpiInterfacePortal_3, getInterface) == 3 * sizeof(void*), "slot 1");
static_assert(offsetof(OrvMgmtSpiInterfacePortal_3, registerComponent) == 5 * sizeof(void*),
              "slot 3");
static_assert(offsetof(OrvMgmtSpiInterfacePortal_3, unregisterComponent) == 6 * sizeof(void*),
              "slot 4");
static_assert(sizeof(OrvMgmtSpiInterfacePortal_3) == 7 * sizeof(void*), "four slots");

#endif
