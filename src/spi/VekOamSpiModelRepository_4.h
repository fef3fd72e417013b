// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_SPI_VEKOAMSPIMODELREPOSITORY_4_H
#define ORV_SPI_VEKOAMSPIMODELREPOSITORY_4_H

#include "OrvMgmtSpiInterfacePortal.h"
#include "OrvMgmtSpiInterface_1.h"
#include "OrvReturn.h"
#include "OrvSpiNames.h"

#include <cstddef>

/// \file
/// The host's model repository: classes (MOCs), attributes, types, containments and associations.
/// Conventions: OrvConventions.h.
///
/// An example with its handles, names and bounds stands in OrvAssociations.h, 2.
///
/// 1. Handles are opaque 64-bit values, compared as a whole, and good until the component is
///    stopped. Zero names nothing. Out parameters are the component's own variables, set to zero,
///    null or false before the call; a function that fails leaves them so.
/// 2. The component relies on them: each sub-table that has a name must be there with all its
///    entries. Sub-tables and entries named `reserved` are never touched.
/// 3. Codes are OrvOk, OrvNotExist for "no such object" (from a lookup) or "end of the list" (from
///    a first or next step), and any other for a failure. What becomes of a failure depends on who
///    asks. The line Codes names one of two rules:
///      - *lenient*: what serves bidirectional associations. A failure counts as zero, null or
///        false.
///      - *strict*: what serves unidirectional associations. At `validate` every failure means that
///        the transaction is not valid, with a log of level 4. At a write it means that the
///        reference is not recorded, and so not judged, with a log of level 4.
///    `lenient, strict` means that both ask. The names of the rules say nothing about the
///    attribute: the check of bidirectional associations asks about each reference attribute that
///    was written on an MO of a class that takes part in one, also about a unidirectional one
///    (OrvAssociations.h, 6).
/// 4. Texts are owned by the repository until it changes its model or goes, which it must not while
///    a component is started. A null text is no name.
/// 5. The model does not change while a component is started. All is called from any thread, by
///    several at once, and must not call the component. When says who asks: *write* is an operation
///    that sets a reference or creates an MO, *delete* is deleteMo, *validate* is that phase. It
///    names the lock of the component that may be held; where it names none, none is.
/// 6. A list has an end and no member twice. After a million steps it counts as ended, which is
///    logged at level 3.
/// 7. A class is a MOC with a handle of its own; the component knows no base classes. What a class
///    inherits is listed for it like its own (OrvAssociations.h, 2).
///
/// If the portal has no such table, the component starts all the same. It then follows no
/// association, and finds no transaction valid. It finds the table with Orv::Portal, which keeps it
/// over a stop and a start (OrvHostGuide.h, 5).
///
/// How an association lies in the model: a bidirectional association joins two ends. The name of an
/// end is the name of the attribute that points at that end's MOC, and that attribute lives in the
/// MOC at the opposite end. For ends eX (MOC X) and eY (MOC Y): the attribute of X that refers to Y
/// is named after eY; getEndAttribute(eX) is the attribute of Y that refers to X. The two ends have
/// different names. An association can join a MOC to itself: both ends then name that MOC. A
/// unidirectional association has one end of interest: its name is the reference attribute's name
/// and its MOC a permitted target. An attribute with several permitted targets has one association,
/// and so one end of its name, for each; the type of the attribute then refers to a MOC named
/// "ManagedObject" (getReferencedMoc).

typedef unsigned long long VekOamSpiMrMocHandle_4T;
typedef unsigned long long VekOamSpiMrBiDirAssociationHandle_4T;
typedef unsigned long long VekOamSpiMrUniDirAssociationHandle_4T;
typedef unsigned long long VekOamSpiMrAssociationEndHandle_4T;
typedef unsigned long long VekOamSpiMrAttributeHandle_4T;
typedef unsigned long long VekOamSpiMrTypeHandle_4T;
typedef unsigned long long VekOamSpiMrGeneralPropertiesHandle_4T;
typedef unsigned long long VekOamSpiMrContainmentHandle_4T;

// Property identifiers.
constexpr int VekOamSpiMrGeneralName_4 = 0; ///< general text: name of the MOC, attribute or end
constexpr int VekOamSpiMrEndName_4 = 0;     ///< text of an end: its name
constexpr int VekOamSpiMrEndRole_4 = 1;     ///< text of an end: the word for what is counted there
/// Flag of an end: when an MO of this end's MOC is deleted, its attribute of the association is not
/// followed, and the MOs that it refers to go on referring to it.
constexpr int VekOamSpiMrEndKeepAtDelete_4 = 0;
constexpr int VekOamSpiMrLowerBound_4 = 0; ///< number of an end or type: lower bound
constexpr int VekOamSpiMrUpperBound_4 = 1; ///< number of an end or type: upper bound

