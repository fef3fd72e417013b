// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "LoadedComponent.h"

#include "Host.h"
#include "support/Require.h"

#include <dlfcn.h>

namespace Fuzz {

namespace {

void* open(const char* path) {
    void* const opened = dlopen(path, RTLD_NOW | RTLD_GLOBAL);
    require(opened != nullptr, std::string("cannot be opened: ") + path);
    return opened;
}

template <class Function>
void find(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(dlsym(library, name));
    require(function != nullptr, std::string("not found: ") + name);
}

template <class Table>
const Table& offered(std::size_t index) {
    return *static_cast<const Table*>(
        static_cast<const void*>(announcedComponent()->interfaceArray[index]));
}

}

LoadedComponent::LoadedComponent() {
    void* const component = open(EXT_CM_PATH);
    find(component, "orvLCMinit", init);
    find(component, "orvLCMterminate", terminate);
    find(open(PROBE_PATH), "makeInterceptor", makeInterceptor);
}

const LoadedComponent& LoadedComponent::instance() {
    static const LoadedComponent theInstance;
    return theInstance;
}

OrvReturnT LoadedComponent::start() {
    return announcedComponent()->start(OrvStateChangeReasonRequested);
}
OrvReturnT LoadedComponent::stop() {
    return announcedComponent()->stop(OrvStateChangeReasonRequested);
}

const OrvOamSpiManagedObject_1& LoadedComponent::version1() {
    return offered<OrvOamSpiManagedObject_1>(0);
}
const OrvOamSpiManagedObject_3& LoadedComponent::version3() {
    return offered<OrvOamSpiManagedObject_3>(1);
}
const VekOamSpiManagedObject_3_1& LoadedComponent::version3_1() {
    return offered<VekOamSpiManagedObject_3_1>(2);
}
const OrvOamSpiTransactionalResource_2& LoadedComponent::resource() {
    return offered<OrvOamSpiTransactionalResource_2>(3);
}

}
