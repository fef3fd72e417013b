// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "SmallHost.h"

#include "MeIdTranslator.h"
#include "OrvOamSpiTransaction_1.h"
#include "Portal.h"

#include <cstring>
#include <dlfcn.h>
#include <stdexcept>

namespace {

SmallHost* theHost = nullptr;

OrvReturnT join(unsigned long, OrvOamSpiTransactionalResource_2*) {
    return OrvOk;
}

OrvOamSpiTransaction_1 transactions = {OrvOamSpiTransaction_1_Id, &join};

using Init = OrvReturnT (*)(OrvMgmtSpiInterfacePortalAccessor*, const char*);
using Terminate = void (*)();

template <class Function>
Function entryOf(void* library, const char* name) {
    void* const entry = dlsym(library, name);
    if (entry == nullptr) {
        throw std::runtime_error(std::string("no ") + name);
    }
    return reinterpret_cast<Function>(entry);
}

bool is(const VekMgmtSpiInterface_1& offered, const VekMgmtSpiInterface_1& wanted) {
    return std::strcmp(offered.componentName, wanted.componentName) == 0 &&
           std::strcmp(offered.interfaceName, wanted.interfaceName) == 0 &&
           std::strcmp(offered.interfaceVersion, wanted.interfaceVersion) == 0;
}

}

SmallHost::SmallHost() {
    theHost = this;
    router.table1.identity = OrvOamSpiManagedObject_1_RouterId;
    router.table3.identity = OrvOamSpiManagedObject_3_RouterId;
    router.table3_1.identity = VekOamSpiManagedObject_3_1_RouterId;
    mHostTables = {&router.table1.identity, &router.table3.identity, &router.table3_1.identity,
                   &transactions.identity};
    mPortal.getInterface = &getInterface;
    mPortal.registerComponent = &registerComponent;
    mAccessor.getPortal = &getPortal;
    Orv::Portal::instance()->attach(&getInterface);
    Orv::MeIdTranslator::instance()->configure("paris", "");
}

SmallHost::~SmallHost() {
    for (; !mLoaded.empty(); mLoaded.pop_back()) {
        mLoaded.back().record->stop(OrvStateChangeReasonHostShutdown);
        entryOf<Terminate>(mLoaded.back().library, "orvLCMterminate")();
        dlclose(mLoaded.back().library);
    }
    Orv::Portal::instance()->detach();
    Orv::MeIdTranslator::instance()->configure("", "");
    theHost = nullptr;
}

OrvMgmtSpiComponent_1& SmallHost::load(const std::string& path) {
    void* const library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        throw std::runtime_error(dlerror()); // NOLINT(concurrency-mt-unsafe)
    }
    mRegistered = nullptr;
    if (entryOf<Init>(library, "orvLCMinit")(&mAccessor, "") != OrvOk || mRegistered == nullptr) {
        throw std::runtime_error(path + ": orvLCMinit refuses");
    }
    mLoaded.push_back({library, mRegistered});
    return *mRegistered;
}

void* SmallHost::find(const VekMgmtSpiInterface_1& identity) {
    void* table = nullptr;
    getInterface(identity, &table);
    return table;
}

void* SmallHost::getPortal(const char* version) {
    return std::strcmp(version, "1") == 0 ? &theHost->mPortal : nullptr;
}

OrvReturnT SmallHost::getInterface(VekMgmtSpiInterface_1 id, void** result) {
    std::vector<VekMgmtSpiInterface_1*> offered = theHost->mHostTables;
    for (const Loaded& loaded : theHost->mLoaded) {
        for (auto** entry = loaded.record->interfaceArray; *entry != nullptr; ++entry) {
            offered.push_back(*entry);
        }
    }
    for (VekMgmtSpiInterface_1* table : offered) {
        if (is(*table, id)) {
            *result = table;
            return OrvOk;
        }
    }
    return OrvNotExist;
}

OrvReturnT SmallHost::registerComponent(OrvMgmtSpiComponent_1* component) {
    theHost->mRegistered = component;
    return OrvOk;
}
