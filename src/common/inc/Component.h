// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_COMMON_COMPONENT_H
#define ORV_COMMON_COMPONENT_H

#include "OrvInterfaceBinders.h"
#include "OrvMgmtSpiComponent_1.h"
#include "OrvMgmtSpiInterfacePortal.h"
#include "OrvReturn.h"

#include <vector>

namespace Orv {

/// For authors of components; a host does not need it.
///
/// Base of the one service object of a loadable component: builds the record that the host is given
/// and carries the host's calls to the virtual operations of \p T, which derives from this class.
///
/// \p T names what it offers and requires in its constructor, by filling mInterfaces and
/// mDependencies. The shared object's orvLCMinit and orvLCMterminate call lcmInit and lcmTerminate.
///
/// Conventions: OrvConventions.h.
///
/// Threads: building the object is safe against races; beyond that the host calls lcmInit,
/// lcmTerminate, start and stop one at a time.
template <class T>
class Component {
public:
    /// The one object, built on first use and destroyed when the shared object is closed or the
    /// process exits.
    static T& instance() {
        static T theInstance;
        return theInstance;
    }

    Component(const Component&) = delete;
    Component& operator=(const Component&) = delete;

    /// Called once the component has been registered. \p argument is the text given to orvLCMinit,
    /// borrowed. Its code is that of orvLCMinit.
    virtual OrvReturnT initialize(const char* argument) = 0;
    /// Called before the registration is taken back, by every orvLCMterminate.
    virtual void terminate() = 0;
    /// The slots of the record. A std::exception becomes OrvFailure.
    virtual OrvReturnT start(OrvStateChangeReason reason) = 0;
    virtual OrvReturnT stop(OrvStateChangeReason reason) = 0;
    virtual ~Component() = default;

    /// The body of orvLCMinit: registers with the portal of version "3", or else "1", and runs
    /// initialize. May run more than once. Not shielded: an exception passes to the caller. \p
    /// accessor is the host's and is kept. OrvFailure if it is null or the host has no portal "1";
    /// the code of registerComponent if that is not zero; otherwise that of initialize.
    static OrvReturnT lcmInit(OrvMgmtSpiInterfacePortalAccessor* accessor, const char* argument) {
        Component& component = instance();
        if (accessor == nullptr) {
            return OrvFailure;
        }
        component.mPortalAccessor = accessor;
        component.mPortal1 = static_cast<OrvMgmtSpiInterfacePortal_1*>(accessor->getPortal("1"));
        component.mPortal3 = static_cast<OrvMgmtSpiInterfacePortal_3*>(accessor->getPortal("3"));
        if (component.mPortal1 == nullptr) {
            return OrvFailure;
        }
        component.fillRecord();
        const OrvReturnT registered =
            component.mPortal3 != nullptr
                ? component.mPortal3->registerComponent(&component.mRecord)
                : component.mPortal1->registerComponent(&component.mRecord);
        if (registered != OrvOk) {
            return registered;
        }
        return component.initialize(argument);
    }

    /// The body of orvLCMterminate. A registration that went through the portal of version "1" is
    /// left in place: that portal is never asked to take one back.
    static void lcmTerminate() {
        Component& component = instance();
        component.terminate();
        if (component.mPortal3 != nullptr) {
            component.mPortal3->unregisterComponent(&component.mRecord);
            component.mPortal3 = nullptr;
        }
    }

protected:
    /// \p componentName is a constant text.
    explicit Component(const char* componentName) {
        mRecord.componentName = componentName;
        mRecord.interfaceName = OrvMgmtSpiComponent_1_Id.interfaceName;
        mRecord.interfaceVersion = OrvMgmtSpiComponent_1_Id.interfaceVersion;
        mRecord.start = &OrvLcmStartFn;
        mRecord.stop = &OrvLcmStopFn;
    }

    OrvMgmtSpiInterfacePortalAccessor* mPortalAccessor = nullptr;
    OrvMgmtSpiInterfacePortal_1* mPortal1 = nullptr;
    OrvMgmtSpiInterfacePortal_3* mPortal3 = nullptr; ///< null where the host has none
    OrvMgmtSpiComponent_1 mRecord = {};
    std::vector<VekMgmtSpiInterface_1*> mInterfaces;      ///< offered, without terminator
    std::vector<VekMgmtSpiInterface_1*> mInterfaceArray;  ///< what the record points at
    std::vector<VekMgmtSpiInterface_1*> mDependencies;    ///< required, without terminator
    std::vector<VekMgmtSpiInterface_1*> mDependencyArray; ///< what the record points at
    std::vector<VekMgmtSpiInterface_1*> mEmptyArray;      ///< terminators only

private:
    static OrvReturnT OrvLcmStartFn(OrvStateChangeReason reason) {
        return shielded([&] { return static_cast<Component&>(instance()).start(reason); });
    }
    static OrvReturnT OrvLcmStopFn(OrvStateChangeReason reason) {
        return shielded([&] { return static_cast<Component&>(instance()).stop(reason); });
    }

    // The source vectors keep no terminator, so that a second run does not double anything.
    void fillRecord() {
        mInterfaceArray = mInterfaces;
        mDependencyArray = mDependencies;
        mInterfaceArray.push_back(nullptr);
        mDependencyArray.push_back(nullptr);
        mEmptyArray.push_back(nullptr);
        mRecord.componentFlag = false;
        mRecord.interfaceArray = mInterfaceArray.data();
        mRecord.dependencyArray = mDependencyArray.data();
        mRecord.emptyInterfaceArray = mEmptyArray.data();
    }
};

}

#endif
