// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ExtCmRouterService.h"

#include "OrvSpiNames.h"
#include "life/ComponentName.h"
#include "life/ServiceLife.h"
#include "life/UnderLock.h"
#include "messages/Tracing.h"

namespace OrvExtCmRouterService {

namespace {

// For the host to order its components by: nothing is looked up from this list. A null asks for no
// particular component or version.
constexpr VekMgmtSpiInterface_1 requiredInterfaces[] = {
    OrvOamSpiTransactionMaster_1_Id,
    OrvOamSpiManagedObject_1_RouterId,
    OrvOamSpiEventRouter_1_Id,
    OrvMwSpiLog_1_Id,
    VekMwSpiTrace_Id,
};

}

// The order of the offered interfaces is what hosts see in the record.
ExtCmRouterService::ExtCmRouterService()
    : Component(componentName),
      mIdMappings(Orv::MeIdTranslator::instance()),
      mMoImpl(mIdMappings, mTxData),
      mMoImpl3(mIdMappings, mTxData, mBiDirUtils, mUniDirValidator),
      mMoImpl3_1(mIdMappings, mTxData, mBiDirUtils, mUniDirValidator),
      mResourceBinder(offered(OrvOamSpiTransactionalResource_2_ExtCmId), *this),
      mTxData(mResourceBinder.getInterface()),
      mBiDirValidator(mBiDirUtils) {
    for (const VekMgmtSpiInterface_1& required : requiredInterfaces) {
        mDependencies.push_back(const_cast<VekMgmtSpiInterface_1*>(&required));
    }
    mInterfaces.push_back(&mMoImpl.getMoInterface()->identity);
    mInterfaces.push_back(&mMoImpl3.getMoInterface()->identity);
    mInterfaces.push_back(&mMoImpl3_1.getMoInterface()->identity);
    mInterfaces.push_back(&mResourceBinder.getInterface()->identity);
    mInterfaces.push_back(mInterceptors.getInterface());
}

// All three are given the portal of version "1", whichever the component was registered with.
OrvReturnT ExtCmRouterService::initialize(const char*) {
    ORV_TRACE_ENTRY(" >> ");
    OrvReturnT code = mMoImpl.init(mPortal1);
    if (code == OrvOk) {
        code = mMoImpl3.init(mPortal1, &mInterceptors);
    }
    if (code == OrvOk) {
        code = mMoImpl3_1.init(mPortal1, &mInterceptors);
    }
    return ORV_TRACE_RESULT(code);
}

void ExtCmRouterService::terminate() {}

// A failure undoes nothing: what is started stays so, and the next start goes on from there.
OrvReturnT ExtCmRouterService::start(OrvStateChangeReason reason) {
    mBiDirUtils.start();
    mBiDirValidator.start();
    mUniDirValidator.start();
    OrvReturnT code = mMoImpl.start(reason);
    if (code == OrvOk) {
        code = mMoImpl3.start(reason);
    }
    if (code == OrvOk) {
        code = mMoImpl3_1.start(reason);
    }
    if (code != OrvOk) {
        return code;
    }
    Orv::MeIdTranslator::instance()->start();
    mTxData.transaction = nullptr;
    // A host without the table is noticed by the first transaction that must be joined, not here.
    lookUpTable(mPortal1, OrvOamSpiTransaction_1_Id, mTxData.transaction);
    return OrvOk;
}

// Not the reverse of start: the back-pointers go last because their validator works on them.
OrvReturnT ExtCmRouterService::stop(OrvStateChangeReason reason) {
    mMoImpl.stop(reason);
    mMoImpl3.stop(reason);
    mMoImpl3_1.stop(reason);
    mTxData.sweep();
    Orv::MeIdTranslator::instance()->stop();
    mBiDirValidator.stop();
    mUniDirValidator.stop();
    mBiDirUtils.stop();
    return OrvOk;
}

// These four phases have no work: what is kept for a transaction goes at finish and never before,
// and whether it may be committed is said in validate. Nothing is locked, so that a host may call
// join while it is asked to join.

OrvReturnT ExtCmRouterService::join(unsigned long txHandle) {
    ORV_TRACE_ENTRY(" >> txHandle: %lu", txHandle);
    return ORV_TRACE_RESULT(OrvOk);
}

OrvReturnT ExtCmRouterService::prepare(unsigned long txHandle) {
    ORV_TRACE_ENTRY(" >> txHandle: %lu", txHandle);
    return ORV_TRACE_RESULT(OrvOk);
}

OrvReturnT ExtCmRouterService::commit(unsigned long txHandle) {
    ORV_TRACE_ENTRY(" >> txHandle: %lu", txHandle);
    return ORV_TRACE_RESULT(OrvOk);
}

OrvReturnT ExtCmRouterService::abort(unsigned long txHandle) {
    ORV_TRACE_ENTRY(" >> txHandle: %lu", txHandle);
    return ORV_TRACE_RESULT(OrvOk);
}

// Each store has a lock of its own, taken one after the other. Inside the last one the iterators of
// the transaction end, which takes the lock of the iterators: the only two that nest.
OrvReturnT ExtCmRouterService::finish(unsigned long txHandle) {
    ORV_TRACE_ENTRY(" >> txHandle: %lu", txHandle);
    mBiDirUtils.removePendingBackpointersForTransaction(txHandle);
    mUniDirValidator.finish(txHandle);
    underLock(mTxData.mMutex, [&] {
        const auto found = mTxData.memoryByTx.find(txHandle);
        if (found != mTxData.memoryByTx.end()) {
            delete found->second;
            mTxData.memoryByTx.erase(found);
        }
    });
    return ORV_TRACE_RESULT(OrvOk);
}

OrvReturnT ExtCmRouterService::validate(unsigned long txHandle, bool* result) {
    ORV_TRACE_ENTRY(" >> txHandle: %lu", txHandle);
    if (result == nullptr) {
        return ORV_TRACE_RESULT(OrvFailure);
    }
    // Both are always asked, so that the client gets the messages of both. A validator that reaches
    // no verdict may write none, and that must not count as a good one.
    bool bi = false;
    bool uni = false;
    mBiDirValidator.validateBiDirs(txHandle, &bi);
    mUniDirValidator.validate(txHandle, &uni);
    *result = bi && uni;
    return ORV_TRACE_RESULT(OrvOk);
}

}
