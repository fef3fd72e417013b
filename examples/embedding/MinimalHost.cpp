// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The smallest possible host of the component: a portal, a router, and a client. It is built from
// the table headers and the helper library only.
//
//   minimal_host PATH/TO/libext_cm.so

#include <orv/MeIdTranslator.h>
#include <orv/OrvMgmtSpiInterfacePortal.h>
#include <orv/OrvOamSpiManagedObject_1.h>
#include <orv/OrvOamSpiManagedObject_3.h>
#include <orv/Portal.h>
#include <orv/VekOamSpiManagedObject_3_1.h>

#include <cstdio>
#include <cstring>

#include <dlfcn.h>

namespace {

// [router]
// The router sees internal DNs only. This one knows a single object, and one operation; a host that
// lets clients at all operations fills every slot.
OrvReturnT existsMo(unsigned long, const char* dn, bool* exists) {
    *exists = std::strcmp(dn, "ManagedElement=1") == 0;
    return OrvOk;
}

OrvOamSpiManagedObject_1 router1{};
OrvOamSpiManagedObject_3 router3{};
VekOamSpiManagedObject_3_1 router3_1{};

void fillRouter() {
    router1.identity = OrvOamSpiManagedObject_1_RouterId;
    router3.identity = OrvOamSpiManagedObject_3_RouterId;
    router3.existsMo = &existsMo;
    router3_1.identity = VekOamSpiManagedObject_3_1_RouterId;
}
// [/router]

// [portal]
OrvMgmtSpiComponent_1* registered = nullptr;

bool isSame(const VekMgmtSpiInterface_1& left, const VekMgmtSpiInterface_1& right) {
    return std::strcmp(left.componentName, right.componentName) == 0 &&
           std::strcmp(left.interfaceName, right.interfaceName) == 0 &&
           std::strcmp(left.interfaceVersion, right.interfaceVersion) == 0;
}

OrvReturnT getInterface(VekMgmtSpiInterface_1 id, void** result) {
    VekMgmtSpiInterface_1* tables[] = {&router1.identity, &router3.identity, &router3_1.identity};
    for (VekMgmtSpiInterface_1* table : tables) {
        if (isSame(*table, id)) {
            *result = table;
            return OrvOk;
        }
    }
    return OrvNotExist;
}

OrvReturnT registerComponent(OrvMgmtSpiComponent_1* component) {
    registered = component;
    return OrvOk;
}

OrvReturnT unregisterComponent(OrvMgmtSpiComponent_1*) {
    registered = nullptr;
    return OrvOk;
}

OrvMgmtSpiInterfacePortal_1 portal1{orvSpiOfferedBy(OrvMgmtSpiInterfacePortal_1_Id, "MyHost"),
                                    &getInterface, nullptr, &registerComponent,
                                    &unregisterComponent};

// Without a portal of version "3" the component registers through this one, and stays registered
// when it is terminated: this host then forgets the record itself.
void* getPortal(const char* version) {
    return std::strcmp(version, "1") == 0 ? &portal1 : nullptr;
}
// [/portal]

// [client]
// A client finds the table that the component offers, and speaks external DNs.
OrvOamSpiManagedObject_3* findOffered() {
    for (VekMgmtSpiInterface_1** offered = registered->interfaceArray; *offered != nullptr;
         ++offered) {
        if (isSame(**offered, OrvOamSpiManagedObject_3_ExtCmId)) {
            return reinterpret_cast<OrvOamSpiManagedObject_3*>(*offered);
        }
    }
    return nullptr;
}

void ask(const char* dn) {
    OrvOamSpiManagedObject_3* client = findOffered();
    bool exists = false;
    const OrvReturnT code = client->existsMo(1, dn, &exists);
    std::printf("%s: code %d, %s\n", dn, code, exists ? "exists" : "does not exist");
}
// [/client]

// [load]
using InitFn = OrvReturnT (*)(OrvMgmtSpiInterfacePortalAccessor*, const char*);
using TerminateFn = void (*)();

int run(void* library) {
    const auto init = reinterpret_cast<InitFn>(dlsym(library, "orvLCMinit"));
    const auto terminate = reinterpret_cast<TerminateFn>(dlsym(library, "orvLCMterminate"));
    if (init == nullptr || terminate == nullptr) {
        std::fputs("no component\n", stderr);
        return 1;
    }
    OrvMgmtSpiInterfacePortalAccessor accessor{&getPortal};
    OrvReturnT code = init(&accessor, "");
    if (code == OrvOk) {
        code = registered->start(OrvStateChangeReasonHostStart);
    }
    if (code == OrvOk) {
        ask("ManagedElement=north");
        ask("ManagedElement=north,Mast=1");
        ask("ManagedElement=1");
        code = registered->stop(OrvStateChangeReasonHostShutdown);
    }
    terminate();
    registered = nullptr;
    return code == OrvOk ? 0 : 1;
}
// [/load]

}

// [main]
int main(int count, char** arguments) {
    if (count != 2) {
        std::fputs("usage: minimal_host LIBEXT_CM\n", stderr);
        return 2;
    }
    fillRouter();
    Orv::MeIdTranslator::instance()->configure("north", "");
    Orv::Portal::instance()->attach(&getInterface);
    void* library = dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        std::fputs("not a shared object\n", stderr);
        return 1;
    }
    const int status = run(library);
    dlclose(library);
    Orv::Portal::instance()->detach();
    return status;
}
// [/main]
