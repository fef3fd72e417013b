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

/// Base of an interceptor, which takes over operations on the MOs of one MOC path in the router's
/// place. Each operation here passes the call on to the router, unchanged, and answers what the
/// router answered. A derived class overrides what it wants to change and may call the base for the
/// rest. Conventions: OrvConventions.h.
///
/// An interceptor belongs to a component of its own (Component.h), which the host starts after
/// ext_cm. In its `start` it calls initialize, tests the three fields, and then registers with
/// `repository->registerClass(*this, "Parent,Unit")`; in its `stop` it calls deregisterClass. Both
/// are declared in ExtCmInterceptorRepository.h, which the source must include. The repository is
/// found by ExtCmInterceptorRepositoryI_1_Id, through the lookup that the host has attached to
/// Orv::Portal.
///
/// The component calls four of the operations: getMoAttribute, getMoAttributes, setMoAttribute and
/// setMoAttributes, each instead of the router's slot of that name. The other eight are for derived
/// classes to call: a client's createMo, deleteMo, action, existsMo, countMoChildren and iterators
/// always go to the router.
///
/// An operation keeps the router's side of the contract of its slot, in OrvOamSpiManagedObject_3.h
/// and VekOamSpiManagedObject_3_1.h. In short:
///   - DNs are internal, also those in values; any text can arrive where a DN should be.
///   - Pointers that go in are borrowed. What In calls checked is never null; the rest may be.
///   - A result is given to the caller with OrvOk; with another code leave it alone.
///   - Any code goes to the client unchanged. A std::exception becomes OrvFailure there.
///
/// Threads: operations run on the threads of the clients, any number at once, from registerClass
/// until the last call that was begun before deregisterClass has returned. The component holds none
/// of its locks. The base has no lock and does not change after initialize.
class __attribute__((visibility("default"))) MoInterceptorBase {
public:
    /// Finds nothing yet: the three fields are null.
    MoInterceptorBase();
    MoInterceptorBase(const MoInterceptorBase&) = delete;
    MoInterceptorBase& operator=(const MoInterceptorBase&) = delete;

    /// Looks up the router's tables and the component's repository through Orv::Portal. To be
    /// called before the object registers or forwards, while the component is started: in the
    /// `start` of the component that the interceptor belongs to. May be called again.
    ///
    /// It has no result. What is not found is logged at level 4 as "Interface %s not found" and
    /// stays null. To forward through a null table ends the process, so test the fields.
    void initialize();

    /// The object must be registered under no path any more.
    virtual ~MoInterceptorBase();

    /// Called by the component. An unset attribute is a container with count 0, or none.
    virtual OrvReturnT getMoAttribute(unsigned long txHandle, char const* dn, char const* attrName,
                                      OrvMoAttributeValueResult_3* result);
    /// Called by the component. \p attrNames is ended by a null pointer; one container for each, in
    /// their order.
    virtual OrvReturnT getMoAttributes(unsigned long txHandle, char const* dn,
                                       char const** attrNames,
                                       OrvMoAttributeValuesResult_3* result);
    /// Called by the component, after the far sides of associations have been written. \p value is
    /// never null; a client's missing value arrives as an empty one of type 0.
    virtual OrvReturnT setMoAttribute(unsigned long txHandle, char const* dn, char const* attrName,
                                      OrvMoAttributeValueContainer_3 const* value);
    /// Called by the component, as setMoAttribute. \p attributes is ended by a null pointer. The
    /// one operation that uses the router's table of version "3_1".
    virtual OrvReturnT setMoAttributes(unsigned long txHandle, char const* dn,
                                       VekMoNamedAttributeValueContainer_3** attributes);

    // For derived classes to call. Iterator handles are the router's own.

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
    // Null until initialize has found them. Not owned.
    OrvOamSpiManagedObject_3* mo3Router;
    VekOamSpiManagedObject_3_1* mo3_1Router;
    ExtCmInterceptorRepository* repository; ///< the component's; see ExtCmInterceptorRepository.h
};

}

#endif
