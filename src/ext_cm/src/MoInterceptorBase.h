// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_MOINTERCEPTORBASE_H
#define ORV_EXT_CM_MOINTERCEPTORBASE_H

#include "OrvMoAttributeValue.h"
#include "OrvOamSpiManagedObject_3.h"
#include "OrvReturn.h"
#include "VekOamSpiManagedObject_3_1.h"

namespace OrvExtCmRouterService {

class ExtCmInterceptorRepository;

/// Base of an interceptor, which takes over operations on the MOs of one class path in the router's
/// place. Each operation passes the call on to the router, unchanged; a derived class overrides
/// what it wants to change and may call the base for the rest.
///
/// All DNs, also those in values, are internal. Pointer arguments are borrowed; the result records
/// are those of the router, with its rules for who releases what.
///
/// The component itself calls getMoAttribute, getMoAttributes, setMoAttribute and setMoAttributes
/// only. The other eight are for derived classes: a client's createMo, deleteMo, action, existsMo,
/// countMoChildren and iterators always go to the router.
///
/// Threads: operations run on the host threads of the MO operations, any number at once. The base
/// has no lock and does not change after initialize.
class __attribute__((visibility("default"))) MoInterceptorBase {
public:
    MoInterceptorBase();
    MoInterceptorBase(const MoInterceptorBase&) = delete;
    MoInterceptorBase& operator=(const MoInterceptorBase&) = delete;

    /// Looks up the router's tables and the component's repository. To be called before the object
    /// registers or forwards. What is not found is logged and stays null, and forwarding through it
    /// is then not possible: whoever needs to know tests the fields.
    void initialize();

    virtual ~MoInterceptorBase();

    virtual OrvReturnT getMoAttribute(unsigned long txHandle, char const* dn, char const* attrName,
                                      OrvMoAttributeValueResult_3* result);
    /// \p attrNames is ended by a null pointer.
    virtual OrvReturnT getMoAttributes(unsigned long txHandle, char const* dn,
                                       char const** attrNames,
                                       OrvMoAttributeValuesResult_3* result);
    /// \p value is never null; a client's missing value arrives as an empty one of type 0.
    virtual OrvReturnT setMoAttribute(unsigned long txHandle, char const* dn, char const* attrName,
                                      OrvMoAttributeValueContainer_3 const* value);
    /// \p attributes is ended by a null pointer. The one operation that uses the router's table of
    /// version 3_1.
    virtual OrvReturnT setMoAttributes(unsigned long txHandle, char const* dn,
                                       VekMoNamedAttributeValueContainer_3** attributes);
    virtual OrvReturnT newMoIterator(unsigned long txHandle, char const* dn, char const* className,
                                     unsigned long long* iterator);
    virtual OrvReturnT nextMo(unsigned long long iterator, char** result);
    /// \p dn is the parent.
    virtual OrvReturnT createMo(unsigned long txHandle, char const* dn, char const* className,
                                char const* attrName, char const* attrValue,
                                OrvMoNamedAttributeValueContainer_3** attributes);
    virtual OrvReturnT deleteMo(unsigned long txHandle, char const* dn);
    virtual OrvReturnT action(unsigned long txHandle, char const* dn, char const* name,
                              OrvMoNamedAttributeValueContainer_3** parameters,
                              OrvMoAttributeValueResult_3* result) const;
    virtual OrvReturnT finalizeMoIterator(unsigned long long iterator) const;
    virtual OrvReturnT existsMo(unsigned long txHandle, char const* dn, bool* exists);
    virtual OrvReturnT countMoChildren(unsigned long txHandle, char const* dn,
                                       char const* className, unsigned long long* count);

protected:
    OrvOamSpiManagedObject_3* mo3Router;
    VekOamSpiManagedObject_3_1* mo3_1Router;
    ExtCmInterceptorRepository* repository; ///< the component's, for the derived class to register
};

}

#endif
