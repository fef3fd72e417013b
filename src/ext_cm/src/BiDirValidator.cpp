// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "BiDirValidator.h"

#include "Portal.h"

namespace OrvExtCmRouterService {

BiDirValidator::BiDirValidator(BiDirUtils& utils) : biDirUtils(utils) {}

void BiDirValidator::start() {
    Orv::Portal* portal = Orv::Portal::instance();
    modelRepository = portal->getInterface<VekOamSpiModelRepository_4>(
        {"VekOamSpiModelRepositoryService", "VekOamSpiModelRepository", "4"});
    threadContext = portal->getInterface<VekMgmtSpiThreadContext_2>(
        {"VekMgmtSpiThreadContextService", "VekMgmtSpiThreadContext", "2"});
    moRouter = portal->getInterface<OrvOamSpiManagedObject_3>(
        {"VekOamSpiCmRouterService", "VekOamSpiManagedObject", "3"});
}

void BiDirValidator::stop() {
    moRouter = nullptr;
    modelRepository = nullptr;
    threadContext = nullptr;
}

}