/// Type code of an attribute that holds references: the code of a reference value record.
constexpr int VekOamSpiMrTypeMoRef_4 = 11;

/// Sub-table 0.
struct VekOamSpiMrDnLookup_4 {
    OrvReservedSlot reserved0;
    OrvReservedSlot reserved1;

    /// Entry 2. Finds the MOC of the object that a DN names, by the DN's class path alone: the
    /// object need not exist. \p flag is always 1 and has no meaning to the component: ignore it.
    /// DN:    \p dn, internal. Never null, but any text: what a client wrote as a reference comes
    ///        here as it is, also an empty text. A step can be `Class.attr=value`. A text that
    ///        begins with a comma must be answered with OrvNotExist (rule 8 of the conventions);
    ///        Orv::DnUtil::getMocPath passes over that comma.
    /// Out:   \p moc: a handle, not zero.
    /// When:  write, delete, validate (reference lock).
    /// Codes: OrvNotExist: no MOC. At write and delete any code but OrvOk is logged, and the MO or
    ///        the reference is left out; at validate it makes the transaction invalid.
    OrvReturnT (*getMocFromDn)(const char* dn, int flag, VekOamSpiMrMocHandle_4T* moc);
};

/// Sub-table 1.
struct VekOamSpiMrGeneralProperties_4 {
    /// Entry 0. Gives a text of a block of general properties. \p identifier is always that of the
    /// name of the MOC, attribute or end that the block belongs to (VekOamSpiMrGeneralName_4).
    /// Out:   \p text, owned by the repository.
    /// When:  write (back-pointer lock), delete, validate (reference lock).
    /// Codes: lenient, strict.
    OrvReturnT (*getGeneralStringProperty)(VekOamSpiMrGeneralPropertiesHandle_4T properties,
                                           int identifier, const char** text);
};

/// Sub-table 3.
struct VekOamSpiMrMocQueries_4 {
    /// Entry 0. Gives the general properties of a MOC.
    /// Out:   \p properties: a handle for getGeneralStringProperty.
    /// When:  delete, validate (reference lock).
    /// Codes: lenient, strict.
    OrvReturnT (*getMocGeneralProperties)(VekOamSpiMrMocHandle_4T moc,
                                          VekOamSpiMrGeneralPropertiesHandle_4T* properties);
    OrvReservedSlot reserved1;
    OrvReservedSlot reserved2;
    OrvReservedSlot reserved3;
    OrvReservedSlot reserved4;

    /// Entry 5. Gives the first attribute of a MOC. The list holds every attribute by which MOs of
    /// this MOC refer to others.
    /// Out:   \p attribute: a handle for getNextAttribute.
    /// When:  validate.
    /// Codes: OrvNotExist: it has none. Any other code does not end the walk (see
    ///        getNextAttribute).
    OrvReturnT (*getFirstAttribute)(VekOamSpiMrMocHandle_4T moc,
                                    VekOamSpiMrAttributeHandle_4T* attribute);
    OrvReservedSlot reserved6;

    /// Entry 7. Gives the first containment of which the MOC is the parent.
    /// Out:   \p containment: a handle for getNextContainment.
    /// When:  delete.
    /// Codes: any but OrvOk: the MOC contains nothing.
    OrvReturnT (*getFirstContainment)(VekOamSpiMrMocHandle_4T moc,
                                      VekOamSpiMrContainmentHandle_4T* containment);
    OrvReservedSlot reserved8;

    /// Entry 9. Gives the first bidirectional association that the MOC takes part in, at either
    /// end. An association that joins the MOC to itself comes once.
    /// Out:   \p association: a handle for getNextBiDirAssociation.
    /// When:  write, delete, validate.
    /// Codes: any but OrvOk: it takes part in none.
    OrvReturnT (*getFirstBiDirAssociation)(VekOamSpiMrMocHandle_4T moc,
                                           VekOamSpiMrBiDirAssociationHandle_4T* association);

