// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_SPI_VEKOAMSPIMODELREPOSITORY_4_H
#define ORV_SPI_VEKOAMSPIMODELREPOSITORY_4_H

#include "OrvMgmtSpiInterfacePortal.h"
#include "OrvMgmtSpiInterface_1.h"
#include "OrvReturn.h"

#include <cstddef>

/// \file
/// The host's model repository: classes (MOCs), attributes, types, containments and associations.
///
/// 1. Handles are opaque 64-bit values, compared as a whole. Zero names nothing; set a handle to
///    zero before a lookup.
/// 2. Functions answer OrvOk, OrvNotExist for "no such object" (from a lookup) or "end of the list"
///    (from a first or next step), or another code for a failure. A failed function leaves its out
///    parameter untouched.
/// 3. Texts are owned by the repository and live as long as it is started; callers copy what they
///    keep.
/// 4. The repository is read-only and may be called by any number of threads at once, also with
///    locks of the calling component held. It never calls back.
///
/// How an association lies in the model: a bidirectional association joins two ends. The name of
/// an end is the name of the attribute that points at that end's MOC, and that attribute lives in
/// the MOC at the opposite end. For ends eX (MOC X) and eY (MOC Y): the attribute of X that refers
/// to Y is named after eY; getEndAttribute(eX) is the attribute of Y that refers to X. A
/// unidirectional association has one end of interest: its name is the reference attribute's name
/// and its MOC a permitted target.

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
constexpr int VekOamSpiMrEndKeepAtDelete_4 =
    0;                                     ///< flag of an end: left alone when an MO is deleted
constexpr int VekOamSpiMrLowerBound_4 = 0; ///< number of an end or type: lower bound
constexpr int VekOamSpiMrUpperBound_4 = 1; ///< number of an end or type: upper bound

/// Type code of an attribute that holds references: the code of a reference value record.
constexpr int VekOamSpiMrTypeMoRef_4 = 11;

/// Sub-table 0.
struct VekOamSpiMrDnLookup_4 {
    OrvReservedSlot reserved0;
    OrvReservedSlot reserved1;
    /// Entry 2. The MOC of the object that an internal \p dn names, found by the DN's class path,
    /// so that the object need not exist. \p flag is 1.
    OrvReturnT (*getMocFromDn)(const char* dn, int flag, VekOamSpiMrMocHandle_4T* moc);
};

/// Sub-table 1.
struct VekOamSpiMrGeneralProperties_4 {
    /// Entry 0. A text of a block of general properties.
    OrvReturnT (*getGeneralStringProperty)(VekOamSpiMrGeneralPropertiesHandle_4T properties,
                                           int identifier, const char** text);
};

/// Sub-table 3.
struct VekOamSpiMrMocQueries_4 {
    /// Entry 0.
    OrvReturnT (*getMocGeneralProperties)(VekOamSpiMrMocHandle_4T moc,
                                          VekOamSpiMrGeneralPropertiesHandle_4T* properties);
    OrvReservedSlot reserved1;
    OrvReservedSlot reserved2;
    OrvReservedSlot reserved3;
    OrvReservedSlot reserved4;
    /// Entry 5.
    OrvReturnT (*getFirstAttribute)(VekOamSpiMrMocHandle_4T moc,
                                    VekOamSpiMrAttributeHandle_4T* attribute);
    OrvReservedSlot reserved6;
    /// Entry 7. The first containment of which the MOC is the parent.
    OrvReturnT (*getFirstContainment)(VekOamSpiMrMocHandle_4T moc,
                                      VekOamSpiMrContainmentHandle_4T* containment);
    OrvReservedSlot reserved8;
    /// Entry 9.
    OrvReturnT (*getFirstBiDirAssociation)(VekOamSpiMrMocHandle_4T moc,
                                           VekOamSpiMrBiDirAssociationHandle_4T* association);
    /// Entry 10.
    OrvReturnT (*getFirstUniDirAssociation)(VekOamSpiMrMocHandle_4T moc,
                                            VekOamSpiMrUniDirAssociationHandle_4T* association);
};

/// Sub-table 4.
struct VekOamSpiMrContainment_4 {
    OrvReservedSlot reserved0;
    OrvReservedSlot reserved1;
    /// Entry 2. The child MOC.
    OrvReturnT (*getContainedMoc)(VekOamSpiMrContainmentHandle_4T containment,
                                  VekOamSpiMrMocHandle_4T* moc);
    OrvReservedSlot reserved3;
    OrvReservedSlot reserved4;
    /// Entry 5. The next containment of the same parent.
    OrvReturnT (*getNextContainment)(VekOamSpiMrContainmentHandle_4T containment,
                                     VekOamSpiMrContainmentHandle_4T* next);
};

