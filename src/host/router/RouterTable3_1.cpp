// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RouterTable3_1.h"

#include "ContainerConversion.h"

namespace OrvHost {

RouterTable3_1::RouterTable3_1(RouterCore& core)
    : mCore(core), mBinder(VekOamSpiManagedObject_3_1_RouterId, *this) {}

OrvReturnT RouterTable3_1::setMoAttributes(unsigned long txHandle, const char* dn,
                                           VekMoNamedAttributeValueContainer_3** attributes) {
    return mCore.answer(txHandle, [&] {
        mCore.transaction(txHandle)->store->set(
            mCore.requireDn(dn), mCore.withShortReferences(toNamedValues(attributes)));
    });
}

}
