// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "MoInterceptorBase.h"

#include "ExtCmInterceptorRepository.h"
#include "Portal.h"
#include "messages/Tracing.h"

namespace OrvExtCmRouterService {

namespace {

// Without the portal's cache, which knows no table of this type. What the host writes is kept
// whatever its code, as in the other lookups.
OrvReturnT lookUpRepository(Orv::Portal::LookupFn lookup, const VekMgmtSpiInterface_1& identity,
                            ExtCmInterceptorRepository*& repository) {
    if (lookup == nullptr) {
        return OrvFailure;
    }
    void* found = repository;
    const OrvReturnT code = lookup(identity, &found);
    repository = static_cast<ExtCmInterceptorRepository*>(found);
    return code;
}

}

MoInterceptorBase::MoInterceptorBase()
    : mo3Router(nullptr), mo3_1Router(nullptr), repository(nullptr) {}

MoInterceptorBase::~MoInterceptorBase() = default;

void MoInterceptorBase::initialize() {
    ORV_TRACE_ENTRY(" >> ");
    Orv::Portal* const portal = Orv::Portal::instance();
    mo3Router = portal->getInterface<OrvOamSpiManagedObject_3>(OrvOamSpiManagedObject_3_RouterId);
    mo3_1Router =
        portal->getInterface<VekOamSpiManagedObject_3_1>(VekOamSpiManagedObject_3_1_RouterId);
    if (lookUpRepository(portal->lookup(), ExtCmInterceptorRepositoryI_1_Id, repository) != OrvOk) {
        ORV_LOG(4, "Interface %s not found", ExtCmInterceptorRepositoryI_1_Id.interfaceName);
    }
    ORV_TRACE_EXIT(" << ");
}

// The operations do not test their tables. A test in each could only answer with a code that the
// router might mean as well; a derived class tests the fields once, after initialize.

OrvReturnT MoInterceptorBase::getMoAttribute(unsigned long txHandle, char const* dn,
                                             char const* attrName,
                                             OrvMoAttributeValueResult_3* result) {
    return mo3Router->getMoAttribute(txHandle, dn, attrName, result);
}

OrvReturnT MoInterceptorBase::getMoAttributes(unsigned long txHandle, char const* dn,
                                              char const** attrNames,
                                              OrvMoAttributeValuesResult_3* result) {
    return mo3Router->getMoAttributes(txHandle, dn, attrNames, result);
}

OrvReturnT MoInterceptorBase::setMoAttribute(unsigned long txHandle, char const* dn,
                                             char const* attrName,
                                             OrvMoAttributeValueContainer_3 const* value) {
    return mo3Router->setMoAttribute(txHandle, dn, attrName, value);
}

OrvReturnT MoInterceptorBase::setMoAttributes(unsigned long txHandle, char const* dn,
                                              VekMoNamedAttributeValueContainer_3** attributes) {
    return mo3_1Router->setMoAttributes(txHandle, dn, attributes);
}

OrvReturnT MoInterceptorBase::newMoIterator(unsigned long txHandle, char const* dn,
                                            char const* className, unsigned long long* iterator) {
    return mo3Router->newMoIterator(txHandle, dn, className, iterator);
}

OrvReturnT MoInterceptorBase::nextMo(unsigned long long iterator, char** result) {
    return mo3Router->nextMo(iterator, result);
}

OrvReturnT MoInterceptorBase::createMo(unsigned long txHandle, char const* dn,
                                       char const* className, char const* attrName,
                                       char const* attrValue,
                                       OrvMoNamedAttributeValueContainer_3** attributes) {
    return mo3Router->createMo(txHandle, dn, className, attrName, attrValue, attributes);
}

OrvReturnT MoInterceptorBase::deleteMo(unsigned long txHandle, char const* dn) {
    return mo3Router->deleteMo(txHandle, dn);
}

OrvReturnT MoInterceptorBase::action(unsigned long txHandle, char const* dn, char const* name,
                                     OrvMoNamedAttributeValueContainer_3** parameters,
                                     OrvMoAttributeValueResult_3* result) const {
    return mo3Router->action(txHandle, dn, name, parameters, result);
}

OrvReturnT MoInterceptorBase::finalizeMoIterator(unsigned long long iterator) const {
    return mo3Router->finalizeMoIterator(iterator);
}

OrvReturnT MoInterceptorBase::existsMo(unsigned long txHandle, char const* dn, bool* exists) {
    return mo3Router->existsMo(txHandle, dn, exists);
}

OrvReturnT MoInterceptorBase::countMoChildren(unsigned long txHandle, char const* dn,
                                              char const* className, unsigned long long* count) {
    return mo3Router->countMoChildren(txHandle, dn, className, count);
}

}
