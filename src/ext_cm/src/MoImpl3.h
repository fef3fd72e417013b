// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_MOIMPL3_H
#define ORV_EXT_CM_MOIMPL3_H

#include "BiDirUtils.h"
#include "ExtCmInterceptorRepository.h"
#include "MoImpl.h"
#include "OrvInterfaceBinders.h"
#include "OrvMgmtSpiComponent_1.h"
#include "OrvMgmtSpiInterfacePortal.h"
#include "OrvMoAttributeValue.h"
#include "OrvOamSpiManagedObject_3.h"
#include "UniDirValidator.h"
#include "life/TransactionData.h"
#include "values/IdMappings.h"

#include <Poco/Mutex.h>

#include <string>

namespace OrvExtCmRouterService {

class ConvertedResultData;
class MoInterceptorBase;

/// The managed-object interface of version 3: translates DNs, also those in values, asks an
/// interceptor or else the host's router, and keeps associations in step with what is written.
///
/// Only the operations on attributes ever ask an interceptor. Nothing is undone here: after an
/// operation that failed halfway it is for the transaction to be aborted.
///
/// Threads: operations from any number of host threads, a transaction on one at a time; not during
/// start or stop. `started` and `router` are read without a lock; mMutex guards the two writes in
/// stop. No lock is held while an interceptor or the router runs.
class MoImpl3 : public IterImpl<OrvOamSpiManagedObject_3, unsigned long long> {
public:
    /// Stores the references and uses none: what they name may not be built yet.
    MoImpl3(IdMappings& ids, TransactionData& transactions, BiDirUtils& utils,
            UniDirValidator& validator);

    /// Neither is owned. Always OrvOk.
    OrvReturnT init(OrvMgmtSpiInterfacePortal_1* hostPortal,
                    ExtCmInterceptorRepository* interceptorRepository);

    /// Looks the router up, unless started. OrvFailure, with a log, if there is none.
    OrvReturnT start(OrvStateChangeReason reason);
    OrvReturnT stop(OrvStateChangeReason reason);

    /// The table offered to the host, owned by this object.
    OrvOamSpiManagedObject_3* getMoInterface();

    // The slots of the table. DNs are external. OrvNotActive when stopped, OrvFailure, with nothing
    // done, for a null or a value that would have to be read and cannot be, OrvNotExist for a DN
    // that cannot be translated; the codes of router and interceptor as they are.

    /// OrvValidationFailed for an id that must not stand in a DN or is no text; the transaction is
    /// joined then, and nothing else done. \p value may be null. References are recorded before the
    /// change is passed on: the recording compares with the value that is still there.
    OrvReturnT setMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                              const OrvMoAttributeValueContainer_3* value);

    /// OrvFailure, not OrvNotActive, when stopped, and for a null \p result. What a success leaves
    /// in \p result is never null.
    OrvReturnT getMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                              OrvMoAttributeValueResult_3* result);
    OrvReturnT getMoAttributes(unsigned long txHandle, const char* dn, const char** attrNames,
                               OrvMoAttributeValuesResult_3* result);

    /// References of the new MO are recorded after the router has taken it. \p dn may be empty,
    /// \p attributes null.
    OrvReturnT createMo(unsigned long txHandle, const char* dn, const char* className,
                        const char* attrName, const char* attrValue,
                        OrvMoNamedAttributeValueContainer_3** attributes);

    /// The MO leaves the records of associations before the router is asked.
    OrvReturnT deleteMo(unsigned long txHandle, const char* dn);

    /// A result without values stays the router's. \p name and the parameters' names may be null.
    OrvReturnT action(unsigned long txHandle, const char* dn, const char* name,
                      OrvMoNamedAttributeValueContainer_3** parameters,
                      OrvMoAttributeValueResult_3* result);

    /// OrvOk, also for an unknown handle and whatever the router answers. The record lives on until
    /// the transaction ends.
    OrvReturnT finalizeMoIterator(unsigned long long iterator);
    OrvReturnT existsMo(unsigned long txHandle, const char* dn, bool* exists);

    /// \p dn may be empty; the translator is not asked then.
    OrvReturnT countMoChildren(unsigned long txHandle, const char* dn, const char* className,
                               unsigned long long* count);

protected:
    Orv::AutoMemory* getTxData(unsigned long txHandle) override;
    OrvOamSpiManagedObject_3* getCmRouter() override;

private:
    /// Null if no interceptor is registered for the class of \p internalDn. Not owned.
    MoInterceptorBase* interceptorFor(const std::string& internalDn);

    /// The last steps of a set: for a value that may hold references, and for one in its internal
    /// form. They give back what the router or the interceptor answers.
    OrvReturnT setReferences(unsigned long txHandle, const std::string& internalDn,
                             const char* attrName, const OrvMoAttributeValueContainer_3& value);
    OrvReturnT passOn(unsigned long txHandle, const std::string& internalDn, const char* attrName,
                      const OrvMoAttributeValueContainer_3& value);

    // These put a converted view in the place of a producer's \p result. The view belongs to the
    // result: it and the original end when the client releases that. After an exception the result
    // is still the producer's.

    /// For an attribute that was read. \p dn is external. The view is returned for those who put
    /// results together: they take it, and \p result with it.
    ConvertedResultData* createConvertedData(const char* dn, const char* attrName,
                                             OrvMoAttributeValueResult_3& result);
    /// For what an action has answered.
    void wrap(OrvMoAttributeValueResult_3& result);
    /// For the values of several attributes, at least one. \p dn is external.
    void wrapMany(const char* dn, const char** attrNames, OrvMoAttributeValuesResult_3& result);

    class CreatedMo;

    /// Keeps associations in step with an MO that the router has taken. \p attributes are the
    /// converted ones.
    void recordCreation(unsigned long txHandle, CreatedMo& created,
                        OrvMoNamedAttributeValueContainer_3** attributes);

    Poco::Mutex mMutex;
    OrvOamSpiManagedObject_3* router = nullptr;         ///< the host's
    ExtCmInterceptorRepository* interceptors = nullptr; ///< given in init
    OrvMgmtSpiInterfacePortal_1* portal = nullptr;      ///< the host's, given in init
    bool started = false;
    Orv::ManagedObject3Binder<MoImpl3> binder;
    IdMappings& idMappings;
    TransactionData& txData;
    BiDirUtils& biDirUtils;
    UniDirValidator& uniDirValidator;
};

}

#endif
