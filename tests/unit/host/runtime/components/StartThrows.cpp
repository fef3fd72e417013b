// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Wrong on purpose: start throws.

#include "TestComponent.h"

#include <stdexcept>

namespace TestComponents {

static OrvReturnT throwInStart(OrvStateChangeReason) {
    throw std::runtime_error("no start today");
}

TestComponent& component() {
    static TestComponent theComponent("TestStartThrows", {}, {}, &throwInStart, &tellStop);
    return theComponent;
}

}

TEST_EXPORT OrvReturnT orvLCMinit(OrvMgmtSpiInterfacePortalAccessor* accessor, const char*) {
    return TestComponents::soundInit(accessor);
}

TEST_EXPORT void orvLCMterminate() {
    TestComponents::soundTerminate();
}
