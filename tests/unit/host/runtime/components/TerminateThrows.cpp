// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Wrong on purpose: orvLCMterminate throws.

#include "TestComponent.h"

#include <stdexcept>

namespace TestComponents {

TestComponent& component() {
    static TestComponent theComponent("TestTerminateThrows", {}, {}, &tellStart, &tellStop);
    return theComponent;
}

}

TEST_EXPORT OrvReturnT orvLCMinit(OrvMgmtSpiInterfacePortalAccessor* accessor, const char*) {
    return TestComponents::soundInit(accessor);
}

TEST_EXPORT void orvLCMterminate() {
    throw std::runtime_error("no end today");
}
