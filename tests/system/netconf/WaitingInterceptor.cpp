// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// A component whose interceptor holds a write to a radio unit, once it is in the router, as long as
// there is a file with the name in ORV_TEST_HOLD. It holds one write, and says so by a file with
// that name and ".held" behind it.

#include <orv/Component.h>
#include <orv/ExtCmInterceptorRepository.h>
#include <orv/MoInterceptorBase.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>

#include <unistd.h>

namespace {

constexpr const char* kMocPath = "ManagedElement,Equipment,RadioUnit";

class WaitingInterceptor : public OrvExtCmRouterService::MoInterceptorBase {
public:
    OrvReturnT enter() {
        initialize();
        return repository != nullptr ? repository->registerClass(*this, kMocPath) : OrvFailure;
    }
    void leave() { repository->deregisterClass(kMocPath); }

    OrvReturnT setMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                              const OrvMoAttributeValueContainer_3* value) override {
        const OrvReturnT code = MoInterceptorBase::setMoAttribute(txHandle, dn, attrName, value);
        hold();
        return code;
    }
    OrvReturnT setMoAttributes(unsigned long txHandle, const char* dn,
                               VekMoNamedAttributeValueContainer_3** attributes) override {
        const OrvReturnT code = MoInterceptorBase::setMoAttributes(txHandle, dn, attributes);
        hold();
        return code;
    }

private:
    void hold() {
        const char* const file = std::getenv("ORV_TEST_HOLD");
        if (file == nullptr || access(file, F_OK) != 0 || mHasHeld.exchange(true)) {
            return;
        }
        std::ofstream(std::string(file) + ".held").close();
        while (access(file, F_OK) == 0) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }

    std::atomic<bool> mHasHeld = false;
};

class WaitingComponent : public Orv::Component<WaitingComponent> {
public:
    WaitingComponent()
        : Component("WaitingService"),
          mRepositoryIdentity(OrvExtCmRouterService::ExtCmInterceptorRepositoryI_1_Id) {
        mDependencies.push_back(&mRepositoryIdentity);
    }

private:
    OrvReturnT initialize(const char*) override { return OrvOk; }
    void terminate() override {}
    OrvReturnT start(OrvStateChangeReason) override { return mInterceptor.enter(); }
    OrvReturnT stop(OrvStateChangeReason) override {
        mInterceptor.leave();
        return OrvOk;
    }

    VekMgmtSpiInterface_1 mRepositoryIdentity;
    WaitingInterceptor mInterceptor;
};

}

extern "C" {

__attribute__((visibility("default"))) OrvReturnT
orvLCMinit(OrvMgmtSpiInterfacePortalAccessor* accessor, const char* argument) {
    return WaitingComponent::lcmInit(accessor, argument);
}

__attribute__((visibility("default"))) void orvLCMterminate() {
    WaitingComponent::lcmTerminate();
}
}
