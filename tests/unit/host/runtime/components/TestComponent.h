// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_TESTCOMPONENT_H
#define ORV_TESTS_TESTCOMPONENT_H

#include "OrvMgmtSpiComponent_1.h"
#include "OrvMgmtSpiInterfacePortal.h"

#include <string>
#include <utility>
#include <vector>

#define TEST_EXPORT extern "C" __attribute__((visibility("default")))

namespace TestComponents {

/// A table of the tests' host, with which components report what happens to them.
struct Recorder {
    OrvMgmtSpiInterface_1 identity;
    void (*record)(const char* event);
};

constexpr OrvMgmtSpiInterface_1 kRecorderIdentity{"TestHost", "Recorder", "1"};

/// A minimal component. Uses the portal of one version for everything.
class TestComponent {
public:
    using Step = OrvReturnT (*)(OrvStateChangeReason);

    TestComponent(const char* name, std::vector<VekMgmtSpiInterface_1*> offers,
                  std::vector<VekMgmtSpiInterface_1*> needs, Step start, Step stop)
        : mName(name), mOffers(std::move(offers)), mNeeds(std::move(needs)) {
        mOffers.push_back(nullptr);
        mNeeds.push_back(nullptr);
        mRecord.componentName = name;
        mRecord.interfaceName = "OrvMgmtSpiComponent";
        mRecord.interfaceVersion = "1";
        mRecord.interfaceArray = mOffers.data();
        mRecord.dependencyArray = mNeeds.data();
        mRecord.start = start;
        mRecord.stop = stop;
        mRecord.emptyInterfaceArray = mEmpty;
    }

    /// Finds the portal and the recorder.
    void connect(OrvMgmtSpiInterfacePortalAccessor* accessor) {
        mPortal = static_cast<OrvMgmtSpiInterfacePortal_3*>(accessor->getPortal("3"));
        void* table = nullptr;
        if (mPortal->getInterface(kRecorderIdentity, &table) == OrvOk) {
            mRecorder = static_cast<Recorder*>(table);
        }
    }

    OrvReturnT registerRecord() { return mPortal->registerComponent(&mRecord); }
    void unregisterRecord() { mPortal->unregisterComponent(&mRecord); }
    OrvMgmtSpiComponent_1* record() { return &mRecord; }
    OrvMgmtSpiInterfacePortal_3* portal() { return mPortal; }

    void report(const char* event) const {
        if (mRecorder != nullptr) {
            mRecorder->record((mName + "." + event).c_str());
        }
    }

private:
    std::string mName;
    std::vector<VekMgmtSpiInterface_1*> mOffers;
    std::vector<VekMgmtSpiInterface_1*> mNeeds;
    VekMgmtSpiInterface_1* mEmpty[1] = {nullptr};
    OrvMgmtSpiComponent_1 mRecord = {};
    OrvMgmtSpiInterfacePortal_3* mPortal = nullptr;
    Recorder* mRecorder = nullptr;
};

/// The only component of the shared object that this is compiled into; each shared object defines
/// it.
TestComponent& component();

inline OrvReturnT tellStart(OrvStateChangeReason) {
    component().report("start");
    return OrvOk;
}

inline OrvReturnT tellStop(OrvStateChangeReason) {
    component().report("stop");
    return OrvOk;
}

inline OrvReturnT soundInit(OrvMgmtSpiInterfacePortalAccessor* accessor) {
    component().connect(accessor);
    component().report("init");
    return component().registerRecord();
}

inline void soundTerminate() {
    component().report("terminate");
    component().unregisterRecord();
}

}

#endif
