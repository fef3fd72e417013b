// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_ROUTER_ROUTERTABLE1_H
#define ORV_HOST_ROUTER_ROUTERTABLE1_H

#include "OrvInterfaceBinders.h"
#include "RouterCore.h"

namespace OrvHost {

/// The router's table of version "1": converts records into values and back. What it returns is
/// kept in the transaction's memory until the transaction is finished.
///
/// The operations are those of OrvOamSpiManagedObject_1; DNs are internal. An empty result of an
/// action is a container without values, never null.
class RouterTable1 {
public:
    explicit RouterTable1(RouterCore& core);

    OrvOamSpiManagedObject_1* getInterface() { return mBinder.getInterface(); }

    OrvReturnT setMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                              const OrvMoAttributeValueContainer* value);
    OrvReturnT getMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                              OrvMoAttributeValueContainer** result);
    OrvReturnT newMoIterator(unsigned long txHandle, const char* dn, const char* className,
                             void** iterator);
    OrvReturnT nextMo(void* iterator, char** result);
    OrvReturnT createMo(unsigned long txHandle, const char* dn, const char* className,
                        const char* attrName, const char* attrValue);
    OrvReturnT deleteMo(unsigned long txHandle, const char* dn);
    OrvReturnT action(unsigned long txHandle, const char* dn, const char* name,
                      OrvMoAttributeValueContainer** parameters,
                      OrvMoAttributeValueContainer** result);

private:
    RouterCore& mCore;
    Orv::ManagedObject1Binder<RouterTable1> mBinder;
};

}

#endif
