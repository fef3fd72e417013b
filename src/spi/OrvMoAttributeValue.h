// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_SPI_ORVMOATTRIBUTEVALUE_H
#define ORV_SPI_ORVMOATTRIBUTEVALUE_H

#include <cstddef>
#include <cstdint>

/// \file
/// Attribute values of versions 3 and 3_1, and those of version 1. Conventions: OrvConventions.h.
///
/// All records are plain. The builder of a value owns every text, array and list in it, and a
/// reader writes to none of them. A value that goes in is borrowed. A value that comes back is
/// given with the result records below in versions 3 and 3_1; in version 1 it is owned by the
/// callee.
///
/// What "no value" means: a container of type 0 with count 0 has no value and says nothing about
/// the attribute. A container of type 11 with count 0 is an empty list of references. Only the
/// second one clears a reference attribute with all that belongs to it (OrvAssociations.h, 5).
///
/// Which wrong values of a client are refused, and which reach the router, stands in rule 4 of the
/// conventions.
///
/// References in a struct are translated only if the struct shows one: the first value of the
/// container has a member of the type MoRef, directly. If so, all values and members are; if not,
/// the container passes as it is, also if a later value or an inner struct holds a reference.
///
/// What a router or an interceptor answers and cannot be read (a count and no values, a null text
/// of a MoRef, a struct member without a name) goes to the client as it is, with OrvOk.

/// What the slots of a container hold. The numbers below are the ones that the reference host uses;
/// a reader must pass on values of codes it does not know, slot by slot, as 8 opaque bytes.
enum OrvMoAttributeType_3 : std::int32_t {
    OrvMoAttributeTypeBool_3 = 1,
    OrvMoAttributeTypeInt64_3 = 2,
    OrvMoAttributeTypeUint64_3 = 3,
    OrvMoAttributeTypeDouble_3 = 4,
    OrvMoAttributeTypeEnumeration_3 = 5, ///< the enumerator's name, in `string`
    OrvMoAttributeTypeString_3 = 9,
    OrvMoAttributeTypeMoRef_3 = 11, ///< a DN, in `moRef`
    OrvMoAttributeTypeStruct_3 = 14 ///< the first member, in `structValue`
};

struct OrvMoStructMember_3;

/// One value: 8 bytes, whatever it holds.
union OrvMoAttributeValue_3 {
    const char* string;               ///< String, Enumeration
    const char* moRef;                ///< MoRef; never null; an empty text is a text
    OrvMoStructMember_3* structValue; ///< Struct; null is an empty struct
    bool boolean;
    std::int64_t int64;
    std::uint64_t uint64;
    double real;
};

/// One attribute's value, which can be multi-valued.
struct OrvMoAttributeValueContainer_3 {
    std::int32_t type;             ///< an OrvMoAttributeType_3, or a code of the host's
    std::uint32_t count;           ///< number of slots; 0 is legal
    OrvMoAttributeValue_3* values; ///< the slots; may be null when `count` is 0
};

/// One member of a struct value; a struct is a singly linked list of these. The component reads any
/// depth without recursion, and refuses a struct of over four million members, slots and texts.
struct OrvMoStructMember_3 {
    const char* name; ///< never null, but not checked in a struct that shows no reference
    /// Null stands for an empty container of type 0. A client should not use it: it is refused,
    /// except where the component has met a reference before it (rule 4 of the conventions). Then
    /// the router gets the empty container. A router may answer with it.
    OrvMoAttributeValueContainer_3* value;
    OrvMoStructMember_3* next; ///< null at the end
};

/// An attribute or parameter with its name. They travel as an array of pointers to these, ended by
/// a null pointer.
struct OrvMoNamedAttributeValueContainer_3 {
    const char* name;
    OrvMoAttributeValueContainer_3 value;
};

/// What a single read or an action returns. With OrvOk it is given to the receiver. With another
/// code a producer leaves both fields alone: after a client's call nobody releases what is in them,
/// after a read of its own the component does. The component answers a successful getMoAttribute
/// with both fields set, also where the router left the container null.
struct OrvMoAttributeValueResult_3 {
    /// Frees \p container and all that hangs from it. Null if there is nothing to free.
    /// In:    \p container, the pointer that came with this function, not null and not changed.
    ///        Dead afterwards.
    /// When:  once, at any time, on any thread: also after the transaction has ended and the
    ///        component is stopped, but before the shared object is closed. A producer's function
    ///        is called from inside that of the component, when the client releases. For what the
    ///        component read itself it is called at once, and with the back-pointer lock held where
    ///        a reference is added.
    void (*release)(OrvMoAttributeValueContainer_3* container);

