// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_REPOSITORY_REPOSITORYTABLES_H
#define ORV_HOST_REPOSITORY_REPOSITORYTABLES_H

#include "VekOamSpiModelRepository_4.h"

/// \file
/// The sub-tables of the model repository. Functions that nobody calls are null.

namespace OrvHost {

extern const VekOamSpiMrDnLookup_4 kDnLookup;
extern const VekOamSpiMrGeneralProperties_4 kGeneralProperties;
extern const VekOamSpiMrMocQueries_4 kMocQueries;
extern const VekOamSpiMrContainment_4 kContainment;
extern const VekOamSpiMrAssociationEnd_4 kAssociationEnd;
extern const VekOamSpiMrBiDirAssociation_4 kBiDirAssociation;
extern const VekOamSpiMrUniDirAssociation_4 kUniDirAssociation;
extern const VekOamSpiMrAttributeType_4 kAttributeType;
extern const VekOamSpiMrAttribute_4 kAttribute;
extern const VekOamSpiMrReferenceType_4 kReferenceType;

}

#endif
