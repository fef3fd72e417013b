// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_KNOWNATTRIBUTES_H
#define ORV_EXT_CM_KNOWNATTRIBUTES_H

#include "IdMappings.h"
#include "OrvMoAttributeValue.h"

#include <string>

/// \file
/// The two attributes that the component knows by name.

namespace OrvExtCmRouterService {

/// True for "networkManagedElementId", whose value must be acceptable in a DN. What is refused, and
/// with which code, differs between the interface versions.
bool isNetworkManagedElementId(const char* attrName);

/// The text in the first slot of \p value, null if there is no value, no slots or no text. The slot
/// is read as text whatever `type` and `count` say.
template <class Container>
const char* firstText(const Container* value) {
    return value == nullptr || value->values == nullptr ? nullptr : value->values[0].string;
}

/// True for a text that a naming attribute must not have. No text, or an empty one, is not refused.
bool isRefusedAsId(const char* text);

/// True if \p attrName is "managedElementId" and \p dn, external, names the root alone. The class
/// is tested as a prefix: any that begins with "ManagedElement" will do.
bool isRootId(const char* attrName, const char* dn);

/// True if \p value is one text. It is not null.
template <class Container>
bool isOneText(const Container* value) {
    return value->type == OrvMoAttributeTypeString_3 && value->count == 1;
}

/// The id by which clients know the root, for the router's \p id. Empty if it has none.
std::string externalRootId(const IdMappings& mappings, const char* id);

}

#endif
