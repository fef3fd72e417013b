// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_MOIMPL3_1_H
#define ORV_EXT_CM_MOIMPL3_1_H

#include "BiDirUtils.h"
#include "ExtCmInterceptorRepository.h"
#include "OrvInterfaceBinders.h"
#include "OrvMgmtSpiComponent_1.h"
#include "OrvMgmtSpiInterfacePortal.h"
#include "OrvMoAttributeValue.h"
#include "UniDirValidator.h"
#include "VekOamSpiManagedObject_3_1.h"
#include "life/TransactionData.h"
#include "values/IdMappings.h"

#include <Poco/Mutex.h>

#include <string>

namespace OrvExtCmRouterService {

class ConversionMemory;

/// What version 3_1 of the managed-object interface adds to version 3: setting several attributes
/// of one MO in one call. A client uses version 3 for everything else; the two services stand side
/// by side, each with its own router table and life.
///
/// Final, because the class has virtual operations and no virtual destructor.
///
/// Threads: as in MoImpl3.
class MoImpl3_1 final {
public:
    /// Stores the references and uses none: what they name may not be built yet.
    MoImpl3_1(IdMappings& ids, TransactionData& transactions, BiDirUtils& utils,
              UniDirValidator& validator);
    MoImpl3_1(const MoImpl3_1&) = delete;
    MoImpl3_1& operator=(const MoImpl3_1&) = delete;

    virtual Orv::AutoMemory* getTxData(unsigned long txHandle);
    virtual VekOamSpiManagedObject_3_1* getCmRouter();

    /// Neither is owned. Always OrvOk.
    OrvReturnT init(OrvMgmtSpiInterfacePortal_1* hostPortal,
                    ExtCmInterceptorRepository* interceptorRepository);

    /// Looks the router up, unless started. OrvFailure, with a log, if there is none.
    OrvReturnT start(OrvStateChangeReason reason);
    OrvReturnT stop(OrvStateChangeReason reason);

    /// The table offered to the host, owned by this object.
    VekOamSpiManagedObject_3_1* getMoInterface();

    /// The slot of the table. \p dn is external; \p attributes is not null and ended by a null
    /// pointer. All ids are looked at before anything is done: OrvInvalidArgument for one that must
    /// not stand in a DN, with the transaction joined and nothing else done. References are
    /// recorded before the change is passed on and stay recorded if it is refused.
    OrvReturnT setMoAttributes(unsigned long txHandle, const char* dn,
                               VekMoNamedAttributeValueContainer_3** attributes);

private:
    VekMoNamedAttributeValueContainer_3**
    convertAndRecord(unsigned long txHandle, const std::string& internalDn,
                     VekMoNamedAttributeValueContainer_3** attributes, ConversionMemory& memory);

    Poco::Mutex mMutex;
    VekOamSpiManagedObject_3_1* router = nullptr;       ///< the host's
    ExtCmInterceptorRepository* interceptors = nullptr; ///< given in init
    OrvMgmtSpiInterfacePortal_1* portal = nullptr;      ///< the host's, given in init
    bool started = false;
    Orv::ManagedObject3_1Binder<MoImpl3_1> binder;
    IdMappings& idMappings;
    TransactionData& txData;
    BiDirUtils& biDirUtils;
    UniDirValidator& uniDirValidator;
};

}

#endif
