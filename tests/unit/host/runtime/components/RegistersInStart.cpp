// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Unusual on purpose: registers a second component in the start of the first, and unregisters
// neither.

#include "TestComponent.h"

namespace TestComponents {

static TestComponent& second() {
    static TestComponent theSecond("TestSecond", {}, {}, &tellStart, &tellStop);
    return theSecond;
}

static OrvReturnT registerSecond(OrvStateChangeReason) {
    return component().portal()->registerComponent(second().record());
}

TestComponent& component() {
    static TestComponent theComponent("TestRegistersInStart", {}, {}, &registerSecond, &tellStop);
    return theComponent;
}

}

TEST_EXPORT OrvReturnT orvLCMinit(OrvMgmtSpiInterfacePortalAccessor* accessor, const char*) {
    return TestComponents::soundInit(accessor);
}

TEST_EXPORT void orvLCMterminate() {}
