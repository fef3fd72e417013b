// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "StateValues.h"

#include "OperationalState.h"

#include <cstddef>
#include <utility>

StateValues::StateValues(const char** attrNames,
                         Orv::OwnedResult<OrvMoAttributeValuesResult_3> fromRouter)
    : OrvMoAttributeValueContainer_3{}, mFromRouter(std::move(fromRouter)) {
    OrvMoAttributeValueContainer_3** const read = mFromRouter.get().containers;
    for (std::size_t index = 0; read[index] != nullptr; ++index) {
        mContainers.push_back(containerFor(attrNames[index], read[index]));
    }
    static_cast<OrvMoAttributeValueContainer_3&>(*this) = *mContainers.front();
    mContainers.front() = this;
    mContainers.push_back(nullptr);
}

OrvMoAttributeValueContainer_3*
StateValues::containerFor(const char* attrName, OrvMoAttributeValueContainer_3* fromRouter) {
    if (!isServed(attrName)) {
        return fromRouter;
    }
    mStates.push_back(std::make_unique<StateValue>(operationalState(fromRouter)));
    return mStates.back().get();
}

void StateValues::release(OrvMoAttributeValueContainer_3** containers) {
    delete static_cast<StateValues*>(containers[0]);
}
