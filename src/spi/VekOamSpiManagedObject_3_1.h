// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_SPI_VEKOAMSPIMANAGEDOBJECT_3_1_H
#define ORV_SPI_VEKOAMSPIMANAGEDOBJECT_3_1_H

#include "OrvMgmtSpiInterface_1.h"
#include "OrvMoAttributeValue.h"
#include "OrvReturn.h"
#include "OrvSpiNames.h"

#include <cstddef>

/// \file
/// The managed-object table of version "3_1": what version "3" lacks. Conventions:
/// OrvConventions.h.
///
/// What stands at the head of OrvOamSpiManagedObject_3.h holds here: the table is offered twice,
/// the forms of DNs, *joins*, *intercepted*, *checked* and *not checked*, and the common codes.
/// `start` fails if the router has no table of this version.
struct VekOamSpiManagedObject_3_1 {
    VekMgmtSpiInterface_1 identity;

    /// Slot 1. Sets several attributes of one MO, in their order. Joins. Intercepted.
    /// DN:    \p dn, the MO.
    /// In:    checked: \p attributes, ended by a null pointer, its names, and the references in it.
    ///        The value of an entry is held inline. One of type 0 with count 0 is "no value": as in
    ///        setMoAttribute of version "3" it does not clear a reference on both sides.
    /// When:  started.
    /// Codes: common. OrvInvalidArgument for a value of "networkManagedElementId" that cannot stand
    ///        in a DN; it is looked for in all attributes first, so the transaction is joined and
    ///        nothing else has been done.
    /// Why:   the same refusal is OrvValidationFailed in version "3", and there an attribute with
    ///        count 0 is read, while here it passes. Clients know each version by its own rule.
    OrvReturnT (*setMoAttributes)(unsigned long txHandle, const char* dn,
                                  VekMoNamedAttributeValueContainer_3** attributes);
};

/// Identity of the router's table.
constexpr VekMgmtSpiInterface_1 VekOamSpiManagedObject_3_1_RouterId = {
    VekOamSpiCmRouterService, "VekOamSpiManagedObject", "3_1"};
/// Identity of the component's table.
constexpr VekMgmtSpiInterface_1 VekOamSpiManagedObject_3_1_ExtCmId = {
    OrvOamSpiExtCmRouterService, "VekOamSpiManagedObject", "3_1"};

static_assert(offsetof(VekOamSpiManagedObject_3_1, setMoAttributes) == 3 * sizeof(void*), "slot 1");
static_assert(sizeof(VekOamSpiManagedObject_3_1) == 4 * sizeof(void*), "one slot");

#endif
