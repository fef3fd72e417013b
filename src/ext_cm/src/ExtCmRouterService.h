// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_EXTCMROUTERSERVICE_H
#define ORV_EXT_CM_EXTCMROUTERSERVICE_H

#include "BiDirUtils.h"
#include "BiDirValidator.h"
#include "Component.h"
#include "ExtCmInterceptorRepository.h"
#include "MoImpl.h"
#include "MoImpl3.h"
#include "MoImpl3_1.h"
#include "OrvInterfaceBinders.h"
#include "UniDirValidator.h"
#include "life/TransactionData.h"
#include "values/IdMappings.h"

namespace OrvExtCmRouterService {

/// The component's one object. It owns everything else by value and lives until the process ends.
///
/// Life: constructed at the first orvLCMinit; registered and initialised when that has returned
/// OrvOk; started between start and stop. A start while started and a stop while stopped are legal.
/// None of these states is stored here: only the MO classes know whether they are started.
///
/// It is also the component's participant in the host's transactions. Everything that is kept for a
/// transaction goes with finish, and with nothing else that the host says about it.
///
/// Threads: the transactional operations on host threads, each transaction on one at a time; not
/// during start or stop, which take no lock over what they change here.
class ExtCmRouterService : public Orv::Component<ExtCmRouterService> {
public:
    /// Hands the portal on. \p argument is ignored.
    OrvReturnT initialize(const char* argument) override;
    void terminate() override;

    /// Starts the classes and looks up the host's transaction table. That a table is missing is not
    /// reported here. The code of the first MO class that fails; what is started by then stays so.
    OrvReturnT start(OrvStateChangeReason reason) override;

    /// Stops the classes and drops the memory of transactions that are still open. Always OrvOk.
    OrvReturnT stop(OrvStateChangeReason reason) override;

    // The six transactional operations, in any order, any number of times and for any handle.

    OrvReturnT join(unsigned long txHandle);
    OrvReturnT prepare(unsigned long txHandle);
    OrvReturnT commit(unsigned long txHandle);
    OrvReturnT abort(unsigned long txHandle);
    OrvReturnT finish(unsigned long txHandle);

    /// The verdict of both validators, always both, goes to \p result. The code says nothing about
    /// it: it is OrvOk also for a violation. OrvFailure, without a validation, for a null \p
    /// result.
    OrvReturnT validate(unsigned long txHandle, bool* result);

private:
    friend class Orv::Component<ExtCmRouterService>;

    ExtCmRouterService();
    ~ExtCmRouterService() override = default;

    // In the order of construction. The MO classes are given references to what is built after
    // them.
    IdMappings mIdMappings;
    MoImpl mMoImpl;
    MoImpl3 mMoImpl3;
    MoImpl3_1 mMoImpl3_1;
    ExtCmInterceptorRepository mInterceptors;
    Orv::TransactionalResource2Binder<ExtCmRouterService> mResourceBinder;
    TransactionData mTxData;
    BiDirUtils mBiDirUtils;
    BiDirValidator mBiDirValidator;
    UniDirValidator mUniDirValidator;
};

}

#endif
