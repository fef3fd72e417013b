// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "CellStateComponent.h"

#include <orv/ExtCmInterceptorRepository.h>

// [component]
CellStateComponent::CellStateComponent()
    : Component("CellStateService"),
      mRepositoryIdentity(OrvExtCmRouterService::ExtCmInterceptorRepositoryI_1_Id) {
    // Makes the host start this component after the one that has the repository, and stop it
    // before.
    mDependencies.push_back(&mRepositoryIdentity);
}

OrvReturnT CellStateComponent::initialize(const char* /*argument*/) {
    return OrvOk;
}

void CellStateComponent::terminate() {}

// The host may call start when the component is started, and stop when it is not.
OrvReturnT CellStateComponent::start(OrvStateChangeReason /*reason*/) {
    if (mEntered) {
        return OrvOk;
    }
    const OrvReturnT code = mInterceptor.enter();
    mEntered = code == OrvOk;
    return code;
}

OrvReturnT CellStateComponent::stop(OrvStateChangeReason /*reason*/) {
    if (mEntered) {
        mInterceptor.leave();
        mEntered = false;
    }
    return OrvOk;
}
// [/component]