    /// Entry 10. Gives the first unidirectional association of which the MOC holds the attribute.
    /// Out:   \p association: a handle for getNextUniDirAssociation. It is kept until the
    ///        transaction is finished: validation starts its walk there.
    /// When:  write.
    /// Codes: OrvNotExist: it has none. Any other: strict.
    OrvReturnT (*getFirstUniDirAssociation)(VekOamSpiMrMocHandle_4T moc,
                                            VekOamSpiMrUniDirAssociationHandle_4T* association);
};

/// Sub-table 4.
struct VekOamSpiMrContainment_4 {
    OrvReservedSlot reserved0;
    OrvReservedSlot reserved1;

    /// Entry 2. Gives the child MOC of a containment.
    /// Out:   \p moc: a handle.
    /// When:  delete.
    /// Codes: lenient.
    OrvReturnT (*getContainedMoc)(VekOamSpiMrContainmentHandle_4T containment,
                                  VekOamSpiMrMocHandle_4T* moc);
    OrvReservedSlot reserved3;
    OrvReservedSlot reserved4;

    /// Entry 5. Gives the containment of the same parent that follows.
    /// Out:   \p next: a handle.
    /// When:  delete.
    /// Codes: OrvNotExist: the end. Any other is logged at level 3; the children found so far
    ///        count.
    OrvReturnT (*getNextContainment)(VekOamSpiMrContainmentHandle_4T containment,
                                     VekOamSpiMrContainmentHandle_4T* next);
};

/// Sub-table 5. An end can be of either kind of association.
struct VekOamSpiMrAssociationEnd_4 {
    /// Entry 0. Gives the MOC at this end.
    /// Out:   \p moc: a handle.
    /// When:  write, delete, validate (reference lock).
    /// Codes: lenient, strict.
    OrvReturnT (*getEndMoc)(VekOamSpiMrAssociationEndHandle_4T end, VekOamSpiMrMocHandle_4T* moc);

    /// Entry 1. Gives the attribute that points at this end's MOC; it lives in the opposite MOC.
    /// Asked for ends of bidirectional associations only.
    /// Out:   \p attribute: a handle.
    /// When:  validate.
    /// Codes: lenient.
    OrvReturnT (*getEndAttribute)(VekOamSpiMrAssociationEndHandle_4T end,
                                  VekOamSpiMrAttributeHandle_4T* attribute);

    /// Entry 2. Gives the general properties of the end; the name in them is that of
    /// getEndStringProperty. Asked for ends of bidirectional associations only.
    /// Out:   \p properties: a handle for getGeneralStringProperty.
    /// When:  write (back-pointer lock), delete.
    /// Codes: lenient.
    OrvReturnT (*getEndGeneralProperties)(VekOamSpiMrAssociationEndHandle_4T end,
                                          VekOamSpiMrGeneralPropertiesHandle_4T* properties);

    /// Entry 3. Gives a text of the end: its name (VekOamSpiMrEndName_4), or the word that stands
    /// after the number in messages (VekOamSpiMrEndRole_4, of bidirectional associations only). The
    /// word is seen only if the bounds of the attribute's type let the number pass.
    /// Out:   \p text, owned by the repository.
    /// When:  write, validate (reference lock).
    /// Codes: lenient, strict.
    OrvReturnT (*getEndStringProperty)(VekOamSpiMrAssociationEndHandle_4T end, int identifier,
                                       const char** text);

    /// Entry 4. Gives a flag of the end. \p identifier is always VekOamSpiMrEndKeepAtDelete_4: if
    /// set, the attribute that an MO of this end's MOC has for this association is not followed
    /// when that MO is deleted. Asked for ends of bidirectional associations only.
    /// Out:   \p flag: one byte is written; any value but 0 is true.
    /// When:  delete.
    /// Codes: lenient.
    OrvReturnT (*getEndBoolProperty)(VekOamSpiMrAssociationEndHandle_4T end, int identifier,
                                     bool* flag);

    /// Entry 5. Gives a bound of the number of references to this end's MOC: the lower one
    /// (VekOamSpiMrLowerBound_4) or the upper one (VekOamSpiMrUpperBound_4). Both are inclusive.
    /// Out:   \p number.
    /// When:  validate (reference lock).
    /// Codes: lenient, strict.
    /// Why:   an open upper bound is a large positive number; the largest one will do. It is shown
    ///        to clients as it is. There is no marker for it: -1 refuses every number at a
    ///        bidirectional association and none at a unidirectional one.
    OrvReturnT (*getEndIntProperty)(VekOamSpiMrAssociationEndHandle_4T end, int identifier,
                                    long long* number);
};