    OrvMoAttributeValueContainer_3* container; ///< may be null: no value
};

/// What a read of many attributes returns: one container for each requested attribute, in the order
/// of the request, ended by a null pointer. With OrvOk it is given to the receiver. With another
/// code a producer leaves both fields alone: nobody releases what is in them.
struct OrvMoAttributeValuesResult_3 {
    /// Frees the array and all that hangs from it. Null if there is nothing to free.
    /// In:    \p containers, the pointer that came with this function, not changed, with all its
    ///        entries; may be null if the producer left it so. Dead afterwards.
    /// When:  once, at any time, on any thread, as for a single result.
    void (*release)(OrvMoAttributeValueContainer_3** containers);

    OrvMoAttributeValueContainer_3** containers; ///< may be null: no values
};

// One type under both names: a pointer to one is handed on as the other without conversion.
typedef OrvMoAttributeValueContainer_3 VekMoAttributeValueContainer_3;
typedef OrvMoNamedAttributeValueContainer_3 VekMoNamedAttributeValueContainer_3;
typedef OrvMoAttributeValueResult_3 VekMoAttributeValueResult_3;
typedef OrvMoAttributeValuesResult_3 VekMoAttributeValuesResult_3;

struct OrvMoStructMember;

/// One value of version 1: the slot of version 3.
union OrvMoAttributeValue {
    const char* string;
    const char* moRef;
    OrvMoStructMember* structValue;
    bool boolean;
    std::int64_t int64;
    std::uint64_t uint64;
    double real;
};

/// One attribute's value in version 1: the fields and the type codes of version 3. There are no
/// result records: what a read hands out is owned by the callee until its transaction is finished.
struct OrvMoAttributeValueContainer {
    std::int32_t type;
    std::uint32_t count;
    OrvMoAttributeValue* values;
};

/// One member of a struct value of version 1.
struct OrvMoStructMember {
    const char* name;
    OrvMoAttributeValueContainer* value; ///< never null, unlike in version 3
    OrvMoStructMember* next;
};

static_assert(OrvMoAttributeTypeString_3 == 9, "code of the tables");
static_assert(OrvMoAttributeTypeMoRef_3 == 11, "code of the tables");
static_assert(OrvMoAttributeTypeStruct_3 == 14, "code of the tables");
static_assert(sizeof(OrvMoAttributeType_3) == 4, "32 bits");
static_assert(sizeof(OrvMoAttributeValue_3) == 8, "slots have a stride of 8");
static_assert(offsetof(OrvMoAttributeValueContainer_3, type) == 0, "first field");
static_assert(offsetof(OrvMoAttributeValueContainer_3, count) == 4, "second field");
static_assert(offsetof(OrvMoAttributeValueContainer_3, values) == 8, "third field");
static_assert(sizeof(OrvMoAttributeValueContainer_3) == 16, "container");
static_assert(offsetof(OrvMoStructMember_3, value) == 8, "second field");
static_assert(offsetof(OrvMoStructMember_3, next) == 16, "third field");
static_assert(sizeof(OrvMoStructMember_3) == 24, "struct member");
static_assert(offsetof(OrvMoNamedAttributeValueContainer_3, value) == 8, "value is held inline");
static_assert(sizeof(OrvMoNamedAttributeValueContainer_3) == 24, "named container");
static_assert(offsetof(OrvMoAttributeValueResult_3, container) == 8, "second field");
static_assert(offsetof(OrvMoAttributeValuesResult_3, containers) == 8, "second field");
static_assert(sizeof(OrvMoAttributeValueResult_3) == 16, "result");
static_assert(sizeof(OrvMoAttributeValuesResult_3) == 16, "result");
static_assert(sizeof(OrvMoAttributeValue) == 8, "slots have a stride of 8");
static_assert(offsetof(OrvMoAttributeValueContainer, count) == 4, "second field");
static_assert(offsetof(OrvMoAttributeValueContainer, values) == 8, "third field");
static_assert(sizeof(OrvMoAttributeValueContainer) == 16, "container");
static_assert(offsetof(OrvMoStructMember, value) == 8, "second field");
static_assert(offsetof(OrvMoStructMember, next) == 16, "third field");
static_assert(sizeof(OrvMoStructMember) == 24, "struct member");

#endif
