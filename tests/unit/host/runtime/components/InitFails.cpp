// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Wrong on purpose: orvLCMinit returns an error code and registers nothing.

#include "TestComponent.h"

namespace TestComponents {

TestComponent& component() {
    static TestComponent theComponent("TestInitFails", {}, {}, &tellStart, &tellStop);
    return theComponent;
}

}

TEST_EXPORT OrvReturnT orvLCMinit(OrvMgmtSpiInterfacePortalAccessor* accessor, const char*) {
    TestComponents::component().connect(accessor);
    TestComponents::component().report("init");
    return OrvFailure;
}

TEST_EXPORT void orvLCMterminate() {
    TestComponents::component().report("terminate");
}
