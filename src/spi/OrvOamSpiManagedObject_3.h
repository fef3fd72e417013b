// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_SPI_ORVOAMSPIMANAGEDOBJECT_3_H
#define ORV_SPI_ORVOAMSPIMANAGEDOBJECT_3_H

#include "OrvMgmtSpiInterface_1.h"
#include "OrvMoAttributeValue.h"
#include "OrvReturn.h"
#include "OrvSpiNames.h"

#include <cstddef>

/// \file
/// The managed-object table of version "3". Conventions: OrvConventions.h.
///
/// One shape, offered twice: by the router, and by the component, which stands between the clients
/// and the router. For each call of a client the component translates the DNs, follows associations
/// (OrvAssociations.h), and calls the same slot of the router. The words *checked* and *not
/// checked* below are those of rule 4 of the conventions. What all slots have in common:
///
/// *DN*: external at the component, internal at the router (rule 8). Always checked.
///
/// *Joins*: the slot makes the component a participant of the transaction (rule 9).
///
/// *Intercepted*: the component calls the interceptor of the MO's MOC path in place of the router,
/// if there is one. An interceptor keeps the router's side of the contract.
///
/// *Results* are given with OrvOk (rule 3). After another code they are as the router left them,
/// and the client releases nothing. Out parameters are checked unless the slot says otherwise.
///
/// *Codes of the component*, common to all slots, in the order in which they are tested:
///   - OrvNotActive: it is stopped.
///   - OrvFailure: an argument that is checked is null or cannot be read. Nothing has been done.
///   - OrvNotExist: the DN cannot be translated. Nothing has been done.
///   - OrvFailure: the slot joins, and there is no transaction table. Nothing has been done, but
///     where a slot joins after the router's OrvOk.
///   - the code of the router or the interceptor, unchanged.
/// A line `Codes: common.` means these. A router answers what it likes: no code of it has a meaning
/// to the component, unless the line says so.
///
/// *Calls of the component on its own account*: in the client's transaction and with internal DNs
/// it calls existsMo, getMoAttribute and setMoAttribute for far sides and at `validate`, and
/// newMoIterator, nextMo and finalizeMoIterator to find the children of a deleted MO. These calls
/// meet no interceptor. Their codes do not reach the client (OrvAssociations.h, 8).
///
/// The router is looked up under two identities. A host should offer one router under both: the
/// helper library may take the answer for one of them as the answer for both (OrvHostGuide.h, 1).
struct OrvOamSpiManagedObject_3 {
    OrvMgmtSpiInterface_1 identity;

    /// Slot 1. Sets one attribute. Joins. Intercepted.
    /// DN:    \p dn, the MO.
    /// In:    checked: \p attrName, and the references in \p value. A client's \p value may be
    ///        null: "no value". The router always gets a container, in that case one of type 0 with
    ///        count 0. What is in a container that is no list of references is not checked.
    /// When:  started. The router also with the back-pointer lock held.
    /// Codes: common. OrvValidationFailed for a value of "networkManagedElementId" that cannot
    ///        stand in a DN (Orv::DnUtil::validateMoNamingAttr), on whatever MO. A value that is no
    ///        text cannot. The transaction is joined, and nothing else has been done.
    /// Why:   of that attribute the first value is read whatever the count says, and no value or an
    ///        empty text passes. Clients rely on both. "No value" does not clear a reference on
    ///        both sides: for that a client writes type 11 with count 0 (OrvAssociations.h, 5).
    OrvReturnT (*setMoAttribute)(unsigned long txHandle, const char* dn, const char* attrName,
                                 const OrvMoAttributeValueContainer_3* value);

    /// Slot 2. Reads one attribute, as the transaction sees it. Intercepted.
    /// DN:    \p dn, the MO.
    /// In:    checked: \p attrName.
    /// Out:   \p result: given. An attribute without a value is a container with count 0, of any
    ///        type. For a null container the client gets one of type 0 with count 0.
    /// When:  started. The router also with the back-pointer lock held, and from inside `validate`.
    /// Codes: common, but OrvFailure when stopped.
    /// Why:   it is the one slot that answers OrvFailure when stopped. For "managedElementId" of
    ///        the root (a DN of one step whose class begins with "ManagedElement") the client gets
    ///        the external identity, so that it can build DNs from it.
    OrvReturnT (*getMoAttribute)(unsigned long txHandle, const char* dn, const char* attrName,
                                 OrvMoAttributeValueResult_3* result);

