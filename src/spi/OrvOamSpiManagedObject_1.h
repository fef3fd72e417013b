// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_SPI_ORVOAMSPIMANAGEDOBJECT_1_H
#define ORV_SPI_ORVOAMSPIMANAGEDOBJECT_1_H

#include "OrvMgmtSpiInterface_1.h"
#include "OrvMoAttributeValue.h"
#include "OrvReturn.h"

#include <cstddef>

/// Managed-object table of version "1". A client of the component passes external DNs; a caller of
/// the router passes internal ones. All pointer arguments are borrowed. Whatever an operation hands
/// out is owned by the callee and lives until the transaction is finished.
struct OrvOamSpiManagedObject_1 {
    OrvMgmtSpiInterface_1 identity;

    /// Slot 1. Sets one attribute.
    OrvReturnT (*setMoAttribute)(unsigned long txHandle, const char* dn, const char* attrName,
                                 const OrvMoAttributeValueContainer* value);
    /// Slot 2. Reads one attribute. A success leaves a container in `*result`, never null.
    OrvReturnT (*getMoAttribute)(unsigned long txHandle, const char* dn, const char* attrName,
                                 OrvMoAttributeValueContainer** result);
    /// Slot 3. Opens an iterator over the children of \p dn (empty: the top level) of one class.
    OrvReturnT (*newMoIterator)(unsigned long txHandle, const char* dn, const char* className,
                                void** iterator);
    /// Slot 4. Gives the naming value of the next child; null with OrvOk is the end. The text is
    /// valid until the next call with the same iterator.
    OrvReturnT (*nextMo)(void* iterator, char** result);
    /// Slot 5. Creates a child of \p dn (empty: at the top level).
    OrvReturnT (*createMo)(unsigned long txHandle, const char* dn, const char* className,
                           const char* attrName, const char* attrValue);
    /// Slot 6. Deletes an MO with its subtree.
    OrvReturnT (*deleteMo)(unsigned long txHandle, const char* dn);
    /// Slot 7. Calls an action. \p parameters is an array ended by a null pointer.
    OrvReturnT (*action)(unsigned long txHandle, const char* dn, const char* name,
                         OrvMoAttributeValueContainer** parameters,
                         OrvMoAttributeValueContainer** result);
};

static_assert(offsetof(OrvOamSpiManagedObject_1, setMoAttribute) == 3 * sizeof(void*), "slot 1");
static_assert(offsetof(OrvOamSpiManagedObject_1, getMoAttribute) == 4 * sizeof(void*), "slot 2");
static_assert(offsetof(OrvOamSpiManagedObject_1, newMoIterator) == 5 * sizeof(void*), "slot 3");
static_assert(offsetof(OrvOamSpiManagedObject_1, nextMo) == 6 * sizeof(void*), "slot 4");
static_assert(offsetof(OrvOamSpiManagedObject_1, createMo) == 7 * sizeof(void*), "slot 5");
static_assert(offsetof(OrvOamSpiManagedObject_1, deleteMo) == 8 * sizeof(void*), "slot 6");
static_assert(offsetof(OrvOamSpiManagedObject_1, action) == 9 * sizeof(void*), "slot 7");
static_assert(sizeof(OrvOamSpiManagedObject_1) == 10 * sizeof(void*), "seven slots");

#endif
