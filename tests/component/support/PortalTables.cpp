// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Stage.h"

#include "HostCode.h"

#include <cstring>

namespace Scripted {

namespace {

/// One thing that can be looked up, and what it takes to be there.
struct Offer {
    VekMgmtSpiInterface_1 id;
    Part part;
    void* table;
};

const std::vector<Offer>& offers() {
    static const std::vector<Offer> all = {
        {{"OrvOamSpiCmRouterService", "OrvOamSpiManagedObject", "1"},
         Part::Router1,
         router1Table()},
        {{"OrvOamSpiCmRouterService", "OrvOamSpiManagedObject", "3"},
         Part::Router3,
         router3Table()},
        {{"VekOamSpiCmRouterService", "VekOamSpiManagedObject", "3_1"},
         Part::Router3_1,
         router3_1Table()},
        {{"VekOamSpiCmRouterService", "VekOamSpiManagedObject", "3"},
         Part::VekRouter3,
         vekRouter3Table()},
        {{"VekOamSpiModelRepositoryService", "VekOamSpiModelRepository", "4"},
         Part::ModelRepository,
         modelRepositoryTable()},
        {{"VekMgmtSpiThreadContextService", "VekMgmtSpiThreadContext", "2"},
         Part::ThreadContext,
         threadContextTable()},
        {{"OrvOamSpiTransactionService", "OrvOamSpiTransaction", "1"},
         Part::TransactionTable,
         transactionTable()}};
    return all;
}

bool sameText(const char* left, const char* right) {
    return left == right || (left != nullptr && right != nullptr && std::strcmp(left, right) == 0);
}

bool sameIdentity(const VekMgmtSpiInterface_1& left, const VekMgmtSpiInterface_1& right) {
    return sameText(left.componentName, right.componentName) &&
           sameText(left.interfaceName, right.interfaceName) &&
           sameText(left.interfaceVersion, right.interfaceVersion);
}

void* offeredByHost(const Stage& stage, const VekMgmtSpiInterface_1& id) {
    for (const Offer& offer : offers()) {
        if (sameIdentity(offer.id, id)) {
            return stage.has(offer.part) ? offer.table : nullptr;
        }
    }
    return nullptr;
}

void* offeredByComponent(const Stage& stage, const VekMgmtSpiInterface_1& id) {
    if (stage.registered == nullptr) {
        return nullptr;
    }
    for (VekMgmtSpiInterface_1** each = stage.registered->interfaceArray; *each != nullptr;
         ++each) {
        if (sameIdentity(**each, id)) {
            return *each;
        }
    }
    return nullptr;
}

OrvReturnT lookUp(const std::string& name, const VekMgmtSpiInterface_1& id, void** result) {
    Stage& stage = Stage::current();
    return stage.script.play(Call{name, {arg(id)}, result}, [&] {
        void* own = offeredByHost(stage, id);
        void* found = own != nullptr ? own : offeredByComponent(stage, id);
        if (found == nullptr) {
            return OrvNotExist;
        }
        *result = found;
        return OrvOk;
    });
}

OrvReturnT announce(const std::string& name, OrvMgmtSpiComponent_1* component) {
    Stage& stage = Stage::current();
    stage.lastRecord = component;
    return stage.script.play(
        Call{name, {arg(component, quoted(component->componentName))}, nullptr}, [&] {
            stage.registered = component;
            return OrvOk;
        });
}

OrvReturnT takeBack(const std::string& name, OrvMgmtSpiComponent_1* component) {
    Stage& stage = Stage::current();
    return stage.script.play(
        Call{name, {arg(component, quoted(component->componentName))}, nullptr}, [&] {
            stage.registered = nullptr;
            return OrvOk;
        });
}

OrvReturnT portal1GetInterface(VekMgmtSpiInterface_1 id, void** result) {
    return lookUp("Portal1.getInterface", id, result);
}
OrvReturnT portal1Register(OrvMgmtSpiComponent_1* component) {
    return announce("Portal1.registerComponent", component);
}
OrvReturnT portal1Unregister(OrvMgmtSpiComponent_1* component) {
    return takeBack("Portal1.unregisterComponent", component);
}
OrvReturnT portal3GetInterface(VekMgmtSpiInterface_1 id, void** result) {
    return lookUp("Portal3.getInterface", id, result);
}
OrvReturnT portal3Register(OrvMgmtSpiComponent_1* component) {
    return announce("Portal3.registerComponent", component);
}
OrvReturnT portal3Unregister(OrvMgmtSpiComponent_1* component) {
    return takeBack("Portal3.unregisterComponent", component);
}

void* portalOfVersion(const Stage& stage, const char* version) {
    static OrvMgmtSpiInterfacePortal_1 portal1 = {
        {"ScriptedHost", "OrvMgmtSpiInterfacePortal", "1"},
        asHostCode<&portal1GetInterface>,
        nullptr,
        asHostCode<&portal1Register>,
        asHostCode<&portal1Unregister>};
    static OrvMgmtSpiInterfacePortal_3 portal3 = {
        {"ScriptedHost", "OrvMgmtSpiInterfacePortal", "3"},
        asHostCode<&portal3GetInterface>,
        nullptr,
        asHostCode<&portal3Register>,
        asHostCode<&portal3Unregister>};
    if (std::strcmp(version, "1") == 0 && stage.has(Part::Portal1)) {
        return &portal1;
    }
    return std::strcmp(version, "3") == 0 && stage.has(Part::Portal3) ? &portal3 : nullptr;
}

void* getPortal(const char* version) {
    Stage& stage = Stage::current();
    void* portal = nullptr;
    stage.script.play(Call{"Accessor.getPortal", {arg(version)}, &portal}, [&] {
        portal = portalOfVersion(stage, version);
        return OrvOk;
    });
    return portal;
}

OrvReturnT join(unsigned long txHandle, OrvOamSpiTransactionalResource_2* resource) {
    const std::string name = resource == nullptr ? "null" : resource->identity.interfaceName;
    return Stage::current().script.play(
        Call{"Transaction.join", {arg(txHandle), arg(resource, name)}, nullptr},
        [] { return OrvOk; });
}

OrvReturnT addMessage(int kind, const char* text) {
    Stage& stage = Stage::current();
    return stage.script.play(Call{"ThreadContext.addMessage", {arg(kind), arg(text)}, nullptr},
                             [&] {
                                 stage.addMessage(text);
                                 return OrvOk;
                             });
}

}

OrvMgmtSpiInterfacePortalAccessor* portalAccessor() {
    static OrvMgmtSpiInterfacePortalAccessor accessor = {asHostCode<&getPortal>};
    return &accessor;
}

OrvReturnT orvPortalLookup(VekMgmtSpiInterface_1 id, void** result) {
    const HostCode here;
    return lookUp("OrvPortal.lookup", id, result);
}

OrvOamSpiTransaction_1* transactionTable() {
    static OrvOamSpiTransaction_1 table = {
        {"OrvOamSpiTransactionService", "OrvOamSpiTransaction", "1"}, asHostCode<&join>};
    return &table;
}

VekMgmtSpiThreadContext_2* threadContextTable() {
    static VekMgmtSpiThreadContext_2 table = {
        {"VekMgmtSpiThreadContextService", "VekMgmtSpiThreadContext", "2"},
        asHostCode<&addMessage>};
    return &table;
}

}
