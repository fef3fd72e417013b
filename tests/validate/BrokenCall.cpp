// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// A component that starts, and breaks in the call after CALLS_BEFORE others: it crashes, is killed,
// hangs, ends the process as if all were well, throws, or asks the host a thousand times and then
// hangs. Before it breaks it looks up a table, which the host sees. It has only the slots that the
// cases of its tests call.

#include "OrvMgmtSpiComponent_1.h"
#include "OrvMgmtSpiInterfacePortal.h"
#include "OrvOamSpiManagedObject_1.h"
#include "OrvOamSpiManagedObject_3.h"

#include <csignal>

#include <unistd.h>

namespace {

OrvMgmtSpiInterfacePortal_1* portal = nullptr;

void ask(const char* name) {
    void* table = nullptr;
    portal->getInterface({name, "Nothing", "1"}, &table);
}

[[noreturn]] void fail() {
    ask("broken");
#if defined(CALL_CRASHES)
    std::signal(SIGSEGV, SIG_DFL); // sanitizers have a report of their own in its place
    std::raise(SIGSEGV);
#elif defined(CALL_IS_KILLED)
    std::raise(SIGKILL);
#elif defined(CALL_ENDS)
    _exit(0);
#elif defined(CALL_THROWS)
    throw 42;
#elif defined(CALL_ASKS)
    for (int times = 0; times < 1000; ++times) {
        ask("again");
    }
#endif
    for (;;) {
        pause();
    }
}

OrvReturnT succeedAtFirst() {
    static int calls = 0;
    if (calls++ < CALLS_BEFORE) {
        return OrvOk;
    }
    fail();
}

OrvReturnT set(unsigned long, const char*, const char*, const OrvMoAttributeValueContainer_3*) {
    return succeedAtFirst();
}

OrvReturnT open(unsigned long, const char*, const char*, unsigned long long* iterator) {
    *iterator = 4711;
    return succeedAtFirst();
}

OrvReturnT change(OrvStateChangeReason) {
    return OrvOk;
}

}

extern "C" OrvReturnT orvLCMinit(OrvMgmtSpiInterfacePortalAccessor* accessor, const char*) {
    static OrvOamSpiManagedObject_1 version1 = {};
    static OrvOamSpiManagedObject_3 version3 = {};
    version1.identity = OrvOamSpiManagedObject_1_ExtCmId;
    version3.identity = OrvOamSpiManagedObject_3_ExtCmId;
    version3.setMoAttribute = &set;
    version3.newMoIterator = &open;
    static VekMgmtSpiInterface_1* tables[] = {&version1.identity, &version3.identity, nullptr};
    static VekMgmtSpiInterface_1* none[] = {nullptr};
    static OrvMgmtSpiComponent_1 record = {OrvOamSpiExtCmRouterService,
                                           "OrvMgmtSpiComponent",
                                           "1",
                                           tables,
                                           none,
                                           &change,
                                           &change,
                                           none,
                                           false};
    portal = static_cast<OrvMgmtSpiInterfacePortal_1*>(accessor->getPortal("1"));
    return portal->registerComponent(&record);
}

extern "C" void orvLCMterminate() {}
