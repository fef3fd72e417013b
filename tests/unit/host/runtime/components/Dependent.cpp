// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Correct: requires Numbers of any component, version 1, and offers nothing.

#include "TestComponent.h"

namespace TestComponents {

TestComponent& component() {
    static VekMgmtSpiInterface_1 numbers{nullptr, "Numbers", "1"};
    static TestComponent theComponent("TestDependent", {}, {&numbers}, &tellStart, &tellStop);
    return theComponent;
}

}

TEST_EXPORT OrvReturnT orvLCMinit(OrvMgmtSpiInterfacePortalAccessor* accessor, const char*) {
    return TestComponents::soundInit(accessor);
}

TEST_EXPORT void orvLCMterminate() {
    TestComponents::soundTerminate();
}
