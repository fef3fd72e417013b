// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ModelRepository.h"

#include "RepositoryAnswer.h"
#include "RepositoryTables.h"

namespace OrvHost {

constinit RepositoryRows currentRepository;

namespace {

VekOamSpiModelRepository_4 makeTable() {
    VekOamSpiModelRepository_4 table{};
    table.identity = VekOamSpiModelRepository_4_Id;
    table.dnLookup = &kDnLookup;
    table.generalProperties = &kGeneralProperties;
    table.mocQueries = &kMocQueries;
    table.containment = &kContainment;
    table.associationEnd = &kAssociationEnd;
    table.biDirAssociation = &kBiDirAssociation;
    table.uniDirAssociation = &kUniDirAssociation;
    table.attributeType = &kAttributeType;
    table.attribute = &kAttribute;
    table.referenceType = &kReferenceType;
    return table;
}

}

ModelRepository::ModelRepository(const Model& model) : mIndex(model), mInterface(makeTable()) {
    currentRepository = mIndex.rows();
}

ModelRepository::~ModelRepository() {
    currentRepository = RepositoryRows();
}

}
