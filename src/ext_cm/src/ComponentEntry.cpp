// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ComponentEntry.h"

#include "ExtCmRouterService.h"

using OrvExtCmRouterService::ExtCmRouterService;

OrvReturnT orvLCMinit(OrvMgmtSpiInterfacePortalAccessor* accessor, const char* argument) {
    return ExtCmRouterService::lcmInit(accessor, argument);
}

void orvLCMterminate() {
    ExtCmRouterService::lcmTerminate();
}
