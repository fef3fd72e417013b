// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "PortalTables.h"

#include "ComponentRegistry.h"
#include "OrvInterfaceBinders.h"
#include "Portal.h"

#include <cstring>

namespace OrvHost {

namespace {

constexpr const char* kComponentName = "OrvMgmtSpiPortalService";

}

PortalTables* PortalTables::_instance = nullptr;

PortalTables::PortalTables(ComponentRegistry& registry, PortalVersions versions)
    : mRegistry(registry),
      mVersions(versions),
      mAccessor{&getPortal},
      mPortal1{orvSpiOfferedBy(OrvMgmtSpiInterfacePortal_1_Id, kComponentName), &getInterface,
               nullptr, &registerComponent, &unregisterComponent},
      mPortal3{orvSpiOfferedBy(OrvMgmtSpiInterfacePortal_3_Id, kComponentName), &getInterface,
               nullptr, &registerComponent, &unregisterComponent} {
    _instance = this;
    Orv::Portal::instance()->attach(&getInterface);
}

PortalTables::~PortalTables() {
    Orv::Portal::instance()->detach();
    _instance = nullptr;
}

void* PortalTables::getPortal(const char* version) {
    if (_instance == nullptr || version == nullptr) {
        return nullptr;
    }
    if (std::strcmp(version, "1") == 0 && _instance->mVersions.version1) {
        return &_instance->mPortal1;
    }
    if (std::strcmp(version, "3") == 0 && _instance->mVersions.version3) {
        return &_instance->mPortal3;
    }
    return nullptr;
}

OrvReturnT PortalTables::getInterface(VekMgmtSpiInterface_1 id, void** result) {
    return Orv::shielded([&] { return _instance->mRegistry.find(id, result); });
}

OrvReturnT PortalTables::registerComponent(OrvMgmtSpiComponent_1* component) {
    return Orv::shielded([&] { return _instance->mRegistry.registerComponent(component); });
}

OrvReturnT PortalTables::unregisterComponent(OrvMgmtSpiComponent_1* component) {
    return Orv::shielded([&] { return _instance->mRegistry.unregisterComponent(component); });
}

}
