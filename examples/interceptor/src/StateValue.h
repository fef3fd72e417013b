// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef CELL_STATE_STATEVALUE_H
#define CELL_STATE_STATEVALUE_H

#include <orv/OrvMoAttributeValue.h>

/// A state that this component returns, as one value of an enumeration. The table passes only the
/// base class, a plain record; the release function converts it back to the object.
///
/// Threads: does not change.
class StateValue : public OrvMoAttributeValueContainer_3 {
public:
    /// \p state is a constant text.
    explicit StateValue(const char* state);
    StateValue(const StateValue&) = delete;
    StateValue& operator=(const StateValue&) = delete;

    /// For the field `release` of a result whose container is a StateValue: deletes it.
    static void release(OrvMoAttributeValueContainer_3* container);

private:
    OrvMoAttributeValue_3 mSlot;
};

#endif
