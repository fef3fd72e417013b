// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "CellStateComponent.h"

// [entry]
extern "C" {

__attribute__((visibility("default"))) OrvReturnT
orvLCMinit(OrvMgmtSpiInterfacePortalAccessor* accessor, const char* argument) {
    return CellStateComponent::lcmInit(accessor, argument);
}

__attribute__((visibility("default"))) void orvLCMterminate() {
    CellStateComponent::lcmTerminate();
}
}
// [/entry]
