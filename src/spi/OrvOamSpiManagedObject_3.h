// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_SPI_ORVOAMSPIMANAGEDOBJECT_3_H
#define ORV_SPI_ORVOAMSPIMANAGEDOBJECT_3_H

#include "OrvMgmtSpiInterface_1.h"
#include "OrvMoAttributeValue.h"
#include "OrvReturn.h"

#include <cstddef>

/// Managed-object table of version "3". A client of the component passes external DNs; a caller of
/// the router passes internal ones. All pointer arguments are borrowed; results are given.
struct OrvOamSpiManagedObject_3 {
    OrvMgmtSpiInterface_1 identity;

    /// Slot 1. Sets one attribute.
    OrvReturnT (*setMoAttribute)(unsigned long txHandle, const char* dn, const char* attrName,
                                 const OrvMoAttributeValueContainer_3* value);
    /// Slot 2. Reads one attribute. After OrvOk the caller owns \p result (see its record).
    OrvReturnT (*getMoAttribute)(unsigned long txHandle, const char* dn, const char* attrName,
                                 OrvMoAttributeValueResult_3* result);
    /// Slot 3. Reads several attributes; \p attrNames is ended by a null pointer. After OrvOk the
    /// caller owns \p result, whose containers stand in the order of the names.
    OrvReturnT (*getMoAttributes)(unsigned long txHandle, const char* dn, const char** attrNames,
                                  OrvMoAttributeValuesResult_3* result);
    /// Slot 4. Opens an iterator over the children of \p dn (empty: the top level) of one class.
    /// The handle ends with the transaction.
    OrvReturnT (*newMoIterator)(unsigned long txHandle, const char* dn, const char* className,
                                unsigned long long* iterator);
    /// Slot 5. Gives the naming value of the next child; null with OrvOk is the end. The text is
    /// owned by the callee and valid until the next call with the same iterator. An unknown handle
    /// is answered with OrvNotActive.
    OrvReturnT (*nextMo)(unsigned long long iterator, char** result);
    /// Slot 6. Creates a child of \p dn (empty: at the top level). \p attributes is ended by a null
    /// pointer and may itself be null.
    OrvReturnT (*createMo)(unsigned long txHandle, const char* dn, const char* className,
                           const char* attrName, const char* attrValue,
                           OrvMoNamedAttributeValueContainer_3** attributes);
    /// Slot 7. Deletes an MO with its subtree.
    OrvReturnT (*deleteMo)(unsigned long txHandle, const char* dn);
    /// Slot 8. Calls an action. \p parameters is ended by a null pointer. After OrvOk the caller
    /// owns \p result.
    OrvReturnT (*action)(unsigned long txHandle, const char* dn, const char* name,
                         OrvMoNamedAttributeValueContainer_3** parameters,
                         OrvMoAttributeValueResult_3* result);
    /// Slot 9. Says that the caller is done with an iterator.
    OrvReturnT (*finalizeMoIterator)(unsigned long long iterator);
    /// Slot 10. Tells whether an MO exists in the transaction's view.
    OrvReturnT (*existsMo)(unsigned long txHandle, const char* dn, bool* exists);
    /// Slot 11. Counts the children of \p dn (empty: the top level) of one class.
    OrvReturnT (*countMoChildren)(unsigned long txHandle, const char* dn, const char* className,
                                  unsigned long long* count);
};

static_assert(offsetof(OrvOamSpiManagedObject_3, setMoAttribute) == 3 * sizeof(void*), "slot 1");
static_assert(offsetof(OrvOamSpiManagedObject_3, getMoAttribute) == 4 * sizeof(void*), "slot 2");
static_assert(offsetof(OrvOamSpiManagedObject_3, getMoAttributes) == 5 * sizeof(void*), "slot 3");
static_assert(offsetof(OrvOamSpiManagedObject_3, newMoIterator) == 6 * sizeof(void*), "slot 4");
static_assert(offsetof(OrvOamSpiManagedObject_3, nextMo) == 7 * sizeof(void*), "slot 5");
static_assert(offsetof(OrvOamSpiManagedObject_3, createMo) == 8 * sizeof(void*), "slot 6");
static_assert(offsetof(OrvOamSpiManagedObject_3, deleteMo) == 9 * sizeof(void*), "slot 7");
static_assert(offsetof(OrvOamSpiManagedObject_3, action) == 10 * sizeof(void*), "slot 8");
static_assert(offsetof(OrvOamSpiManagedObject_3, finalizeMoIterator) == 11 * sizeof(void*),
              "slot 9");
static_assert(offsetof(OrvOamSpiManagedObject_3, existsMo) == 12 * sizeof(void*), "slot 10");
static_assert(offsetof(OrvOamSpiManagedObject_3, countMoChildren) == 13 * sizeof(void*), "slot 11");
static_assert(sizeof(OrvOamSpiManagedObject_3) == 14 * sizeof(void*), "eleven slots");

#endif
