// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_TYPES_TYPEFACTS_H
#define ORV_HOST_YANG_TYPES_TYPEFACTS_H

#include "model/Value.h"
#include "yang/types/TypeCheck.h"

#include <libyang/libyang.h>

#include <string>
#include <vector>

namespace OrvHost {

/// The library's record of a compiled type; the base type decides which record it is.
template <class Type>
const Type* as(const lysc_type* type) {
    return reinterpret_cast<const Type*>(type);
}

/// The compiled type of a leaf or leaf-list.
const lysc_type* typeOfLeaf(const lysc_node* node);

/// The type that leafrefs lead to.
const lysc_type* followLeafrefs(const lysc_type* type);

/// True for an identityref from whose base no loaded module derives an identity. Its values cannot
/// be known, so they are texts.
bool isOpenIdentityref(const lysc_type* type);

/// True for such a type, and for a union with one in it.
bool hasOpenIdentityref(const lysc_type* leafType);

/// The kind in which values of a YANG type are held. All integers have 64 bits, decimal64 is a
/// floating-point number, `empty` is a bool that is true; bits, binary, instance-identifiers and
/// unions of different kinds are text in canonical form; identities are enumerators "module:name",
/// or text if there are none.
ValueKind kindOf(const lysc_type* leafType);

/// The size of values of an integer type.
int bitsOf(LY_DATA_TYPE base);

/// The range of a number or the length of a text; null if there is none.
const lysc_range* rangeOf(const lysc_type* type);

/// The parts of a range of signed numbers, or of unsigned numbers and lengths. None if \p range is
/// null.
std::vector<TypeCheck::SignedPart> signedParts(const lysc_range* range);
std::vector<TypeCheck::UnsignedPart> unsignedParts(const lysc_range* range);

/// The names that an enumeration, an identityref, or a union of these permits.
std::vector<std::string> enumeratorsOf(const lysc_type* type);

}

#endif
