// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_SPI_ORVMGMTSPIINTERFACEPORTAL_H
#define ORV_SPI_ORVMGMTSPIINTERFACEPORTAL_H

#include "OrvMgmtSpiComponent_1.h"
#include "OrvMgmtSpiInterface_1.h"
#include "OrvReturn.h"

#include <cstddef>

/// \file
/// The way into the host: how a component registers, and how it finds the tables of others.
/// Conventions: OrvConventions.h.
///
/// The component needs a portal of version "1". If the host also has one of version "3", the
/// component registers and unregisters there instead, but looks nothing up there. A host with
/// version "3" alone is refused.
///
/// The portal is one of two ways of lookup. The other is Orv::Portal of the helper library, to
/// which the host gives its getInterface with Orv::Portal::attach: OrvHostGuide.h, 2, says which
/// table is looked up in which way. A host that has no reason to differ gives the same function to
/// both.

/// A slot that keeps its place in a table and is never called by a client of these headers.
typedef void (*OrvReservedSlot)();

/// The way to the host's portal tables, handed to orvLCMinit. Owned by the host until the shared
/// object is closed. It has no identity fields.
struct OrvMgmtSpiInterfacePortalAccessor {
    /// First word. Finds a portal table of the host.
    /// In:    \p version, "1" or "3".
    /// Out:   the result: the table, owned by the host until the shared object is closed; null if
    ///        the host has no portal of that version.
    /// When:  within orvLCMinit, on its thread, for "1" and then for "3". Again if orvLCMinit is
    ///        called again.
    void* (*getPortal)(const char* version);
};

/// Portal of version "1".
struct OrvMgmtSpiInterfacePortal_1 {
    OrvMgmtSpiInterface_1 identity;

    /// Slot 1. Finds the table that the host or a component offers.
    /// In:    the texts of \p id are borrowed. A null component name or version asks for any.
    /// Out:   \p result, with OrvOk: the table. The host owns its own tables until the component is
    ///        stopped, and those that the helper library has asked for until Orv::Portal::detach. A
    ///        component owns its own until it is stopped. With another code leave \p result alone:
    ///        the component keeps what is written there.
    /// When:  within the component's `start`, on its thread: hold no lock there that a lookup
    ///        needs. The helper library and interceptors call it, through Orv::Portal, at any time
    ///        while a component is started. A table of another component can be found once that is
    ///        started.
    /// Codes: OrvOk; any other means that there is no such table. OrvOk with a null counts as not
    ///        found. The component asks again at its next `start` only.
    OrvReturnT (*getInterface)(VekMgmtSpiInterface_1 id, void** result);

    OrvReservedSlot reserved2;

    /// Slot 3. Announces a component.
    /// In:    \p component, owned by the component until its shared object is closed; not borrowed
    ///        for the call only. See the record for what in it may move.
    /// When:  within orvLCMinit, on its thread. The host calls `start` only after orvLCMinit has
    ///        returned OrvOk: the component is not ready before. If orvLCMinit is called again, the
    ///        same record comes again.
    /// Codes: OrvOk; any other ends orvLCMinit, which answers with it.
    OrvReturnT (*registerComponent)(OrvMgmtSpiComponent_1* component);

    /// Slot 4. Takes back what registerComponent announced.
    /// In:    \p component, the record that was announced; the host forgets it.
    /// When:  within orvLCMterminate, on its thread, when the component is stopped.
    /// Codes: not looked at.
    /// Why:   the component calls this slot in the portal of version "3" only. A component that
    ///        registered in this table stays registered: the host drops the record itself before it
    ///        closes the shared object.
    OrvReturnT (*unregisterComponent)(OrvMgmtSpiComponent_1* component);
};

/// Portal of version "3": the slots of version "1".
struct OrvMgmtSpiInterfacePortal_3 {
    OrvMgmtSpiInterface_1 identity;

    /// Slot 1. Finds a table. The component does not call it here.
    /// As:    OrvMgmtSpiInterfacePortal_1::getInterface.
    OrvReturnT (*getInterface)(VekMgmtSpiInterface_1 id, void** result);

    OrvReservedSlot reserved2;

    /// Slot 3. Announces a component.
    /// As:    OrvMgmtSpiInterfacePortal_1::registerComponent.
    OrvReturnT (*registerComponent)(OrvMgmtSpiComponent_1* component);

    /// Slot 4. Takes back what registerComponent announced. The second and later orvLCMterminate do
    /// not call it, unless orvLCMinit was called in between.
    /// As:    OrvMgmtSpiInterfacePortal_1::unregisterComponent.
    OrvReturnT (*unregisterComponent)(OrvMgmtSpiComponent_1* component);
};

/// Identities of the portals; the host adds its own name.
constexpr VekMgmtSpiInterface_1 OrvMgmtSpiInterfacePortal_1_Id = {nullptr,
                                                                  "OrvMgmtSpiInterfacePortal", "1"};
constexpr VekMgmtSpiInterface_1 OrvMgmtSpiInterfacePortal_3_Id = {nullptr,
                                                                  "OrvMgmtSpiInterfacePortal", "3"};

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
