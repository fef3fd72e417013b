// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_ROUTER_ROUTERTABLE3_H
#define ORV_HOST_ROUTER_ROUTERTABLE3_H

#include "OrvInterfaceBinders.h"
#include "RouterCore.h"

namespace OrvHost {

/// The router's table of version "3", offered under two identities: converts records into values
/// and back. Results have their own release functions. The operations are those of
/// OrvOamSpiManagedObject_3; DNs are internal.
class RouterTable3 {
public:
    explicit RouterTable3(RouterCore& core);
    RouterTable3(const RouterTable3&) = delete;
    RouterTable3& operator=(const RouterTable3&) = delete;

    OrvOamSpiManagedObject_3* getInterface() { return mBinder.getInterface(); }
    OrvOamSpiManagedObject_3* getVekInterface() { return &mVekInterface; }

    OrvReturnT setMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                              const OrvMoAttributeValueContainer_3* value);
    OrvReturnT getMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                              OrvMoAttributeValueResult_3* result);
    OrvReturnT getMoAttributes(unsigned long txHandle, const char* dn, const char** attrNames,
                               OrvMoAttributeValuesResult_3* result);
    OrvReturnT newMoIterator(unsigned long txHandle, const char* dn, const char* className,
                             unsigned long long* iterator);
    OrvReturnT nextMo(unsigned long long iterator, char** result);
    OrvReturnT createMo(unsigned long txHandle, const char* dn, const char* className,
                        const char* attrName, const char* attrValue,
                        OrvMoNamedAttributeValueContainer_3** attributes);
    OrvReturnT deleteMo(unsigned long txHandle, const char* dn);
    OrvReturnT action(unsigned long txHandle, const char* dn, const char* name,
                      OrvMoNamedAttributeValueContainer_3** parameters,
                      OrvMoAttributeValueResult_3* result);
    /// OrvNotActive for a handle that is not known, or has been finalized.
    OrvReturnT finalizeMoIterator(unsigned long long iterator);
    OrvReturnT existsMo(unsigned long txHandle, const char* dn, bool* exists);
    OrvReturnT countMoChildren(unsigned long txHandle, const char* dn, const char* className,
                               unsigned long long* count);

private:
    RouterCore& mCore;
    Orv::ManagedObject3Binder<RouterTable3> mBinder;
    OrvOamSpiManagedObject_3 mVekInterface; ///< the binder's functions under the second identity
};

}

#endif
