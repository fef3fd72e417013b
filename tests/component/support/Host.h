// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_COMPONENT_SUPPORT_HOST_H
#define ORV_TESTS_COMPONENT_SUPPORT_HOST_H

#include "Clients.h"
#include "Interceptor.h"
#include "LogCapture.h"
#include "OrvMgmtSpiComponent_1.h"
#include "OrvOamSpiTransactionalResource_2.h"
#include "SharedObject.h"
#include "Stage.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Scripted {

/// A host that does what a test tells it and writes down every call it gets, with the component's
/// built shared object loaded into it. A test reads: given, when, then the calls.
///
///     Host host;
///     host.mo("ManagedElement=1,Unit=7").with("label", strings({"x"}));
///     host.when("Router3.getMoAttribute").once().fails(-5);
///     host.start();
///     EXPECT_EQ(host.client().get(1, "ManagedElement=paris,Unit=7", "label").code, -5);
///     EXPECT_THAT(host.calls(), ElementsAre("Router3.getMoAttribute(1, ...)"));
///
/// DNs in the scene are internal, those of clients external; "paris" is the identity of the
/// ManagedElement unless a test sets another.
///
/// The destructor puts everything back: the component is stopped, terminated and closed, and the
/// helper library is as it was at first. It fails the test if a result that the host or an
/// interceptor gave has not been released exactly once.
///
/// Threads: the scene is set and the component started on one thread; clients may then be used on
/// any.
class Host {
public:
    Host();
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;
    ~Host();

    // The scene.
    Host& without(Part part);
    Host& with(Part part);
    Host& identity(const std::string& preferred, const std::string& fallback);
    Host& logLevel(unsigned int level);
    World::MoBuilder mo(const std::string& dn) { return mStage.world.mo(dn); }
    Model& model() { return mStage.model; }
    /// A departure from what a function ordinarily does.
    Departure& when(const std::string& call) { return mStage.script.when(call); }
    /// A new interceptor, registered under \p mocPath; its calls are "Interceptor.*" with the path
    /// as first argument. The component must be started.
    Interceptor& interceptor(const std::string& mocPath);
    /// The same, neither initialised nor registered. The component must be loaded.
    Interceptor& bareInterceptor(const std::string& name);

    // The component's life, step by step; each step needs the ones above it.
    void load();
    OrvReturnT init(const char* argument = nullptr);
    /// orvLCMinit without an accessor.
    OrvReturnT initWithoutAccessor();
    OrvReturnT startComponent(OrvStateChangeReason reason = OrvStateChangeReasonHostStart);
    OrvReturnT stopComponent();
    void terminate();
    void unload();
    /// Closes the component as it is, neither stopped nor terminated, as the end of a process does.
    void closeAsItIs();
    /// All up to startComponent, which must succeed; then the journal and the logs are empty.
    void start();

    // What the component offers. It must have been registered, or have tried: otherwise these, like
    // the steps that need its record, throw std::runtime_error, which says what is missing.
    // The tables of the clients and the resource do what those in the record do; orv-validate is
    // told of their calls.
    const OrvMgmtSpiComponent_1& record() const;
    OrvMgmtSpiComponent_1* registered() const { return mStage.registered; }
    Client3 client() const;
    Client3_1 client3_1() const;
    Client1 client1() const;
    const OrvOamSpiTransactionalResource_2& resource() const;

    // What came of it.
    std::vector<std::string> calls(const std::string& prefix = "") const {
        return mStage.script.texts(prefix);
    }
    std::vector<Call> callRecords(const std::string& prefix = "") const {
        return mStage.script.calls(prefix);
    }
    std::vector<std::string> logs() const { return mLogs.lines(); }
    std::vector<Orv::LogRecord> logRecords() const { return mLogs.records(); }
    /// What was reported to the client through the thread context.
    std::vector<std::string> messages() const { return mStage.messages(); }
    const World& world() const { return mStage.world; }
    Results& results() { return mStage.results; }
    Script& script() { return mStage.script; }
    /// Empties the journal and the logs.
    void forget();

private:
    class Observer;

    // The table at a position of the record. Throws if another one, or none, is there.
    const VekMgmtSpiInterface_1& offered(std::size_t index,
                                         const VekMgmtSpiInterface_1& identity) const;

    Stage mStage;
    LogCapture mLogs;
    std::unique_ptr<SharedObject> mComponent;
    std::unique_ptr<SharedObject> mProbe;
    std::vector<std::unique_ptr<InterceptorObserver>> mObservers;
    std::vector<std::unique_ptr<Interceptor>> mInterceptors;
    bool mInitialised = false;
    bool mStarted = false;
};

}

#endif
