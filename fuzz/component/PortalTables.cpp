// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The portal, the transaction table and the thread context.

#include "Host.h"
#include "support/Require.h"

#include <cstring>

namespace Fuzz {

namespace {

bool sameText(const char* one, const char* other) {
    return one == other || (one != nullptr && other != nullptr && std::strcmp(one, other) == 0);
}

bool isOffered(const void* table, const VekMgmtSpiInterface_1& asked) {
    const auto& identity = *static_cast<const VekMgmtSpiInterface_1*>(table);
    return sameText(identity.componentName, asked.componentName) &&
           sameText(identity.interfaceName, asked.interfaceName) &&
           sameText(identity.interfaceVersion, asked.interfaceVersion);
}

/// At most once between two ends of a transaction.
OrvReturnT join(unsigned long txHandle, OrvOamSpiTransactionalResource_2* resource) {
    Host& host = Host::current();
    host.journal.call("join").number(static_cast<long long>(txHandle - host.firstHandle));
    require(++host.joins[txHandle] == 1, std::string("joined twice: ") + host.operation);
    require(resource != nullptr && sameText(resource->identity.interfaceVersion, "2"),
            "joins with another table");
    return host.play(
        Slot::Join, [] { return OrvOk; }, [&](ByteSource&) { return resource->join(txHandle); });
}

OrvReturnT addMessage(int kind, const char* text) {
    Host& host = Host::current();
    host.journal.call("addMessage").number(kind).text(text);
    return host.play(Slot::AddMessage, [] { return OrvOk; });
}

OrvOamSpiTransaction_1* transactionTable() {
    static OrvOamSpiTransaction_1 table = {
        {"OrvOamSpiTransactionService", "OrvOamSpiTransaction", "1"}, &join};
    return &table;
}

VekMgmtSpiThreadContext_2* threadContext() {
    static VekMgmtSpiThreadContext_2 table = {
        {"VekMgmtSpiThreadContextService", "VekMgmtSpiThreadContext", "2"}, &addMessage};
    return &table;
}

void* findTable(const VekMgmtSpiInterface_1& id) {
    void* const own[] = {router1(),         router3(),          vekRouter3(),   router3_1(),
                         modelRepository(), transactionTable(), threadContext()};
    for (void* const table : own) {
        if (isOffered(table, id)) {
            return table;
        }
    }
    const OrvMgmtSpiComponent_1* const component = announcedComponent();
    for (VekMgmtSpiInterface_1** each = component != nullptr ? component->interfaceArray : nullptr;
         each != nullptr && *each != nullptr; ++each) {
        if (isOffered(*each, id)) {
            return *each;
        }
    }
    return nullptr;
}

OrvReturnT registerComponent(OrvMgmtSpiComponent_1* component) {
    Host::current().journal.call("register");
    announcedComponent() = component;
    return Host::current().play(Slot::Register, [] { return OrvOk; });
}

OrvReturnT unregisterComponent(OrvMgmtSpiComponent_1*) {
    Host::current().journal.call("unregister");
    return OrvOk;
}

void* getPortal(const char* version) {
    static OrvMgmtSpiInterfacePortal_1 portal1 = {{"Host", "OrvMgmtSpiInterfacePortal", "1"},
                                                  &portalLookup,
                                                  nullptr,
                                                  &registerComponent,
                                                  &unregisterComponent};
    static OrvMgmtSpiInterfacePortal_3 portal3 = {{"Host", "OrvMgmtSpiInterfacePortal", "3"},
                                                  &portalLookup,
                                                  nullptr,
                                                  &registerComponent,
                                                  &unregisterComponent};
    Host::current().journal.call("getPortal").text(version);
    void* portal = nullptr;
    Host::current().play(Slot::GetPortal, [&] {
        portal = sameText(version, "1") ? static_cast<void*>(&portal1) : &portal3;
        return OrvOk;
    });
    return portal;
}

}

OrvReturnT portalLookup(VekMgmtSpiInterface_1 id, void** result) {
    Host& host = Host::current();
    host.journal.call("lookup").text(id.interfaceName).text(id.interfaceVersion);
    return host.play(
        Slot::Lookup,
        [&]() -> OrvReturnT {
            void* const found = findTable(id);
            if (found == nullptr) {
                return OrvNotExist;
            }
            *result = found;
            return OrvOk;
        },
        [&](ByteSource&) {
            *result = nullptr;
            return OrvOk;
        });
}

OrvMgmtSpiInterfacePortalAccessor* portalAccessor() {
    static OrvMgmtSpiInterfacePortalAccessor accessor = {&getPortal};
    return &accessor;
}

OrvMgmtSpiComponent_1*& announcedComponent() {
    static OrvMgmtSpiComponent_1* component = nullptr;
    return component;
}

}