/// Sub-table 6.
struct VekOamSpiMrBiDirAssociation_4 {
    OrvReservedSlot reserved0;
    OrvReservedSlot reserved1;

    /// Entry 2. Gives the first of the two ends; which one that is never changes.
    /// Out:   \p end: a handle, the same for the same end each time.
    /// When:  write, delete, validate.
    /// Codes: lenient.
    OrvReturnT (*getFirstEnd)(VekOamSpiMrBiDirAssociationHandle_4T association,
                              VekOamSpiMrAssociationEndHandle_4T* end);

    /// Entry 3. Gives the second of the two ends.
    /// Out:   \p end: a handle, the same for the same end each time, and not that of the first end.
    /// When:  write, delete, validate.
    /// Codes: lenient.
    OrvReturnT (*getSecondEnd)(VekOamSpiMrBiDirAssociationHandle_4T association,
                               VekOamSpiMrAssociationEndHandle_4T* end);

    /// Entry 4. Gives the association of \p moc that follows \p current.
    /// Out:   \p next: a handle.
    /// When:  write, delete, validate.
    /// Codes: any but OrvOk: the end.
    OrvReturnT (*getNextBiDirAssociation)(VekOamSpiMrBiDirAssociationHandle_4T current,
                                          VekOamSpiMrMocHandle_4T moc,
                                          VekOamSpiMrBiDirAssociationHandle_4T* next);
};

/// Sub-table 7.
struct VekOamSpiMrUniDirAssociation_4 {
    OrvReservedSlot reserved0;
    OrvReservedSlot reserved1;

    /// Entry 2. Gives the end of the association.
    /// Out:   \p end: a handle.
    /// When:  write, validate (reference lock).
    /// Codes: strict.
    OrvReturnT (*getUniDirEnd)(VekOamSpiMrUniDirAssociationHandle_4T association,
                               VekOamSpiMrAssociationEndHandle_4T* end);

    /// Entry 3. Gives the unidirectional association of the same MOC that follows.
    /// Out:   \p next: a handle.
    /// When:  write, validate (reference lock).
    /// Codes: OrvNotExist: the end. Any other: strict.
    OrvReturnT (*getNextUniDirAssociation)(VekOamSpiMrUniDirAssociationHandle_4T association,
                                           VekOamSpiMrUniDirAssociationHandle_4T* next);
};

/// Sub-table 8.
struct VekOamSpiMrAttributeType_4 {
    OrvReservedSlot reserved0;

    /// Entry 1. Gives the type code: one of OrvMoAttributeType_3. The component knows one of them,
    /// VekOamSpiMrTypeMoRef_4.
    /// Out:   \p code: 32 bits.
    /// When:  validate.
    /// Codes: lenient.
    OrvReturnT (*getTypeCode)(VekOamSpiMrTypeHandle_4T type, int* code);
    OrvReservedSlot reserved2;
    OrvReservedSlot reserved3;
    OrvReservedSlot reserved4;

    /// Entry 5. Gives a bound of the number of values of the attribute: the lower one
    /// (VekOamSpiMrLowerBound_4) or the upper one (VekOamSpiMrUpperBound_4). Both are inclusive,
    /// and an open upper bound is a large positive number. These bounds are for all values of the
    /// attribute, those of an end for the values of its MOC; an attribute must satisfy both.
    /// Out:   \p number.
    /// When:  validate.
    /// Codes: lenient.
    OrvReturnT (*getTypeIntProperty)(VekOamSpiMrTypeHandle_4T type, int identifier,
                                     long long* number);
};

/// Sub-table 11.
struct VekOamSpiMrAttribute_4 {
    /// Entry 0. Gives the general properties of an attribute.
    /// Out:   \p properties: a handle for getGeneralStringProperty.
    /// When:  validate.
    /// Codes: lenient.
    OrvReturnT (*getAttributeGeneralProperties)(VekOamSpiMrAttributeHandle_4T attribute,
                                                VekOamSpiMrGeneralPropertiesHandle_4T* properties);

    /// Entry 1. Gives the MOC that holds the attribute. Asked for the attribute of getEndAttribute,
    /// to learn which MOC lies at the other end: references to exactly that MOC are counted.
    /// Out:   \p moc: a handle.
    /// When:  validate.
    /// Codes: lenient.
    OrvReturnT (*getAttributeMoc)(VekOamSpiMrAttributeHandle_4T attribute,
                                  VekOamSpiMrMocHandle_4T* moc);

