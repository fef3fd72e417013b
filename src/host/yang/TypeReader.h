// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_TYPEREADER_H
#define ORV_HOST_YANG_TYPEREADER_H

#include "model/Model.h"
#include "yang/YangContext.h"

#include <memory>
#include <string>
#include <vector>

namespace OrvHost {

/// The compiled type of a leaf or leaf-list.
const lysc_type* typeOfLeaf(const lysc_node* node);

/// The type behind leafrefs.
const lysc_type* followLeafrefs(const lysc_type* type);

/// How values of a YANG type are held: all integers as 64 bits, decimal64 as a floating-point
/// number, `empty` as a bool that is true; bits, binary, instance-identifiers and unions of unlike
/// types as text in canonical form, identities as enumerators "module:name".
ValueKind kindOf(const lysc_type* type);

/// The type of a leaf or leaf-list but for the targets of a reference, which is for the caller to
/// tell. The check in it keeps `context` alive if it needs it.
TypeDef readType(const lysc_node* node, const std::shared_ptr<const YangContext>& context);

/// The type of a key: a text whatever the type of the leaf, for it is a part of the DN, but for
/// enumerations.
TypeDef readKeyType(const lysc_node* node, const std::shared_ptr<const YangContext>& context);

/// What a value of the leaf or leaf-list must be, for messages: "uint8 (1..4)", "one of UP, DOWN".
std::string expectedBy(const lysc_node* node);

/// The typedefs that the type of the leaf goes through, as "module:name", the nearest first.
std::vector<std::string> typedefsOf(const lysc_node* node);

}

#endif
