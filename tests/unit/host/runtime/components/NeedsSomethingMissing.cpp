// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Wrong on purpose: requires an interface that nobody offers.

#include "TestComponent.h"

namespace TestComponents {

TestComponent& component() {
    static VekMgmtSpiInterface_1 nowhere{"Nowhere", "Nothing", nullptr};
    static TestComponent theComponent("TestNeedsSomethingMissing", {}, {&nowhere}, &tellStart,
                                      &tellStop);
    return theComponent;
}

}

TEST_EXPORT OrvReturnT orvLCMinit(OrvMgmtSpiInterfacePortalAccessor* accessor, const char*) {
    return TestComponents::soundInit(accessor);
}

TEST_EXPORT void orvLCMterminate() {
    TestComponents::soundTerminate();
}
