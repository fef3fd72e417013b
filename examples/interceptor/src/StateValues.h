// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef CELL_STATE_STATEVALUES_H
#define CELL_STATE_STATEVALUES_H

#include "StateValue.h"

#include <orv/OwnedResult.h>

#include <memory>
#include <vector>

/// What a read of several attributes returns if the served one is among them: the router's
/// containers, with a StateValue in the place of each container that was read to compute it.
///
/// The receiver gets an array and passes the same array to the release function, which has to find
/// this object from it. So the object is itself a container, a copy of the first one, and is the
/// first element.
///
/// Threads: does not change.
class StateValues : public OrvMoAttributeValueContainer_3 {
public:
    /// \p attrNames are the names that the client asked for. \p fromRouter holds one container for
    /// each, at least one.
    StateValues(const char** attrNames, Orv::OwnedResult<OrvMoAttributeValuesResult_3> fromRouter);
    StateValues(const StateValues&) = delete;
    StateValues& operator=(const StateValues&) = delete;

    /// The array for the receiver, with a null pointer at the end. Owned by this object.
    OrvMoAttributeValueContainer_3** containers() { return mContainers.data(); }

    /// For the field `release` of a result whose array comes from a StateValues: deletes that
    /// object.
    static void release(OrvMoAttributeValueContainer_3** containers);

private:
    OrvMoAttributeValueContainer_3* containerFor(const char* attrName,
                                                 OrvMoAttributeValueContainer_3* fromRouter);

    Orv::OwnedResult<OrvMoAttributeValuesResult_3> mFromRouter;
    std::vector<std::unique_ptr<StateValue>> mStates;
    std::vector<OrvMoAttributeValueContainer_3*> mContainers;
};

#endif
