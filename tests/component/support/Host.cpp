// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Host.h"

#include "HostCode.h"
#include "MeIdTranslator.h"
#include "Portal.h"
#include "Steps.h"
#include "ToldTables.h"

#include <gtest/gtest.h>

#include <exception>
#include <iostream>
#include <stdexcept>

namespace Scripted {

namespace {

using InitFunction = OrvReturnT (*)(OrvMgmtSpiInterfacePortalAccessor*, const char*);
using TerminateFunction = void (*)();

template <class Function>
Function functionIn(const SharedObject& object, const char* name) {
    return reinterpret_cast<Function>(object.symbol(name));
}

// A table begins with its identity.
template <class Table>
const Table& as(const VekMgmtSpiInterface_1& identity) {
    return *static_cast<const Table*>(static_cast<const void*>(&identity));
}

template <class Function>
Function slotOf(Function slot, const std::string& name) {
    if (slot == nullptr) {
        throw std::runtime_error("Expected: the registered record has a function " + name +
                                 "\nCame: a null pointer");
    }
    return slot;
}

// The call of the component that has this text.
auto callOf(const char* text) {
    return [text] { return std::string(text); };
}

const char* nameOf(OrvStateChangeReason reason) {
    switch (reason) {
    case OrvStateChangeReasonHostStart:
        return "HostStart";
    case OrvStateChangeReasonHostShutdown:
        return "HostShutdown";
    case OrvStateChangeReasonRequested:
        return "Requested";
    }
    return "unknown";
}

// Those who read a failure without the sources want to know what the component did.
void printJournalOfFailure(const Host& host) {
    // An exception on its way out of the case is no failure yet.
    if (!testing::Test::HasFailure() && std::uncaught_exceptions() == 0) {
        return;
    }
    std::cout << "The calls that the host got last, in their order:\n";
    for (const std::string& call : host.calls()) {
        std::cout << "  " << call << '\n';
    }
    std::cout << "The messages for the client:\n";
    for (const std::string& message : host.messages()) {
        std::cout << "  " << message << '\n';
    }
    std::cout.flush();
}

}

/// Writes an interceptor's calls into the journal.
class Host::Observer : public InterceptorObserver {
public:
    Observer(Script& script, std::string name) : mScript(script), mName(std::move(name)) {}

    OrvReturnT getMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                              OrvMoAttributeValueResult_3* result, const Base& base) override {
        const HostCode here;
        return play("getMoAttribute", {arg(txHandle), arg(dn), arg(attrName)}, result, base);
    }
    OrvReturnT getMoAttributes(unsigned long txHandle, const char* dn, const char** attrNames,
                               OrvMoAttributeValuesResult_3* result, const Base& base) override {
        const HostCode here;
        return play("getMoAttributes", {arg(txHandle), arg(dn), arg(attrNames)}, result, base);
    }
    OrvReturnT setMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                              const OrvMoAttributeValueContainer_3* value,
                              const Base& base) override {
        const HostCode here;
        return play("setMoAttribute", {arg(txHandle), arg(dn), arg(attrName), arg(value)}, nullptr,
                    base);
    }
    OrvReturnT setMoAttributes(unsigned long txHandle, const char* dn,
                               OrvMoNamedAttributeValueContainer_3** attributes,
                               const Base& base) override {
        const HostCode here;
        return play("setMoAttributes", {arg(txHandle), arg(dn), arg(attributes)}, nullptr, base);
    }

private:
    OrvReturnT play(const char* function, std::vector<Argument> arguments, void* out,
                    const Base& base) {
        arguments.insert(arguments.begin(), arg(mName.c_str()));
        return mScript.play(Call{std::string("Interceptor.") + function, std::move(arguments), out},
                            base);
    }

    Script& mScript;
    std::string mName;
};

Host::Host() {
    Orv::Portal::instance()->attach(&orvPortalLookup);
    identity("paris", "");
}

Host::~Host() {
    printJournalOfFailure(*this);
    unload();
    Orv::Portal::instance()->detach();
    identity("", "");
    for (const std::string& complaint : mStage.results.complaints()) {
        ADD_FAILURE() << complaint;
    }
}

Host& Host::without(Part part) {
    mStage.missing.insert(part);
    return *this;
}

Host& Host::with(Part part) {
    mStage.missing.erase(part);
    return *this;
}

Host& Host::identity(const std::string& preferred, const std::string& fallback) {
    Orv::MeIdTranslator::instance()->configure(preferred, fallback);
    return *this;
}

Host& Host::logLevel(unsigned int level) {
    Orv::LoggingWrapper::instance()->setLevel(level);
    return *this;
}

Interceptor& Host::interceptor(const std::string& mocPath) {
    Interceptor& made = bareInterceptor(mocPath);
    {
        const Step step(Called::Component, callOf("MoInterceptorBase.initialize()"));
        made.initialize();
    }
    {
        Step step(Called::Component,
                  [&] { return "ExtCmInterceptorRepository.registerClass('" + mocPath + "')"; });
        EXPECT_EQ(step.answered(made.registerClass(mocPath)), OrvOk) << mocPath;
    }
    forget();
    return made;
}

