// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "StubHost.h"

#include "LoggingWrapper.h"
#include "MeIdTranslator.h"
#include "OrvMgmtSpiInterfacePortal.h"
#include "OrvOamSpiManagedObject_1.h"
#include "OrvOamSpiTransaction_1.h"
#include "Portal.h"
#include "VekMgmtSpiThreadContext_2.h"
#include "VekOamSpiModelRepository_4.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace OrvCost {

namespace {

// ---------------------------------------------------------------------------------------------
// The router

OneText label(OrvMoAttributeTypeString_3, "a label of some length");
OneText reference(OrvMoAttributeTypeMoRef_3, "ManagedElement=1,Cell=7,Fan=1");
OrvMoAttributeValueContainer_3 noReferences{OrvMoAttributeTypeMoRef_3, 0, nullptr};
OrvMoAttributeValueContainer_3* fiveLabels[] = {&label.container, &label.container,
                                                &label.container, &label.container,
                                                &label.container, nullptr};
char childName[] = "7";

void releaseOne(OrvMoAttributeValueContainer_3*) {}
void releaseMany(OrvMoAttributeValueContainer_3**) {}

OrvReturnT setMoAttribute(unsigned long, const char*, const char*,
                          const OrvMoAttributeValueContainer_3*) {
    return OrvOk;
}

// By the first letter: label, reference, or one of the attributes of the association.
OrvReturnT getMoAttribute(unsigned long, const char*, const char* attrName,
                          OrvMoAttributeValueResult_3* result) {
    result->release = &releaseOne;
    result->container = *attrName == 'l'   ? &label.container
                        : *attrName == 'r' ? &reference.container
                                           : &noReferences;
    return OrvOk;
}

OrvReturnT getMoAttributes(unsigned long, const char*, const char**,
                           OrvMoAttributeValuesResult_3* result) {
    result->release = &releaseMany;
    result->containers = fiveLabels;
    return OrvOk;
}

OrvReturnT newMoIterator(unsigned long, const char*, const char*, unsigned long long* iterator) {
    *iterator = 1;
    return OrvOk;
}

OrvReturnT nextMo(unsigned long long, char** name) {
    *name = childName;
    return OrvOk;
}

OrvReturnT finalizeMoIterator(unsigned long long) {
    return OrvOk;
}

OrvReturnT createMo(unsigned long, const char*, const char*, const char*, const char*,
                    OrvMoNamedAttributeValueContainer_3**) {
    return OrvOk;
}

OrvReturnT deleteMo(unsigned long, const char*) {
    return OrvOk;
}

OrvReturnT existsMo(unsigned long, const char*, bool* exists) {
    *exists = true;
    return OrvOk;
}

OrvReturnT countMoChildren(unsigned long, const char*, const char*, unsigned long long* count) {
    *count = 3;
    return OrvOk;
}

OrvReturnT setMoAttributes(unsigned long, const char*, VekMoNamedAttributeValueContainer_3**) {
    return OrvOk;
}

OrvOamSpiManagedObject_1 router1{};
OrvOamSpiManagedObject_3 router3{};
VekOamSpiManagedObject_3_1 router3_1{};

void fillRouter() {
    router3.setMoAttribute = &setMoAttribute;
    router3.getMoAttribute = &getMoAttribute;
    router3.getMoAttributes = &getMoAttributes;
    router3.newMoIterator = &newMoIterator;
    router3.nextMo = &nextMo;
    router3.finalizeMoIterator = &finalizeMoIterator;
    router3.createMo = &createMo;
    router3.deleteMo = &deleteMo;
    router3.existsMo = &existsMo;
    router3.countMoChildren = &countMoChildren;
    router3_1.setMoAttributes = &setMoAttributes;
}

// ---------------------------------------------------------------------------------------------
// The model

using Handle = unsigned long long;

constexpr Handle unitClass = 1;
constexpr Handle cellClass = 2;
constexpr Handle rackClass = 3;
// Ends are named after what they point away from: each is called as the attribute of the other
// side.
constexpr Handle unitEnd = 10 + unitClass;
constexpr Handle cellEnd = 10 + cellClass;

OrvReturnT getMocFromDn(const char* dn, int, Handle* moc) {
    const char letter = dn[sizeof("ManagedElement=1,") - 1];
    *moc = letter == 'U' ? unitClass : letter == 'C' ? cellClass : rackClass;
    return OrvOk;
}

OrvReturnT itself(Handle handle, Handle* found) {
    *found = handle;
    return OrvOk;
}

OrvReturnT none(Handle, Handle*) {
    return OrvNotExist;
}

OrvReturnT nameOf(Handle handle, int, const char** name) {
    *name = handle == unitEnd ? "unit" : handle == cellEnd ? "cells" : "another";
    return OrvOk;
}

OrvReturnT firstAssociation(Handle moc, Handle* association) {
    *association = 1;
    return moc == rackClass ? OrvNotExist : OrvOk;
}

OrvReturnT nextAssociation(Handle, Handle, Handle*) {
    return OrvNotExist;
}

OrvReturnT firstEnd(Handle, Handle* end) {
    *end = unitEnd;
    return OrvOk;
}

OrvReturnT secondEnd(Handle, Handle* end) {
    *end = cellEnd;
    return OrvOk;
}

OrvReturnT endMoc(Handle end, Handle* moc) {
    *moc = end - 10;
    return OrvOk;
}

OrvReturnT endFlag(Handle, int, bool* flag) {
    *flag = false;
    return OrvOk;
}

VekOamSpiMrDnLookup_4 dnLookup{};
VekOamSpiMrGeneralProperties_4 generalProperties{};
VekOamSpiMrMocQueries_4 mocQueries{};
VekOamSpiMrContainment_4 containment{};
VekOamSpiMrAssociationEnd_4 associationEnd{};
VekOamSpiMrBiDirAssociation_4 biDirAssociation{};
VekOamSpiMrUniDirAssociation_4 uniDirAssociation{};
VekOamSpiModelRepository_4 model{};

// What a validation of written references asks is missing: none is measured.
void fillModel() {
    dnLookup.getMocFromDn = &getMocFromDn;
    generalProperties.getGeneralStringProperty = &nameOf;
    mocQueries.getMocGeneralProperties = &itself;
    mocQueries.getFirstContainment = &none;
    mocQueries.getFirstBiDirAssociation = &firstAssociation;
    mocQueries.getFirstUniDirAssociation = &none;
    associationEnd.getEndMoc = &endMoc;
    associationEnd.getEndGeneralProperties = &itself;
    associationEnd.getEndStringProperty = &nameOf;
    associationEnd.getEndBoolProperty = &endFlag;
    biDirAssociation.getFirstEnd = &firstEnd;
    biDirAssociation.getSecondEnd = &secondEnd;
    biDirAssociation.getNextBiDirAssociation = &nextAssociation;
    uniDirAssociation.getNextUniDirAssociation = &none;
    model.dnLookup = &dnLookup;
    model.generalProperties = &generalProperties;
    model.mocQueries = &mocQueries;
    model.containment = &containment;
    model.associationEnd = &associationEnd;
    model.biDirAssociation = &biDirAssociation;
    model.uniDirAssociation = &uniDirAssociation;
}

// ---------------------------------------------------------------------------------------------
// The rest of the host

OrvReturnT join(unsigned long, OrvOamSpiTransactionalResource_2*) {
    return OrvOk;
}

OrvReturnT addMessage(int, const char* text) {
    std::fprintf(stderr, "a message for the client, where none is expected: %s\n", text);
    std::exit(1); // NOLINT(concurrency-mt-unsafe): there is one thread
}

OrvOamSpiTransaction_1 transactions{{}, &join};
VekMgmtSpiThreadContext_2 threadContext{{}, &addMessage};

struct Offer {
    const char* interfaceName;
    const char* version;
    void* table;
};

const Offer offers[] = {
    {"OrvOamSpiManagedObject", "1", &router1},    {"OrvOamSpiManagedObject", "3", &router3},
    {"VekOamSpiManagedObject", "3", &router3},    {"VekOamSpiManagedObject", "3_1", &router3_1},
    {"OrvOamSpiTransaction", "1", &transactions}, {"VekMgmtSpiThreadContext", "2", &threadContext},
    {"VekOamSpiModelRepository", "4", &model},
};

OrvReturnT getInterface(VekMgmtSpiInterface_1 id, void** table) {
    for (const Offer& offer : offers) {
        if (std::strcmp(offer.interfaceName, id.interfaceName) == 0 &&
            std::strcmp(offer.version, id.interfaceVersion) == 0) {
            *table = offer.table;
            return OrvOk;
        }
    }
    return OrvNotExist;
}

OrvMgmtSpiComponent_1* registered = nullptr;

OrvReturnT registerComponent(OrvMgmtSpiComponent_1* component) {
    registered = component;
    return OrvOk;
}

OrvReturnT unregisterComponent(OrvMgmtSpiComponent_1*) {
    registered = nullptr;
    return OrvOk;
}

void* getPortal(const char* version) {
    static OrvMgmtSpiInterfacePortal_1 portal1{
        {}, &getInterface, nullptr, &registerComponent, &unregisterComponent};
    return std::strcmp(version, "1") == 0 ? &portal1 : nullptr;
}

template <class Function>
Function functionOf(void* library, const char* name) {
    void* const found = dlsym(library, name);
    if (found == nullptr) {
        std::fprintf(stderr, "the component has no %s\n", name);
        std::exit(1); // NOLINT(concurrency-mt-unsafe): there is one thread
    }
    return reinterpret_cast<Function>(found);
}

template <class Table>
const Table* offeredBy(const OrvMgmtSpiComponent_1& component, const char* interfaceName,
                       const char* version) {
    for (auto** next = component.interfaceArray; *next != nullptr; ++next) {
        if (std::strcmp((*next)->interfaceName, interfaceName) == 0 &&
            std::strcmp((*next)->interfaceVersion, version) == 0) {
            return reinterpret_cast<const Table*>(*next);
        }
    }
    std::fprintf(stderr, "the component offers no %s of version %s\n", interfaceName, version);
    std::exit(1); // NOLINT(concurrency-mt-unsafe): there is one thread
}

}

