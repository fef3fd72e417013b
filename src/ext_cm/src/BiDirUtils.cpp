// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "BiDirUtils.h"

#include "Portal.h"

namespace OrvExtCmRouterService {

void BiDirUtils::start() {
    Orv::Portal* portal = Orv::Portal::instance();
    moRouter = portal->getInterface<OrvOamSpiManagedObject_3>(
        {"VekOamSpiCmRouterService", "VekOamSpiManagedObject", "3"});
    modelRepository = portal->getInterface<VekOamSpiModelRepository_4>(
        {"VekOamSpiModelRepositoryService", "VekOamSpiModelRepository", "4"});
}

void BiDirUtils::stop() {
    moRouter = nullptr;
    modelRepository = nullptr;
}

}