    /// Entry 2. Gives the type of an attribute.
    /// Out:   \p type: a handle.
    /// When:  validate.
    /// Codes: lenient.
    OrvReturnT (*getAttributeType)(VekOamSpiMrAttributeHandle_4T attribute,
                                   VekOamSpiMrTypeHandle_4T* type);

    /// Entry 3. Gives the attribute of the same MOC that follows.
    /// Out:   \p next: a handle.
    /// When:  validate.
    /// Codes: OrvNotExist: the end. After any other the walk goes on from what \p next holds; two
    ///        failures in a row without a new handle end it.
    OrvReturnT (*getNextAttribute)(VekOamSpiMrAttributeHandle_4T attribute,
                                   VekOamSpiMrAttributeHandle_4T* next);
};

/// Sub-table 13.
struct VekOamSpiMrReferenceType_4 {
    /// Entry 0. Gives the MOC that a reference type points at, which each value must have exactly:
    /// no other class counts as one of it. A MOC named "ManagedObject" stands for any; the
    /// permitted classes are then those of the associations.
    /// Out:   \p moc: a handle.
    /// When:  validate.
    /// Codes: lenient.
    OrvReturnT (*getReferencedMoc)(VekOamSpiMrTypeHandle_4T type, VekOamSpiMrMocHandle_4T* moc);
};

/// The record: identity, then the sub-tables. All of it is owned by the host and does not change
/// while a component is started.
struct VekOamSpiModelRepository_4 {
    VekMgmtSpiInterface_1 identity;
    const VekOamSpiMrDnLookup_4* dnLookup;                   ///< 0
    const VekOamSpiMrGeneralProperties_4* generalProperties; ///< 1
    const void* reserved2;
    const VekOamSpiMrMocQueries_4* mocQueries;               ///< 3
    const VekOamSpiMrContainment_4* containment;             ///< 4
    const VekOamSpiMrAssociationEnd_4* associationEnd;       ///< 5
    const VekOamSpiMrBiDirAssociation_4* biDirAssociation;   ///< 6
    const VekOamSpiMrUniDirAssociation_4* uniDirAssociation; ///< 7
    const VekOamSpiMrAttributeType_4* attributeType;         ///< 8
    const void* reserved9;
    const void* reserved10;
    const VekOamSpiMrAttribute_4* attribute; ///< 11
    const void* reserved12;
    const VekOamSpiMrReferenceType_4* referenceType; ///< 13
};

/// Identity of the host's table.
constexpr VekMgmtSpiInterface_1 VekOamSpiModelRepository_4_Id = {VekOamSpiModelRepositoryService,
                                                                 "VekOamSpiModelRepository", "4"};

/// Offset of entry or word number \p index of a table of pointers.
constexpr std::size_t orvSpiWord(std::size_t index) {
    return index * sizeof(void*);
}

static_assert(sizeof(VekOamSpiMrMocHandle_4T) == 8, "handles are 64 bits wide");
static_assert(sizeof(VekOamSpiMrBiDirAssociationHandle_4T) == 8, "handles are 64 bits wide");
static_assert(sizeof(VekOamSpiMrUniDirAssociationHandle_4T) == 8, "handles are 64 bits wide");
static_assert(sizeof(VekOamSpiMrAssociationEndHandle_4T) == 8, "handles are 64 bits wide");
static_assert(sizeof(VekOamSpiMrAttributeHandle_4T) == 8, "handles are 64 bits wide");
static_assert(sizeof(VekOamSpiMrTypeHandle_4T) == 8, "handles are 64 bits wide");
static_assert(sizeof(VekOamSpiMrGeneralPropertiesHandle_4T) == 8, "handles are 64 bits wide");
static_assert(sizeof(VekOamSpiMrContainmentHandle_4T) == 8, "handles are 64 bits wide");
static_assert(offsetof(VekOamSpiMrDnLookup_4, getMocFromDn) == orvSpiWord(2), "entry 2");
static_assert(offsetof(VekOamSpiMrGeneralProperties_4, getGeneralStringProperty) == 0, "entry 0");
static_assert(offsetof(VekOamSpiMrMocQueries_4, getMocGeneralProperties) == 0, "entry 0");
static_assert(offsetof(VekOamSpiMrMocQueries_4, getFirstAttribute) == orvSpiWord(5), "entry 5");
static_assert(offsetof(VekOamSpiMrMocQueries_4, getFirstContainment) == orvSpiWord(7), "entry 7");
static_assert(offsetof(VekOamSpiMrMocQueries_4, getFirstBiDirAssociation) == orvSpiWord(9),
              "entry 9");
