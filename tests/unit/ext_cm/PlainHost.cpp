// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "PlainHost.h"

#include "OrvMoAttributeValue.h"
#include "OrvReturn.h"

#include <string_view>

namespace PlainHost {

namespace {

using Handle = unsigned long long;

OrvReturnT theOnly(Handle /*of*/, Handle* found) {
    *found = 1;
    return OrvOk;
}

OrvReturnT theName(Handle /*of*/, int /*identifier*/, const char** text) {
    *text = "ys";
    return OrvOk;
}

OrvReturnT theBound(Handle /*of*/, int identifier, long long* bound) {
    *bound = identifier == 0 ? 0 : 1'000'000;
    return OrvOk;
}

}

int reads = 0;

OrvOamSpiManagedObject_3* router() {
    static OrvOamSpiManagedObject_3 table = {};
    table.existsMo = [](unsigned long, const char*, bool* exists) {
        *exists = true;
        return OrvOk;
    };
    table.getMoAttribute = [](unsigned long, const char*, const char*,
                              OrvMoAttributeValueResult_3* result) {
        static OrvMoAttributeValueContainer_3 empty = {OrvMoAttributeTypeMoRef_3, 0, nullptr};
        ++reads;
        *result = {nullptr, &empty};
        return OrvOk;
    };
    table.setMoAttribute = [](unsigned long, const char*, const char*,
                              const OrvMoAttributeValueContainer_3*) { return OrvOk; };
    return &table;
}

VekOamSpiModelRepository_4* repository() {
    static VekOamSpiMrDnLookup_4 dnLookup = {};
    static VekOamSpiMrGeneralProperties_4 generalProperties = {&theName};
    static VekOamSpiMrMocQueries_4 mocQueries = {};
    static VekOamSpiMrAssociationEnd_4 associationEnd = {};
    static VekOamSpiMrBiDirAssociation_4 biDirAssociation = {};
    static VekOamSpiMrUniDirAssociation_4 uniDirAssociation = {};
    static VekOamSpiMrAttributeType_4 attributeType = {};
    static VekOamSpiMrAttribute_4 attribute = {&theOnly, &theOnly, &theOnly, nullptr};
    static VekOamSpiMrReferenceType_4 referenceType = {&theOnly};
    static VekOamSpiModelRepository_4 repository = {};
    dnLookup.getMocFromDn = [](const char*, int, Handle* moc) { return theOnly(0, moc); };
    mocQueries.getMocGeneralProperties = &theOnly;
    mocQueries.getFirstAttribute = &theOnly;
    mocQueries.getFirstBiDirAssociation = &theOnly;
    mocQueries.getFirstUniDirAssociation = &theOnly;
    associationEnd.getEndMoc = &theOnly;
    associationEnd.getEndAttribute = &theOnly;
    associationEnd.getEndGeneralProperties = &theOnly;
    associationEnd.getEndStringProperty = &theName;
    associationEnd.getEndIntProperty = &theBound;
    biDirAssociation.getFirstEnd = &theOnly;
    biDirAssociation.getSecondEnd = &theOnly;
    biDirAssociation.getNextBiDirAssociation = [](Handle, Handle, Handle*) { return OrvNotExist; };
    uniDirAssociation.getUniDirEnd = &theOnly;
    uniDirAssociation.getNextUniDirAssociation = [](Handle, Handle*) { return OrvNotExist; };
    attributeType.getTypeCode = [](Handle, int* code) {
        *code = VekOamSpiMrTypeMoRef_4;
        return OrvOk;
    };
    attributeType.getTypeIntProperty = &theBound;
    repository.dnLookup = &dnLookup;
    repository.generalProperties = &generalProperties;
    repository.mocQueries = &mocQueries;
    repository.associationEnd = &associationEnd;
    repository.biDirAssociation = &biDirAssociation;
    repository.uniDirAssociation = &uniDirAssociation;
    repository.attributeType = &attributeType;
    repository.attribute = &attribute;
    repository.referenceType = &referenceType;
    return &repository;
}

VekMgmtSpiThreadContext_2* threadContext() {
    static VekMgmtSpiThreadContext_2 table = {};
    table.addMessage = [](int, const char*) { return OrvOk; };
    return &table;
}

OrvReturnT lookup(VekMgmtSpiInterface_1 id, void** result) {
    const std::string_view name = id.interfaceName;
    *result = name == "VekOamSpiModelRepository"  ? static_cast<void*>(repository())
              : name == "VekMgmtSpiThreadContext" ? static_cast<void*>(threadContext())
                                                  : static_cast<void*>(router());
    return OrvOk;
}

}
