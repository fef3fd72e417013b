// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The two functions that a host calls in a shared object, and what stands between the host and the
// component while the component registers, is started, looks up tables and is stopped.

#include "HostTables.h"
#include "Lasting.h"
#include "OrvMgmtSpiInterfacePortal.h"
#include "Portal.h"
#include "Settings.h"
#include "Taps.h"
#include "Tell.h"

#include <stdexcept>
#include <string>
#include <vector>

#include <dlfcn.h>

#define ORV_RECORD_API extern "C" __attribute__((visibility("default")))

ORV_RECORD_API OrvReturnT orvLCMinit(OrvMgmtSpiInterfacePortalAccessor* accessor,
                                     const char* argument);
ORV_RECORD_API void orvLCMterminate();

namespace OrvRecord {

namespace {

using InitFn = OrvReturnT (*)(OrvMgmtSpiInterfacePortalAccessor*, const char*);
using TerminateFn = void (*)();

// True if the host has made the functions of this shared object known to all that it loads later.
// Interceptors may then look for those of the component in the same way.
bool isGlobal() {
    return dlsym(RTLD_DEFAULT, "orvLCMinit") == reinterpret_cast<void*>(&orvLCMinit);
}

void closeLibrary();
void giveLookupBack();

/// The component that is recorded. How long it is open: Lasting.h.
struct Library {
    void* handle = nullptr;
    InitFn init = nullptr;
    TerminateFn terminate = nullptr;

