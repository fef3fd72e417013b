// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Wrong on purpose: requires what CycleTwo offers, which requires what this one offers.

#include "TestComponent.h"

namespace TestComponents {

TestComponent& component() {
    static VekMgmtSpiInterface_1 one{"TestCycleOne", "One", "1"};
    static VekMgmtSpiInterface_1 two{"TestCycleTwo", "Two", "1"};
    static TestComponent theComponent("TestCycleOne", {&one}, {&two}, &tellStart, &tellStop);
    return theComponent;
}

}

TEST_EXPORT OrvReturnT orvLCMinit(OrvMgmtSpiInterfacePortalAccessor* accessor, const char*) {
    return TestComponents::soundInit(accessor);
}

TEST_EXPORT void orvLCMterminate() {
    TestComponents::soundTerminate();
}