void check(OrvReturnT code, const char* what) {
    if (code != OrvOk) {
        std::fprintf(stderr, "%s: code %d\n", what, code);
        std::exit(1); // NOLINT(concurrency-mt-unsafe): there is one thread
    }
}

OneText::OneText(int typeCode, const char* text) {
    slot.string = text;
    container.type = typeCode;
    container.count = 1;
    container.values = &slot;
}

StubHost::StubHost(const char* library) : mLibrary(dlopen(library, RTLD_NOW | RTLD_LOCAL)) {
    if (mLibrary == nullptr) {
        const char* const reason = dlerror(); // NOLINT(concurrency-mt-unsafe): kept per thread
        std::fprintf(stderr, "%s\n", reason != nullptr ? reason : library);
        std::exit(1); // NOLINT(concurrency-mt-unsafe): there is one thread
    }
    fillRouter();
    fillModel();
    Orv::LoggingWrapper::instance()->setLevel(0);
    Orv::MeIdTranslator::instance()->configure("H", "");
    Orv::Portal::instance()->attach(&getInterface);
    using Init = OrvReturnT (*)(OrvMgmtSpiInterfacePortalAccessor*, const char*);
    OrvMgmtSpiInterfacePortalAccessor accessor{&getPortal};
    check(functionOf<Init>(mLibrary, "orvLCMinit")(&accessor, ""), "orvLCMinit");
    mComponent = registered;
    check(mComponent->start(OrvStateChangeReasonHostStart), "start");
    mObjects3 = offeredBy<OrvOamSpiManagedObject_3>(*mComponent, "OrvOamSpiManagedObject", "3");
    mObjects3_1 =
        offeredBy<VekOamSpiManagedObject_3_1>(*mComponent, "VekOamSpiManagedObject", "3_1");
    mResource = offeredBy<OrvOamSpiTransactionalResource_2>(*mComponent,
                                                            "OrvOamSpiTransactionalResource", "2");
}

StubHost::~StubHost() {
    mComponent->stop(OrvStateChangeReasonHostShutdown);
    functionOf<void (*)()>(mLibrary, "orvLCMterminate")();
    dlclose(mLibrary);
}

}