Interceptor& Host::bareInterceptor(const std::string& name) {
    if (!mProbe) {
        mProbe = std::make_unique<SharedObject>("ORV_COMPONENT_PROBE", ORV_COMPONENT_PROBE_DEFAULT);
    }
    const auto make = functionIn<MakeInterceptor>(*mProbe, "makeInterceptor");
    mObservers.push_back(std::make_unique<Observer>(mStage.script, name));
    mInterceptors.emplace_back(make(mObservers.back().get()));
    return *mInterceptors.back();
}

void Host::load() {
    const Step step(Called::Component, callOf("loading the component"));
    mComponent =
        std::make_unique<SharedObject>("ORV_COMPONENT_LIBRARY", ORV_COMPONENT_LIBRARY_DEFAULT);
}

OrvReturnT Host::init(const char* argument) {
    mInitialised = true;
    const auto init = functionIn<InitFunction>(*mComponent, "orvLCMinit");
    Step step(Called::Component, [&] { return "orvLCMinit(accessor, " + quoted(argument) + ")"; });
    return step.answered(init(portalAccessor(), argument));
}

OrvReturnT Host::initWithoutAccessor() {
    const auto init = functionIn<InitFunction>(*mComponent, "orvLCMinit");
    Step step(Called::Component, callOf("orvLCMinit(null, null)"));
    return step.answered(init(nullptr, nullptr));
}

OrvReturnT Host::startComponent(OrvStateChangeReason reason) {
    const auto start = slotOf(record().start, "start");
    slotOf(record().stop, "stop"); // the destructor calls it
    mStarted = true;
    Step step(Called::Component,
              [&] { return std::string("OrvMgmtSpiComponent_1.start(") + nameOf(reason) + ")"; });
    return step.answered(start(reason));
}

OrvReturnT Host::stopComponent() {
    mStarted = false;
    const auto stop = record().stop;
    Step step(Called::Component, callOf("OrvMgmtSpiComponent_1.stop(Requested)"));
    return step.answered(stop(OrvStateChangeReasonRequested));
}

void Host::terminate() {
    mInitialised = false;
    const auto terminate = functionIn<TerminateFunction>(*mComponent, "orvLCMterminate");
    const Step step(Called::Component, callOf("orvLCMterminate()"));
    terminate();
}

void Host::unload() {
    if (mStarted) {
        stopComponent();
    }
    if (mInitialised) {
        terminate();
    }
    mInterceptors.clear();
    mObservers.clear();
    mProbe.reset();
    mStage.registered = nullptr;
    mStage.lastRecord = nullptr;
    if (mComponent) {
        const Step step(Called::Component, callOf("unloading the component"));
        mComponent.reset();
    }
}

void Host::closeAsItIs() {
    mStarted = false;
    mInitialised = false;
    unload();
}

void Host::start() {
    load();
    EXPECT_EQ(init(), OrvOk);
    EXPECT_EQ(startComponent(), OrvOk);
    forget();
}

const OrvMgmtSpiComponent_1& Host::record() const {
    if (mStage.lastRecord == nullptr) {
        throw std::runtime_error(
            "Expected: orvLCMinit calls registerComponent of a portal with the "
            "component's record\nCame: it has registered nothing");
    }
    return *mStage.lastRecord;
}

const VekMgmtSpiInterface_1& Host::offered(std::size_t index,
                                           const VekMgmtSpiInterface_1& identity) const {
    const HostCode here; // what is said here is no allocation of the component
    const std::string expected = "Expected: table " + std::to_string(index) +
                                 " of the registered record is " + arg(identity).text + "\nCame: ";
    VekMgmtSpiInterface_1* const* const tables = record().interfaceArray;
    if (tables == nullptr) {
        throw std::runtime_error(expected + "a record without tables");
    }
    for (std::size_t before = 0; before <= index; ++before) {
        if (tables[before] == nullptr) {
            throw std::runtime_error(expected + "a record with " + std::to_string(before) +
                                     " tables");
        }
    }
    if (arg(*tables[index]).text != arg(identity).text) {
        throw std::runtime_error(expected + arg(*tables[index]).text);
    }
    return *tables[index];
}

Client3 Host::client() const {
    return Client3(
        told(as<OrvOamSpiManagedObject_3>(offered(1, OrvOamSpiManagedObject_3_ExtCmId))));
}

Client3_1 Host::client3_1() const {
    return Client3_1(
        told(as<VekOamSpiManagedObject_3_1>(offered(2, VekOamSpiManagedObject_3_1_ExtCmId))));
}

Client1 Host::client1() const {
    return Client1(
        told(as<OrvOamSpiManagedObject_1>(offered(0, OrvOamSpiManagedObject_1_ExtCmId))));
}

const OrvOamSpiTransactionalResource_2& Host::resource() const {
    return told(
        as<OrvOamSpiTransactionalResource_2>(offered(3, OrvOamSpiTransactionalResource_2_ExtCmId)));
}

void Host::forget() {
    mStage.script.forgetCalls();
    mLogs.forget();
}

}
