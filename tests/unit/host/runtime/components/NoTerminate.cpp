// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Missing on purpose: orvLCMterminate.

#include "TestComponent.h"

TEST_EXPORT OrvReturnT orvLCMinit(OrvMgmtSpiInterfacePortalAccessor*, const char*) {
    return OrvOk;
}
