// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Wrong on purpose: orvLCMinit registers a component and returns an error code, and nothing
// unregisters the component.

#include "TestComponent.h"

namespace TestComponents {

TestComponent& component() {
    static TestComponent theComponent("TestInitFailsAfterRegistering", {}, {}, &tellStart,
                                      &tellStop);
    return theComponent;
}

}

TEST_EXPORT OrvReturnT orvLCMinit(OrvMgmtSpiInterfacePortalAccessor* accessor, const char*) {
    TestComponents::soundInit(accessor);
    return OrvValidationFailed;
}

TEST_EXPORT void orvLCMterminate() {
    TestComponents::component().report("terminate");
}
