// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_COMPONENT_SUPPORT_NAMES_H
#define ORV_TESTS_COMPONENT_SUPPORT_NAMES_H

#include <string>

/// \file
/// What the component's lookups look like in the journal.

namespace Scripted {

const std::string kAskRouter1 =
    "Portal1.getInterface('OrvOamSpiCmRouterService', 'OrvOamSpiManagedObject', '1')";
const std::string kAskRouter3 =
    "Portal1.getInterface('OrvOamSpiCmRouterService', 'OrvOamSpiManagedObject', '3')";
const std::string kAskRouter3_1 =
    "Portal1.getInterface('VekOamSpiCmRouterService', 'VekOamSpiManagedObject', '3_1')";
const std::string kAskTransaction =
    "Portal1.getInterface('OrvOamSpiTransactionService', 'OrvOamSpiTransaction', '1')";

const std::string kLookUpVekRouter3 =
    "OrvPortal.lookup('VekOamSpiCmRouterService', 'VekOamSpiManagedObject', '3')";
const std::string kLookUpRouter3 =
    "OrvPortal.lookup('OrvOamSpiCmRouterService', 'OrvOamSpiManagedObject', '3')";
const std::string kLookUpRouter3_1 =
    "OrvPortal.lookup('VekOamSpiCmRouterService', 'VekOamSpiManagedObject', '3_1')";
const std::string kLookUpModel =
    "OrvPortal.lookup('VekOamSpiModelRepositoryService', 'VekOamSpiModelRepository', '4')";
const std::string kLookUpThreadContext =
    "OrvPortal.lookup('VekMgmtSpiThreadContextService', 'VekMgmtSpiThreadContext', '2')";
const std::string kLookUpInterceptors =
    "OrvPortal.lookup('OrvOamSpiExtCmRouterService', 'ExtCmInterceptorRepositoryI', '1')";

}

#endif
