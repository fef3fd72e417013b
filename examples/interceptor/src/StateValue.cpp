// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "StateValue.h"

StateValue::StateValue(const char* state)
    : OrvMoAttributeValueContainer_3{OrvMoAttributeTypeEnumeration_3, 1, &mSlot} {
    mSlot.string = state;
}

// [release]
void StateValue::release(OrvMoAttributeValueContainer_3* container) {
    delete static_cast<StateValue*>(container);
}
// [/release]