    void open(const std::string& path) {
        if (handle != nullptr) {
            return;
        }
        void* const opened =
            dlopen(path.c_str(), RTLD_NOW | (isGlobal() ? RTLD_GLOBAL : RTLD_LOCAL));
        if (opened == nullptr) {
            throw std::runtime_error(dlerror()); // NOLINT(concurrency-mt-unsafe): kept per thread
        }
        init = reinterpret_cast<InitFn>(dlsym(opened, "orvLCMinit"));
        terminate = reinterpret_cast<TerminateFn>(dlsym(opened, "orvLCMterminate"));
        if (init == nullptr || terminate == nullptr) {
            init = nullptr;
            terminate = nullptr;
            dlclose(opened);
            throw std::runtime_error(path + " has no entry points orvLCMinit and orvLCMterminate");
        }
        if (init == &orvLCMinit) {
            init = nullptr;
            terminate = nullptr;
            dlclose(opened);
            throw std::runtime_error(path + " is the recorder itself");
        }
        handle = opened;
        atClose(closeLibrary);
    }
};

Library library;
OrvMgmtSpiInterfacePortalAccessor* hostAccessor = nullptr;
OrvMgmtSpiInterfacePortal_1* hostPortal1 = nullptr;
OrvMgmtSpiInterfacePortal_3* hostPortal3 = nullptr;
Orv::Portal::LookupFn hostLookup = nullptr;

/// What the host sees in place of the component's record.
struct Front1 {
    OrvMgmtSpiComponent_1* real = nullptr;
    OrvMgmtSpiComponent_1 record{};
    std::vector<VekMgmtSpiInterface_1*> offered;
};

Front1& component() {
    return lasting<Front1>();
}

// Of two shared objects that are closed together the outer one ends first. Values of the host that
// the component still keeps for transactions are released through the recorder: that must be done
// before. To stop a component that is stopped is legal.
void closeLibrary() {
    OrvMgmtSpiComponent_1* const real = component().real;
    if (isWaitingForRelease() && real != nullptr && real->stop != nullptr) {
        real->stop(OrvStateChangeReasonHostShutdown);
    }
    giveLookupBack(); // the host may have left orvLCMterminate out
    forgetInterceptors();
    dlclose(library.handle);
}

constexpr CallName life(LifeSlot slot) {
    return {Side::Component, Shape::Life, static_cast<std::uint8_t>(slot), 0};
}

constexpr CallName portal(PortalSlot slot, std::uint32_t version = 0) {
    return {Side::Host, Shape::Portal, static_cast<std::uint8_t>(slot), version};
}

// Which table comes out is written whatever the code is: the component keeps what is written.
OrvReturnT lookUp(const CallName& name, Orv::Portal::LookupFn lookup, VekMgmtSpiInterface_1 id,
                  void** result) {
    void* found = result != nullptr ? *result : nullptr;
    void* const before = found;
    CallFrame frame(name);
    frame.begin([&](ByteWriter& out) {
        Identity::in(out, id);
        Present::in(out, result);
    });
    const OrvReturnT code =
        frame.watch([&] { return lookup(id, result != nullptr ? &found : nullptr); });
    const bool isWritten = found != before;
    const TableName table = tapHostTable(id, found);
    if (isWritten) {
        *result = found;
    }
    frame.end(static_cast<std::uint32_t>(code), [&](Outcome<ByteWriter> outcome) {
        outcome.values.byte(!isWritten ? 0 : found == nullptr ? 1 : 2);
        outcome.values.byte(static_cast<std::uint8_t>(table.shape));
        outcome.values.number(table.instance);
    });
    return code;
}

OrvReturnT getInterface1(VekMgmtSpiInterface_1 id, void** result) {
    return lookUp(portal(PortalSlot::GetInterface, 1), hostPortal1->getInterface, id, result);
}

OrvReturnT getInterface3(VekMgmtSpiInterface_1 id, void** result) {
    return lookUp(portal(PortalSlot::GetInterface, 3), hostPortal3->getInterface, id, result);
}

OrvReturnT getInterfaceOfHelper(VekMgmtSpiInterface_1 id, void** result) {
    return lookUp(portal(PortalSlot::Lookup), hostLookup, id, result);
}

// The helper library answers the component from the tables that it knows. It is to know those that
// record; what it has found before is looked up again.
void standBeforeLookup() {
    Orv::Portal* const helper = Orv::Portal::instance();
    const Orv::Portal::LookupFn present = helper->lookup();
    if (present != nullptr && present != &getInterfaceOfHelper) {
        hostLookup = present;
        helper->attach(&getInterfaceOfHelper);
        std::string attached;
        EventWriter(attached).text(EventKind::Attached, "");
        noteBeforeNextCall(attached);
    }
}

void giveLookupBack() {
    Orv::Portal* const helper = Orv::Portal::instance();
    if (helper->lookup() == &getInterfaceOfHelper) {
        helper->attach(hostLookup);
    }
}

OrvReturnT start(OrvStateChangeReason reason) {
    try {
        standBeforeLookup();
    } catch (const std::exception&) {
        recordFile().stop("there is no memory");
    }
    return recordedCall<Number>(life(LifeSlot::Start), component().real->start, reason);
}

OrvReturnT stop(OrvStateChangeReason reason) {
    return recordedCall<Number>(life(LifeSlot::Stop), component().real->stop, reason);
}

void renewRecord(OrvMgmtSpiComponent_1* real) {
    Front1& front = component();
    front.real = real;
    front.record = *real;
    front.record.start = real->start != nullptr ? &start : nullptr;
    front.record.stop = real->stop != nullptr ? &stop : nullptr;
    if (real->interfaceArray == nullptr) {
        return;
    }
    front.offered.clear();
    for (VekMgmtSpiInterface_1** offered = real->interfaceArray; *offered != nullptr; ++offered) {
        front.offered.push_back(tapOffered(*offered, library.handle));
    }
    front.offered.push_back(nullptr);
    front.record.interfaceArray = front.offered.data();
}

template <class Portal>
OrvReturnT registerRecorded(std::uint32_t version, Portal* host, OrvMgmtSpiComponent_1* real) {
    if (real != nullptr) {
        renewRecord(real);
    }
    const auto callee = [&](OrvMgmtSpiComponent_1* given) {
        return host->registerComponent(given != nullptr ? &component().record : nullptr);
    };
    return recordedCall<ComponentRecord>(portal(PortalSlot::Register, version), callee, real);
}

template <class Portal>
OrvReturnT unregisterRecorded(std::uint32_t version, Portal* host, OrvMgmtSpiComponent_1* real) {
    const auto callee = [&](OrvMgmtSpiComponent_1* given) {
        return host->unregisterComponent(given == component().real ? &component().record : given);
    };
    return recordedCall<Present>(portal(PortalSlot::Unregister, version), callee, real);
}

OrvReturnT registerComponent1(OrvMgmtSpiComponent_1* real) {
    return registerRecorded(1, hostPortal1, real);
}

OrvReturnT registerComponent3(OrvMgmtSpiComponent_1* real) {
    return registerRecorded(3, hostPortal3, real);
}

OrvReturnT unregisterComponent1(OrvMgmtSpiComponent_1* real) {
    return unregisterRecorded(1, hostPortal1, real);
}

OrvReturnT unregisterComponent3(OrvMgmtSpiComponent_1* real) {
    return unregisterRecorded(3, hostPortal3, real);
}

OrvMgmtSpiInterfacePortal_1 portal1{};
OrvMgmtSpiInterfacePortal_3 portal3{};

/// Makes \p front of the portal \p real, which \p host remembers.
template <auto getInterface, auto registerComponent, auto unregisterComponent, class Portal>
void* putInFront(Portal*& host, Portal& front, void* real) {
    host = static_cast<Portal*>(real);
    front = *host;
    front.getInterface = getInterface;
    front.registerComponent = registerComponent;
    front.unregisterComponent = unregisterComponent;
    return &front;
}

void* frontOfPortal(const char* version, void* real) {
    if (real == nullptr || version == nullptr) {
        return real;
    }
    if (std::strcmp(version, "1") == 0) {
        return putInFront<&getInterface1, &registerComponent1, &unregisterComponent1>(
            hostPortal1, portal1, real);
    }
    if (std::strcmp(version, "3") == 0) {
        return putInFront<&getInterface3, &registerComponent3, &unregisterComponent3>(
            hostPortal3, portal3, real);
    }
    return real;
}

void* getPortal(const char* version) {
    CallFrame frame(portal(PortalSlot::GetPortal));
    frame.begin([&](ByteWriter& out) { Text::in(out, version); });
    void* const table =
        frame.watch([&] { return frontOfPortal(version, hostAccessor->getPortal(version)); });
    frame.end(0, [&](Outcome<ByteWriter> outcome) { Present::in(outcome.values, table); });
    return table;
}

OrvMgmtSpiInterfacePortalAccessor accessor{&getPortal};

// The component makes its static objects while it is initialized, also if that fails.
struct NoticeAfter {
    NoticeAfter() = default;
    NoticeAfter(const NoticeAfter&) = delete;
    NoticeAfter& operator=(const NoticeAfter&) = delete;
    ~NoticeAfter() { noticeEndOfProcess(); }
};

void openAll() {
    static bool isOpen = false;
    const Settings settings = readSettings(reinterpret_cast<const void*>(&openAll));
    library.open(settings.component);
    if (!isOpen) {
        isOpen = true;
        recordFile().open(settings.file, settings.mostBytes);
        std::string origin;
        EventWriter(origin).text(EventKind::Origin, settings.component);
        noteBeforeNextCall(origin);
    }
}

}

OrvReturnT init(OrvMgmtSpiInterfacePortalAccessor* given, const char* argument) {
    try {
        openAll();
    } catch (const std::exception& failure) {
        tell(std::string("no component is loaded: ") + failure.what());
        return OrvFailure;
    }
    hostAccessor = given;
    const NoticeAfter initialization;
    return recordedCall<Present, Text>(life(LifeSlot::Init), library.init,
                                       given != nullptr ? &accessor : nullptr, argument);
}

void terminate() {
    if (library.terminate == nullptr) {
        return;
    }
    const auto callee = [] {
        library.terminate();
        return OrvOk;
    };
    recordedCall<>(life(LifeSlot::Terminate), callee);
    giveLookupBack();
}

}

ORV_RECORD_API OrvReturnT orvLCMinit(OrvMgmtSpiInterfacePortalAccessor* accessor,
                                     const char* argument) {
    return OrvRecord::init(accessor, argument);
}

ORV_RECORD_API void orvLCMterminate() {
    OrvRecord::terminate();
}
