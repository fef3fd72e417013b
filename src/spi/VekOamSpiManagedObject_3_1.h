// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_SPI_VEKOAMSPIMANAGEDOBJECT_3_1_H
#define ORV_SPI_VEKOAMSPIMANAGEDOBJECT_3_1_H

#include "OrvMgmtSpiInterface_1.h"
#include "OrvMoAttributeValue.h"
#include "OrvReturn.h"

#include <cstddef>

/// Managed-object table of version "3_1": what version "3" lacks. The conventions are those of
/// version "3".
struct VekOamSpiManagedObject_3_1 {
    VekMgmtSpiInterface_1 identity;

    /// Slot 1. Sets several attributes of one MO; \p attributes is ended by a null pointer.
    OrvReturnT (*setMoAttributes)(unsigned long txHandle, const char* dn,
                                  VekMoNamedAttributeValueContainer_3** attributes);
};

static_assert(offsetof(VekOamSpiManagedObject_3_1, setMoAttributes) == 3 * sizeof(void*), "slot 1");
static_assert(sizeof(VekOamSpiManagedObject_3_1) == 4 * sizeof(void*), "one slot");

#endif
