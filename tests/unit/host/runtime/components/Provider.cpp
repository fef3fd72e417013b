// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Correct: offers TestProvider/Numbers version 1 and requires nothing.

#include "TestComponent.h"

namespace TestComponents {

TestComponent& component() {
    static VekMgmtSpiInterface_1 numbers{"TestProvider", "Numbers", "1"};
    static TestComponent theComponent("TestProvider", {&numbers}, {}, &tellStart, &tellStop);
    return theComponent;
}

}

TEST_EXPORT OrvReturnT orvLCMinit(OrvMgmtSpiInterfacePortalAccessor* accessor,
                                  const char* argument) {
    const OrvReturnT code = TestComponents::soundInit(accessor);
    TestComponents::component().report(argument);
    return code;
}

TEST_EXPORT void orvLCMterminate() {
    TestComponents::soundTerminate();
}
