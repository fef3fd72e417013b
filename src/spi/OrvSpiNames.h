// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_SPI_ORVSPINAMES_H
#define ORV_SPI_ORVSPINAMES_H

#include "OrvMgmtSpiInterface_1.h"

/// \file
/// Names of the components that offer the tables of this directory, and the identities of
/// interfaces that have no table here. The identity of a table stands beside the table. A null
/// field asks for no particular component or version. Conventions: OrvConventions.h.

/// The router, for its tables of versions "1" and "3".
constexpr const char* OrvOamSpiCmRouterService = "OrvOamSpiCmRouterService";
/// The router by its other name, for its tables of versions "3" and "3_1".
constexpr const char* VekOamSpiCmRouterService = "VekOamSpiCmRouterService";
/// The component: ext_cm.
constexpr const char* OrvOamSpiExtCmRouterService = "OrvOamSpiExtCmRouterService";
constexpr const char* OrvOamSpiTransactionService = "OrvOamSpiTransactionService";
constexpr const char* VekOamSpiModelRepositoryService = "VekOamSpiModelRepositoryService";
constexpr const char* VekMgmtSpiThreadContextService = "VekMgmtSpiThreadContextService";
constexpr const char* OrvOamSpiEventService = "OrvOamSpiEventService";

// The component names these in its list of required interfaces, for the host's order of starting.
// It looks none of them up and calls none. A host need not have them.

/// What drives transactions.
constexpr VekMgmtSpiInterface_1 OrvOamSpiTransactionMaster_1_Id = {
    OrvOamSpiTransactionService, "OrvOamSpiTransactionMaster", "1"};
/// Events.
constexpr VekMgmtSpiInterface_1 OrvOamSpiEventRouter_1_Id = {OrvOamSpiEventService,
                                                             "OrvOamSpiEventRouter", "1"};
/// The log.
constexpr VekMgmtSpiInterface_1 OrvMwSpiLog_1_Id = {nullptr, "OrvMwSpiLog", "1"};
/// Traces.
constexpr VekMgmtSpiInterface_1 VekMwSpiTrace_Id = {nullptr, "VekMwSpiTrace", nullptr};

#endif
