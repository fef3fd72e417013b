// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Host.h"

#include "MeIdTranslator.h"

namespace OrvHost {

Host::Host(const Model& model, const HostOptions& options)
    : mStore(model),
      mRouter(model, mStore, mThreadContext),
      mTransactions(mThreadContext),
      mModelRepository(model),
      mPortal(mComponents, options.portals),
      mLoader(mComponents, mPortal.accessor()) {
    Orv::MeIdTranslator::instance()->configure(options.preferredIdentity, options.fallbackIdentity);
    mRouter.setAuthorLookup(
        [this](unsigned long txHandle) { return mTransactions.authorOf(txHandle); });
    mRouter.setRules(options.rules);
    mTransactions.enrolInEach(mRouter.getResource());
    offerTables();
}

Host::~Host() {
    shutdown();
}

void Host::offerTables() {
    mComponents.offer(&mRouter.getInterface1()->identity);
    mComponents.offer(&mRouter.getInterface3()->identity);
    mComponents.offer(&mRouter.getVekInterface3()->identity);
    mComponents.offer(&mRouter.getInterface3_1()->identity);
    mComponents.offer(&mTransactions.getTransactionInterface()->identity);
    mComponents.offer(&mTransactions.getMasterInterface()->identity);
    mComponents.offer(&mThreadContext.getInterface()->identity);
    mComponents.offer(&mModelRepository.getInterface()->identity);
    for (const VekMgmtSpiInterface_1& identity : mIdentityOnly.all()) {
        mComponents.offer(&identity);
    }
}

void Host::loadComponent(const std::string& path, const std::string& argument) {
    mLoader.load(path, argument);
}

std::vector<ComponentReport> Host::start() {
    return mComponents.startAll(OrvStateChangeReasonHostStart);
}

// Participants are tables of components, so all transactions end before any shared object is
// closed.
std::vector<std::string> Host::shutdown() {
    mTransactions.abortAll();
    return mLoader.unloadAll();
}

Host::ReadTransaction::ReadTransaction(Host& host)
    : mHost(host), mHandle(host.mTransactions.begin()) {}

Host::ReadTransaction::~ReadTransaction() {
    mHost.mTransactions.abort(mHandle);
}

}
