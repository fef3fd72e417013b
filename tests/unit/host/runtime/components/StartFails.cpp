// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Wrong on purpose: start returns an error code. The component still offers Numbers.

#include "TestComponent.h"

namespace TestComponents {

static OrvReturnT refuseStart(OrvStateChangeReason) {
    return OrvNotActive;
}

TestComponent& component() {
    static VekMgmtSpiInterface_1 numbers{"TestStartFails", "Numbers", "1"};
    static TestComponent theComponent("TestStartFails", {&numbers}, {}, &refuseStart, &tellStop);
    return theComponent;
}

}

TEST_EXPORT OrvReturnT orvLCMinit(OrvMgmtSpiInterfacePortalAccessor* accessor, const char*) {
    return TestComponents::soundInit(accessor);
}

TEST_EXPORT void orvLCMterminate() {
    TestComponents::soundTerminate();
}