    /// Slot 3. Reads several attributes of one MO. Intercepted.
    /// DN:    \p dn, the MO.
    /// In:    checked: \p attrNames, ended by a null pointer.
    /// Out:   \p result: given, the containers in the order of the names. If the router answers
    ///        with more containers than names, the client gets them all. For "managedElementId" of
    ///        the root the client gets the external identity, as in slot 2.
    /// When:  started.
    /// Codes: common.
    OrvReturnT (*getMoAttributes)(unsigned long txHandle, const char* dn, const char** attrNames,
                                  OrvMoAttributeValuesResult_3* result);

    /// Slot 4. Opens an iterator over the children of one class. Joins, after the router's OrvOk.
    /// DN:    \p dn, the parent. Empty: the top level; it is not translated.
    /// In:    not checked: \p className.
    /// Out:   \p iterator: with OrvOk a handle, owned by the callee until the transaction is
    ///        finished. It names nothing afterwards, so a late use is noticed and does no harm.
    /// When:  started.
    /// Codes: common, but a DN that cannot be translated gives OrvNotExist also when stopped.
    OrvReturnT (*newMoIterator)(unsigned long txHandle, const char* dn, const char* className,
                                unsigned long long* iterator);

    /// Slot 5. Gives the next child's naming value: the text after "=" in the child's last step.
    /// Out:   \p result: with OrvOk the text, owned by the component or the router that served the
    ///        call, until the next call with the same iterator; null is the end. After another code
    ///        the component leaves null or what the router left; nothing to read.
    /// When:  started, and not while the transaction of the iterator is being finished. The router
    ///        also gets handles that were finalized. It gives each child once: where the component
    ///        walks for itself, a name that comes again is left out.
    /// Codes: OrvNotActive for a handle that names nothing, before anything else, and when stopped.
    ///        OrvFailure if \p result is null. Then the router's.
    /// Why:   for an iterator over the top level the component replaces each name by the external
    ///        identity of the root, whatever the class (OrvHostGuide.h, 9). That text is the
    ///        translator's: it ends when the identity is configured anew.
    OrvReturnT (*nextMo)(unsigned long long iterator, char** result);

    /// Slot 6. Creates a child of an MO, with values. Joins.
    /// DN:    \p dn, the parent. Empty: the top level; it is translated, and an empty answer is
    ///        accepted.
    /// In:    checked: \p className, \p attrName (the naming attribute), \p attrValue (its value),
    ///        the references in \p attributes and the names of those of type 11; not checked: other
    ///        names. \p attributes is ended by a null pointer; a client's may be null: none. The
    ///        router always gets an array. The naming value is no DN: it is not translated, and any
    ///        text passes. The component neither adds the naming attribute to \p attributes nor
    ///        asks for it there: the router takes it from \p attrName and \p attrValue.
    /// When:  started. Associations are followed after the router's OrvOk. At the top level they
    ///        are not (OrvAssociations.h, 9).
    /// Codes: common. What fails after the router's OrvOk does not show, except by an exception.
    OrvReturnT (*createMo)(unsigned long txHandle, const char* dn, const char* className,
                           const char* attrName, const char* attrValue,
                           OrvMoNamedAttributeValueContainer_3** attributes);

    /// Slot 7. Deletes an MO with its subtree. Joins.
    /// DN:    \p dn, the MO.
    /// When:  started. Before the router is called, the MOs of the subtree leave the far sides of
    ///        their associations, children first; that asks for the children of each of them, class
    ///        by class, with slots 4, 5 and 9. They leave under the text of \p dn, and below it
    ///        under `Class=value`: a far side that has the other form of the DN keeps its reference
    ///        (OrvAssociations.h, 9). More than 10,000 levels are cut off, with a log of level 3.
    /// Codes: common.
    OrvReturnT (*deleteMo)(unsigned long txHandle, const char* dn);

