// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_RUNTIME_PORTALTABLES_H
#define ORV_HOST_RUNTIME_PORTALTABLES_H

#include "OrvMgmtSpiInterfacePortal.h"
#include "base/OnlyOne.h"

namespace OrvHost {

class ComponentRegistry;

/// Which portals a host has. Hosts differ in this; the choice lets you try a component with each
/// kind.
struct PortalVersions {
    bool version1 = true;
    bool version3 = true;
};

/// The portal tables of versions "1" and "3" and the accessor that leads to them, all three over
/// one ComponentRegistry. While this object lives, Orv::Portal looks up through it as well.
///
/// A table function gets no object argument, so only one object of this class can live at a time.
///
/// Threads: as the registry. Build and destroy it while no component is loaded.
class PortalTables {
public:
    /// \p registry must outlive this object. Throws std::logic_error if there is one already.
    explicit PortalTables(ComponentRegistry& registry, PortalVersions versions = {});
    ~PortalTables();
    PortalTables(const PortalTables&) = delete;
    PortalTables& operator=(const PortalTables&) = delete;

    /// The accessor that orvLCMinit is given. Owned by this object.
    OrvMgmtSpiInterfacePortalAccessor* accessor() { return &mAccessor; }

private:
    static void* getPortal(const char* version);
    static OrvReturnT getInterface(VekMgmtSpiInterface_1 id, void** result);
    static OrvReturnT registerComponent(OrvMgmtSpiComponent_1* component);
    static OrvReturnT unregisterComponent(OrvMgmtSpiComponent_1* component);

    OnlyOne<PortalTables> mOnlyOne;
    ComponentRegistry& mRegistry;
    PortalVersions mVersions;
    OrvMgmtSpiInterfacePortalAccessor mAccessor;
    OrvMgmtSpiInterfacePortal_1 mPortal1;
    OrvMgmtSpiInterfacePortal_3 mPortal3;
    static PortalTables* _instance;
};

}

#endif
