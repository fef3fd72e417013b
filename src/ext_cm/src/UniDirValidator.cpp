// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "UniDirValidator.h"

#include "Portal.h"

namespace OrvExtCmRouterService {

void UniDirValidator::start() {
    Orv::Portal* portal = Orv::Portal::instance();
    repository = portal->getInterface<VekOamSpiModelRepository_4>(
        {"VekOamSpiModelRepositoryService", "VekOamSpiModelRepository", "4"});
    threadContext = portal->getInterface<VekMgmtSpiThreadContext_2>(
        {"VekMgmtSpiThreadContextService", "VekMgmtSpiThreadContext", "2"});
}

void UniDirValidator::stop() {
    repository = nullptr;
    threadContext = nullptr;
    const Poco::Mutex::ScopedLock lock(mutex);
    storage.clear();
}

void UniDirValidator::setMoRef(unsigned long /*txHandle*/, std::string const& /*dn*/,
                               std::string const& /*attrName*/,
                               VekMoAttributeValueContainer_3 const* /*values*/) {}

void UniDirValidator::deleteMo(unsigned long /*txHandle*/, std::string const& /*dn*/) {}

void UniDirValidator::finish(unsigned long /*txHandle*/) {}

OrvReturnT UniDirValidator::validate(unsigned long /*txHandle*/, bool* /*result*/) {
    return OrvNotActive;
}

}