/// Sub-table 5.
struct VekOamSpiMrAssociationEnd_4 {
    /// Entry 0.
    OrvReturnT (*getEndMoc)(VekOamSpiMrAssociationEndHandle_4T end, VekOamSpiMrMocHandle_4T* moc);
    /// Entry 1. The attribute that realises this end; it lives in the opposite MOC.
    OrvReturnT (*getEndAttribute)(VekOamSpiMrAssociationEndHandle_4T end,
                                  VekOamSpiMrAttributeHandle_4T* attribute);
    /// Entry 2.
    OrvReturnT (*getEndGeneralProperties)(VekOamSpiMrAssociationEndHandle_4T end,
                                          VekOamSpiMrGeneralPropertiesHandle_4T* properties);
    /// Entry 3.
    OrvReturnT (*getEndStringProperty)(VekOamSpiMrAssociationEndHandle_4T end, int identifier,
                                       const char** text);
    /// Entry 4. Writes one byte.
    OrvReturnT (*getEndBoolProperty)(VekOamSpiMrAssociationEndHandle_4T end, int identifier,
                                     bool* flag);
    /// Entry 5. There is no marker for an open bound: an open upper bound is a large number.
    OrvReturnT (*getEndIntProperty)(VekOamSpiMrAssociationEndHandle_4T end, int identifier,
                                    long long* number);
};

/// Sub-table 6.
struct VekOamSpiMrBiDirAssociation_4 {
    OrvReservedSlot reserved0;
    OrvReservedSlot reserved1;
    /// Entry 2.
    OrvReturnT (*getFirstEnd)(VekOamSpiMrBiDirAssociationHandle_4T association,
                              VekOamSpiMrAssociationEndHandle_4T* end);
    /// Entry 3.
    OrvReturnT (*getSecondEnd)(VekOamSpiMrBiDirAssociationHandle_4T association,
                               VekOamSpiMrAssociationEndHandle_4T* end);
    /// Entry 4. The association of \p moc that follows \p current.
    OrvReturnT (*getNextBiDirAssociation)(VekOamSpiMrBiDirAssociationHandle_4T current,
                                          VekOamSpiMrMocHandle_4T moc,
                                          VekOamSpiMrBiDirAssociationHandle_4T* next);
};

/// Sub-table 7.
struct VekOamSpiMrUniDirAssociation_4 {
    OrvReservedSlot reserved0;
    OrvReservedSlot reserved1;
    /// Entry 2.
    OrvReturnT (*getUniDirEnd)(VekOamSpiMrUniDirAssociationHandle_4T association,
                               VekOamSpiMrAssociationEndHandle_4T* end);
    /// Entry 3. The next unidirectional association of the same MOC.
    OrvReturnT (*getNextUniDirAssociation)(VekOamSpiMrUniDirAssociationHandle_4T association,
                                           VekOamSpiMrUniDirAssociationHandle_4T* next);
};

/// Sub-table 8.
struct VekOamSpiMrAttributeType_4 {
    OrvReservedSlot reserved0;
    /// Entry 1. Writes 32 bits; 11 is an MO reference.
    OrvReturnT (*getTypeCode)(VekOamSpiMrTypeHandle_4T type, int* code);
    OrvReservedSlot reserved2;
    OrvReservedSlot reserved3;
    OrvReservedSlot reserved4;
    /// Entry 5. Bounds of the number of values.
    OrvReturnT (*getTypeIntProperty)(VekOamSpiMrTypeHandle_4T type, int identifier,
                                     long long* number);
};

/// Sub-table 11.
struct VekOamSpiMrAttribute_4 {
    /// Entry 0.
    OrvReturnT (*getAttributeGeneralProperties)(VekOamSpiMrAttributeHandle_4T attribute,
                                                VekOamSpiMrGeneralPropertiesHandle_4T* properties);
    /// Entry 1. The MOC that holds the attribute.
    OrvReturnT (*getAttributeMoc)(VekOamSpiMrAttributeHandle_4T attribute,
                                  VekOamSpiMrMocHandle_4T* moc);
    /// Entry 2.
    OrvReturnT (*getAttributeType)(VekOamSpiMrAttributeHandle_4T attribute,
                                   VekOamSpiMrTypeHandle_4T* type);
    /// Entry 3. The next attribute of the same MOC.
    OrvReturnT (*getNextAttribute)(VekOamSpiMrAttributeHandle_4T attribute,
                                   VekOamSpiMrAttributeHandle_4T* next);
};

/// Sub-table 13.
struct VekOamSpiMrReferenceType_4 {
    /// Entry 0. The MOC that a reference type points at; a MOC named "ManagedObject" stands for
    /// any.
    OrvReturnT (*getReferencedMoc)(VekOamSpiMrTypeHandle_4T type, VekOamSpiMrMocHandle_4T* moc);
};

/// The record: identity, then the sub-tables. All of it is owned by the host.
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
