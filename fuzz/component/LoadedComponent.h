// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_FUZZ_COMPONENT_LOADEDCOMPONENT_H
#define ORV_FUZZ_COMPONENT_LOADEDCOMPONENT_H

#include "Interceptor.h"
#include "OrvMgmtSpiInterfacePortal.h"
#include "OrvOamSpiManagedObject_1.h"
#include "OrvOamSpiManagedObject_3.h"
#include "OrvOamSpiTransactionalResource_2.h"
#include "VekOamSpiManagedObject_3_1.h"

namespace Fuzz {

/// The component's shared object, open until the process ends, and the one with interceptors that
/// finds its base class in it.
class LoadedComponent {
public:
    /// Loads both at the first call.
    static const LoadedComponent& instance();

    OrvReturnT (*init)(OrvMgmtSpiInterfacePortalAccessor* accessor, const char* argument);
    void (*terminate)();
    Scripted::MakeInterceptor makeInterceptor;

    // What the component offers. It must have announced itself.
    static OrvReturnT start();
    static OrvReturnT stop();
    static const OrvOamSpiManagedObject_1& version1();
    static const OrvOamSpiManagedObject_3& version3();
    static const VekOamSpiManagedObject_3_1& version3_1();
    static const OrvOamSpiTransactionalResource_2& resource();

private:
    LoadedComponent();
};

}

#endif
