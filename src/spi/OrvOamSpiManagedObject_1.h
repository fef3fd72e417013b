// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_SPI_ORVOAMSPIMANAGEDOBJECT_1_H
#define ORV_SPI_ORVOAMSPIMANAGEDOBJECT_1_H

#include "OrvMgmtSpiInterface_1.h"
#include "OrvMoAttributeValue.h"
#include "OrvReturn.h"
#include "OrvSpiNames.h"

#include <cstddef>

/// \file
/// The managed-object table of version "1". Conventions: OrvConventions.h.
///
/// What stands at the head of OrvOamSpiManagedObject_3.h holds here: the table is offered twice,
/// the forms of DNs, *joins*, *checked* and *not checked*, and the common codes. What differs:
///   - Nothing is intercepted, and no association is followed: references that are written here are
///     neither given a far side nor judged.
///   - There are no results to release. What an operation hands out is owned by the callee (the
///     component for a client, the router for the component) until the transaction is finished. The
///     router cannot learn of an earlier end, so it keeps what it hands out as long. It may free it
///     before the component's `finish` (OrvHostGuide.h, 6).
///   - A slot joins only where the component must keep something for the transaction: *joins for
///     references* means that it does so when a value holds references and must be copied. A
///     transaction with plain values alone is never joined.
///   - A struct member without a value cannot be read, wherever the component reads the struct.
struct OrvOamSpiManagedObject_1 {
    OrvMgmtSpiInterface_1 identity;

    /// Slot 1. Sets one attribute. Joins for references.
    /// DN:    \p dn, the MO.
    /// In:    checked: \p attrName and \p value.
    /// When:  started.
    /// Codes: common. OrvInvalidArgument for a value of "networkManagedElementId" that is missing,
    ///        or that cannot stand in a DN; an empty text passes.
    /// Why:   version "3" answers the same refusal with OrvValidationFailed and lets a missing
    ///        value pass. Clients know each version by its own rule.
    OrvReturnT (*setMoAttribute)(unsigned long txHandle, const char* dn, const char* attrName,
                                 const OrvMoAttributeValueContainer* value);

    /// Slot 2. Reads one attribute. Joins for references, and for the id of the root.
    /// DN:    \p dn, the MO.
    /// In:    checked: \p attrName.
    /// Out:   \p result: with OrvOk the container, owned by the callee until the transaction is
    ///        finished. A router should give one: a null goes to the client as it is. After another
    ///        code as the router left it.
    /// When:  started.
    /// Codes: common.
    /// Why:   a client that asks for "managedElementId" of the root gets the external identity, as
    ///        in version "3".
    OrvReturnT (*getMoAttribute)(unsigned long txHandle, const char* dn, const char* attrName,
                                 OrvMoAttributeValueContainer** result);

    /// Slot 3. Opens an iterator over the children of one class. Joins, after the router's OrvOk.
    /// DN:    \p dn, the parent. Empty: the top level; it is not translated.
    /// In:    not checked: \p className.
    /// Out:   \p iterator: with OrvOk a handle, owned by the callee until the transaction is
    ///        finished. It is a number of the callee's and need not be an address.
    /// When:  started.
    /// Codes: common, but a DN that cannot be translated gives OrvNotExist also when stopped.
    OrvReturnT (*newMoIterator)(unsigned long txHandle, const char* dn, const char* className,
                                void** iterator);

    /// Slot 4. Gives the next child's naming value. There is no slot that ends an iterator: a
    /// caller that has enough stops calling, and the router ends it with the transaction.
    /// In:    \p iterator, a handle of newMoIterator. It is looked up before it is used, so that
    ///        any value is safe at the component.
    /// Out:   \p result: with OrvOk the text, owned by the callee until the next call with the same
    ///        iterator; null is the end. After another code as in version "3".
    /// When:  started, and not while the transaction of the iterator is being finished.
    /// Codes: OrvNotActive for a handle that names nothing, before anything else, and when stopped.
    ///        OrvFailure if \p result is null. Then the router's.
    /// Why:   for the top level the component replaces the names, as in version "3".
    OrvReturnT (*nextMo)(void* iterator, char** result);

    /// Slot 5. Creates a child of an MO. Never joins.
    /// DN:    \p dn, the parent. Empty: the top level; it is translated, and an empty answer is
    ///        accepted.
    /// In:    not checked: \p className, \p attrName (the naming attribute), \p attrValue (its
    ///        value, which is not translated).
    /// When:  started.
    /// Codes: common.
    OrvReturnT (*createMo)(unsigned long txHandle, const char* dn, const char* className,
                           const char* attrName, const char* attrValue);

    /// Slot 6. Deletes an MO with its subtree. Never joins. The far sides of its associations keep
    /// their references.
    /// DN:    \p dn, the MO.
    /// When:  started.
    /// Codes: common.
    OrvReturnT (*deleteMo)(unsigned long txHandle, const char* dn);

    /// Slot 7. Calls an action of an MO; parameters go by their position. Joins for references.
    /// DN:    \p dn, the MO.
    /// In:    checked: \p parameters, ended by a null pointer, and the references in them; not
    ///        checked: \p name.
    /// Out:   \p result: with OrvOk the container, owned by the callee until the transaction is
    ///        finished, or null: no result. After another code what the router left, which is null
    ///        if it left it alone.
    /// When:  started.
    /// Codes: common.
    OrvReturnT (*action)(unsigned long txHandle, const char* dn, const char* name,
                         OrvMoAttributeValueContainer** parameters,
                         OrvMoAttributeValueContainer** result);
};

/// Identity of the router's table.
constexpr VekMgmtSpiInterface_1 OrvOamSpiManagedObject_1_RouterId = {OrvOamSpiCmRouterService,
                                                                     "OrvOamSpiManagedObject", "1"};
/// Identity of the component's table.
constexpr VekMgmtSpiInterface_1 OrvOamSpiManagedObject_1_ExtCmId = {OrvOamSpiExtCmRouterService,
                                                                    "OrvOamSpiManagedObject", "1"};

static_assert(offsetof(OrvOamSpiManagedObject_1, setMoAttribute) == 3 * sizeof(void*), "slot 1");
static_assert(offsetof(OrvOamSpiManagedObject_1, getMoAttribute) == 4 * sizeof(void*), "slot 2");
static_assert(offsetof(OrvOamSpiManagedObject_1, newMoIterator) == 5 * sizeof(void*), "slot 3");
static_assert(offsetof(OrvOamSpiManagedObject_1, nextMo) == 6 * sizeof(void*), "slot 4");
static_assert(offsetof(OrvOamSpiManagedObject_1, createMo) == 7 * sizeof(void*), "slot 5");
static_assert(offsetof(OrvOamSpiManagedObject_1, deleteMo) == 8 * sizeof(void*), "slot 6");
static_assert(offsetof(OrvOamSpiManagedObject_1, action) == 9 * sizeof(void*), "slot 7");
static_assert(sizeof(OrvOamSpiManagedObject_1) == 10 * sizeof(void*), "seven slots");

#endif
