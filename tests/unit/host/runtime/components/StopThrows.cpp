// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Wrong on purpose: stop throws something that is not a std::exception.

#include "TestComponent.h"

namespace TestComponents {

static OrvReturnT throwInStop(OrvStateChangeReason) {
    throw 42;
}

TestComponent& component() {
    static TestComponent theComponent("TestStopThrows", {}, {}, &tellStart, &throwInStop);
    return theComponent;
}

}

TEST_EXPORT OrvReturnT orvLCMinit(OrvMgmtSpiInterfacePortalAccessor* accessor, const char*) {
    return TestComponents::soundInit(accessor);
}

TEST_EXPORT void orvLCMterminate() {
    TestComponents::soundTerminate();
}