static_assert(offsetof(VekOamSpiMrMocQueries_4, getFirstUniDirAssociation) == orvSpiWord(10),
              "entry 10");
static_assert(offsetof(VekOamSpiMrContainment_4, getContainedMoc) == orvSpiWord(2), "entry 2");
static_assert(offsetof(VekOamSpiMrContainment_4, getNextContainment) == orvSpiWord(5), "entry 5");
static_assert(offsetof(VekOamSpiMrAssociationEnd_4, getEndMoc) == 0, "entry 0");
static_assert(offsetof(VekOamSpiMrAssociationEnd_4, getEndAttribute) == orvSpiWord(1), "entry 1");
static_assert(offsetof(VekOamSpiMrAssociationEnd_4, getEndGeneralProperties) == orvSpiWord(2),
              "entry 2");
static_assert(offsetof(VekOamSpiMrAssociationEnd_4, getEndStringProperty) == orvSpiWord(3),
              "entry 3");
static_assert(offsetof(VekOamSpiMrAssociationEnd_4, getEndBoolProperty) == orvSpiWord(4),
              "entry 4");
static_assert(offsetof(VekOamSpiMrAssociationEnd_4, getEndIntProperty) == orvSpiWord(5), "entry 5");
static_assert(offsetof(VekOamSpiMrBiDirAssociation_4, getFirstEnd) == orvSpiWord(2), "entry 2");
static_assert(offsetof(VekOamSpiMrBiDirAssociation_4, getSecondEnd) == orvSpiWord(3), "entry 3");
static_assert(offsetof(VekOamSpiMrBiDirAssociation_4, getNextBiDirAssociation) == orvSpiWord(4),
              "entry 4");
static_assert(offsetof(VekOamSpiMrUniDirAssociation_4, getUniDirEnd) == orvSpiWord(2), "entry 2");
static_assert(offsetof(VekOamSpiMrUniDirAssociation_4, getNextUniDirAssociation) == orvSpiWord(3),
              "entry 3");
static_assert(offsetof(VekOamSpiMrAttributeType_4, getTypeCode) == orvSpiWord(1), "entry 1");
static_assert(offsetof(VekOamSpiMrAttributeType_4, getTypeIntProperty) == orvSpiWord(5), "entry 5");
static_assert(offsetof(VekOamSpiMrAttribute_4, getAttributeGeneralProperties) == 0, "entry 0");
static_assert(offsetof(VekOamSpiMrAttribute_4, getAttributeMoc) == orvSpiWord(1), "entry 1");
static_assert(offsetof(VekOamSpiMrAttribute_4, getAttributeType) == orvSpiWord(2), "entry 2");
static_assert(offsetof(VekOamSpiMrAttribute_4, getNextAttribute) == orvSpiWord(3), "entry 3");
static_assert(offsetof(VekOamSpiMrReferenceType_4, getReferencedMoc) == 0, "entry 0");
static_assert(offsetof(VekOamSpiModelRepository_4, dnLookup) == orvSpiWord(3 + 0), "sub-table 0");
static_assert(offsetof(VekOamSpiModelRepository_4, generalProperties) == orvSpiWord(3 + 1),
              "sub-table 1");
static_assert(offsetof(VekOamSpiModelRepository_4, mocQueries) == orvSpiWord(3 + 3), "sub-table 3");
static_assert(offsetof(VekOamSpiModelRepository_4, containment) == orvSpiWord(3 + 4),
              "sub-table 4");
static_assert(offsetof(VekOamSpiModelRepository_4, associationEnd) == orvSpiWord(3 + 5),
              "sub-table 5");
static_assert(offsetof(VekOamSpiModelRepository_4, biDirAssociation) == orvSpiWord(3 + 6),
              "sub-table 6");
static_assert(offsetof(VekOamSpiModelRepository_4, uniDirAssociation) == orvSpiWord(3 + 7),
              "sub-table 7");
static_assert(offsetof(VekOamSpiModelRepository_4, attributeType) == orvSpiWord(3 + 8),
              "sub-table 8");
static_assert(offsetof(VekOamSpiModelRepository_4, attribute) == orvSpiWord(3 + 11),
              "sub-table 11");
static_assert(offsetof(VekOamSpiModelRepository_4, referenceType) == orvSpiWord(3 + 13),
              "sub-table 13");
static_assert(sizeof(VekOamSpiModelRepository_4) == orvSpiWord(3 + 14), "fourteen sub-tables");

#endif
