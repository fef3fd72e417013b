// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Wrong on purpose: orvLCMinit throws after it has registered a component.

#include "TestComponent.h"

#include <stdexcept>

namespace TestComponents {

TestComponent& component() {
    static TestComponent theComponent("TestInitThrows", {}, {}, &tellStart, &tellStop);
    return theComponent;
}

}

TEST_EXPORT OrvReturnT orvLCMinit(OrvMgmtSpiInterfacePortalAccessor* accessor, const char*) {
    TestComponents::soundInit(accessor);
    throw std::runtime_error("no init today");
}

TEST_EXPORT void orvLCMterminate() {
    TestComponents::component().report("terminate");
}
