// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Correct, but registers through the portal of version "1" and never unregisters.

#include "TestComponent.h"

namespace TestComponents {

TestComponent& component() {
    static TestComponent theComponent("TestLeavesRegistration", {}, {}, &tellStart, &tellStop);
    return theComponent;
}

}

TEST_EXPORT OrvReturnT orvLCMinit(OrvMgmtSpiInterfacePortalAccessor* accessor, const char*) {
    TestComponents::component().connect(accessor);
    auto* portal = static_cast<OrvMgmtSpiInterfacePortal_1*>(accessor->getPortal("1"));
    return portal->registerComponent(TestComponents::component().record());
}

TEST_EXPORT void orvLCMterminate() {
    TestComponents::component().report("terminate");
}