    /// Slot 8. Calls an action of an MO. Joins. No association is followed.
    /// DN:    \p dn, the MO.
    /// In:    checked: \p parameters, ended by a null pointer, and the references in them; not
    ///        checked: \p name and the names of parameters.
    /// Out:   \p result: given; both fields may be null: no result.
    /// When:  started.
    /// Codes: common.
    OrvReturnT (*action)(unsigned long txHandle, const char* dn, const char* name,
                         OrvMoNamedAttributeValueContainer_3** parameters,
                         OrvMoAttributeValueResult_3* result);

    /// Slot 9. Says that the caller is done with an iterator.
    /// When:  as nextMo. The router gets it when a client calls it, and after each walk that the
    ///        component makes for a deleteMo. A client may call it never, or more than once: a
    ///        router ends the iterators of a transaction when that is finished.
    /// Codes: OrvOk, always: also for a handle that names nothing, and when stopped. The router's
    ///        code is not looked at.
    OrvReturnT (*finalizeMoIterator)(unsigned long long iterator);

    /// Slot 10. Asks whether an MO exists, as the transaction sees it.
    /// DN:    \p dn, the MO.
    /// Out:   \p exists, not checked: with OrvOk the answer; the component reads any byte but 0 as
    ///        true.
    /// When:  started. The router also with the back-pointer lock held, and from inside `validate`.
    /// Codes: common. For an MO that does not exist OrvOk and false; on its own account the
    ///        component takes any other code for the same.
    OrvReturnT (*existsMo)(unsigned long txHandle, const char* dn, bool* exists);

    /// Slot 11. Counts the children of one class.
    /// DN:    \p dn, the parent. Empty: the top level; it is not translated.
    /// In:    not checked: \p className.
    /// Out:   \p count, not checked: with OrvOk the number.
    /// When:  started.
    /// Codes: common.
    OrvReturnT (*countMoChildren)(unsigned long txHandle, const char* dn, const char* className,
                                  unsigned long long* count);
};

/// Identity of the router's table: the one that client operations are forwarded to.
constexpr VekMgmtSpiInterface_1 OrvOamSpiManagedObject_3_RouterId = {OrvOamSpiCmRouterService,
                                                                     "OrvOamSpiManagedObject", "3"};
/// The other identity of the router's table: the one that far sides and validation ask for, through
/// the helper library. `start` does not fail without it: OrvHostGuide.h, 1.
constexpr VekMgmtSpiInterface_1 VekOamSpiManagedObject_3_RouterId = {VekOamSpiCmRouterService,
                                                                     "VekOamSpiManagedObject", "3"};
/// Identity of the component's table.
constexpr VekMgmtSpiInterface_1 OrvOamSpiManagedObject_3_ExtCmId = {OrvOamSpiExtCmRouterService,
                                                                    "OrvOamSpiManagedObject", "3"};

static_assert(offsetof(OrvOamSpiManagedObject_3, setMoAttribute) == 3 * sizeof(void*), "slot 1");
static_assert(offsetof(OrvOamSpiManagedObject_3, getMoAttribute) == 4 * sizeof(void*), "slot 2");
static_assert(offsetof(OrvOamSpiManagedObject_3, getMoAttributes) == 5 * sizeof(void*), "slot 3");
static_assert(offsetof(OrvOamSpiManagedObject_3, newMoIterator) == 6 * sizeof(void*), "slot 4");
static_assert(offsetof(OrvOamSpiManagedObject_3, nextMo) == 7 * sizeof(void*), "slot 5");
static_assert(offsetof(OrvOamSpiManagedObject_3, createMo) == 8 * sizeof(void*), "slot 6");
static_assert(offsetof(OrvOamSpiManagedObject_3, deleteMo) == 9 * sizeof(void*), "slot 7");
static_assert(offsetof(OrvOamSpiManagedObject_3, action) == 10 * sizeof(void*), "slot 8");
static_assert(offsetof(OrvOamSpiManagedObject_3, finalizeMoIterator) == 11 * sizeof(void*),
              "slot 9");
static_assert(offsetof(OrvOamSpiManagedObject_3, existsMo) == 12 * sizeof(void*), "slot 10");
static_assert(offsetof(OrvOamSpiManagedObject_3, countMoChildren) == 13 * sizeof(void*), "slot 11");
static_assert(sizeof(OrvOamSpiManagedObject_3) == 14 * sizeof(void*), "eleven slots");

#endif
