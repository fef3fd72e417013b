// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The whole component, in a host that answers as the input says: with failures, exceptions and lies
// at any call, for clients of all versions that hand over anything. Nothing of that ends the
// process. If the component cannot read what it must read, it refuses the operation before it does
// anything. No lock stays held, each result is released once, and each transaction is joined once.
// After the end of the component nothing of it is left. Equal runs have equal events. With
// FUZZ_COMPONENT_SHOW in the environment the events are shown.

#include "component/Client.h"
#include "component/Host.h"
#include "component/LoadedComponent.h"

#include "LoggingWrapper.h"
#include "MeIdTranslator.h"
#include "Portal.h"
#include "support/Require.h"

using namespace Fuzz;

namespace {

/// How a run is done, beside what happens in it.
struct Conditions {
    bool runsTwice;
    bool asksOtherThread; ///< after each operation
    bool beginsBadly;     ///< announces itself while the host is not honest
    bool isPatient;
    unsigned int logLevel;
};

Conditions readConditions(ByteSource& source) {
    const std::uint8_t flags = source.byte();
    return {flags % 4 == 1, flags / 4 % 8 == 7, flags / 32 % 4 == 3,
            flags == 0xFF && source.byte() == 0xA5, flags / 128 == 1 ? 8U : 4U};
}

/// Makes the component announce itself to an honest host.
void announce(Host& host) {
    const Host::Pause honest(host);
    host.begin("init");
    require(LoadedComponent::instance().init(portalAccessor(), nullptr) == OrvOk,
            "cannot be initialised");
}

/// Terminates and initialises in the host as it is, with any outcome, then in an honest host.
void announceAgain(Host& host) {
    host.begin("terminate and init");
    LoadedComponent::instance().terminate();
    try {
        LoadedComponent::instance().init(portalAccessor(), "");
    } catch (const std::exception&) {
        require(host.hasThrown, "orvLCMinit throws");
    } catch (const OtherException&) {
        require(host.hasThrownOther, "orvLCMinit throws");
    }
    announce(host);
}

/// Formats what it gets, as a host's sink does; one in many is not taken.
void listen(const Orv::LogRecord& record) {
    static std::string formatted;
    formatted = record.file + record.function + record.text;
    Host& host = Host::current();
    host.journal.word(record.function).number(record.level);
    host.play(Slot::Log, [] { return OrvOk; });
}

/// What is done once, before the first input.
bool begin() {
    ByteSource none(nullptr, 0);
    Host host(nullptr, 0, none, 0);
    announce(host);
    Orv::LoggingWrapper::instance()->setSink(&listen);
    return true;
}

std::string run(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kMostOperations = 64;
    constexpr unsigned long kHandlesOfRun = 16;
    static unsigned long nextHandle = 0; // transactions are never used again: see the work list
    ByteSource source(data, size);
    const Conditions conditions = readConditions(source);
    Host host(data, size, source, nextHandle);
    nextHandle += kHandlesOfRun;
    host.isPatient = conditions.isPatient;
    Orv::Portal::instance()->attach(&portalLookup);
    Orv::MeIdTranslator::instance()->configure(kRootIdentity, "");
    Orv::LoggingWrapper::instance()->setLevel(conditions.logLevel);
    if (conditions.beginsBadly) {
        announceAgain(host);
    }
    {
        Client client(host, source, conditions.asksOtherThread);
        client.start();
        for (std::size_t left = kMostOperations; left > 0 && !source.isEmpty(); --left) {
            client.operate();
        }
        client.endAll();
    }
    return host.journal.events();
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool isReady = begin();
    const std::string events = run(data, size);
    ByteSource source(data, size);
    if (isReady && readConditions(source).runsTwice) {
        require(run(data, size) == events, "an equal run has other events");
    }
    return 0;
}
