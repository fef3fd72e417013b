// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_KNOWNATTRIBUTES_H
#define ORV_EXT_CM_KNOWNATTRIBUTES_H

#include "OrvMoAttributeValue.h"
#include "values/IdMappings.h"
#include "values/ValueCheck.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

/// \file
/// The two attributes that the component knows by name.

namespace OrvExtCmRouterService {

/// True for "networkManagedElementId", whose value must be acceptable in a DN. What is refused, and
/// with which code, differs between the interface versions.
inline bool isNetworkManagedElementId(const char* attrName) {
    return *attrName == 'n' && std::strcmp(attrName, "networkManagedElementId") == 0;
}

/// The first slot of an id's value. Only under the type codes of texts is it read as one: under any
/// other code it may hold anything.
struct IdSlot {
    bool isSet;       ///< there is a slot, and it is not zero
    const char* text; ///< null if the slot is not set or holds no text

    /// True for what a naming attribute must not have. No slot, or an empty text, is not refused.
    bool isRefused() const;

    /// The text for a message.
    const char* shownText() const { return text != nullptr ? text : "(not a text)"; }
};

/// The first slot of \p value, which may be null, whatever its `count` says.
template <class Container>
IdSlot idSlotOf(const Container* value) {
    if (value == nullptr || value->values == nullptr) {
        return {false, nullptr};
    }
    std::uint64_t bits = 0;
    static_assert(sizeof(bits) == sizeof(value->values[0]));
    std::memcpy(&bits, &value->values[0], sizeof(bits));
    const bool isText =
        value->type == OrvMoAttributeTypeString_3 || value->type == OrvMoAttributeTypeMoRef_3;
    return {bits != 0, isText ? value->values[0].string : nullptr};
}

/// True if there is an \p attrName, and \p value, if there is one, can be read as that of this
/// attribute (see isReadable). An id under a type code that is not that of a text is not looked
/// into: it is refused later (see IdSlot).
template <class Container>
bool isReadableAs(const char* attrName, const Container* value) {
    if (attrName == nullptr || value == nullptr) {
        return attrName != nullptr;
    }
    if (isNetworkManagedElementId(attrName)) {
        const IdSlot id = idSlotOf(value);
        if (id.isSet && id.text == nullptr) {
            return true;
        }
    }
    return isReadable(*value);
}

inline constexpr std::string_view rootClass = "ManagedElement";

/// True if \p attrName is "managedElementId" and \p dn, external, names the root alone. The class
/// is tested as a prefix: any that begins with "ManagedElement" will do. A null \p attrName is
/// none.
inline bool isRootId(const char* attrName, const char* dn) {
    return attrName != nullptr && *attrName == 'm' &&
           std::strcmp(attrName, "managedElementId") == 0 &&
           std::strncmp(dn, rootClass.data(), rootClass.size()) == 0 &&
           std::strchr(dn, ',') == nullptr;
}

/// True if \p value, which may be null, is one text.
template <class Container>
bool isOneText(const Container* value) {
    return value != nullptr && value->type == OrvMoAttributeTypeString_3 && value->count == 1 &&
           value->values != nullptr && value->values[0].string != nullptr;
}

/// True if \p value, which may be null, was read as the id of the root, so that a client must get
/// the id that it knows the root by. \p dn is external.
template <class Container>
bool holdsRootId(const char* attrName, const char* dn, const Container* value) {
    return isRootId(attrName, dn) && isOneText(value);
}

/// The id by which clients know the root, for the router's \p id. Empty if it has none.
std::string externalRootId(const IdMappings& mappings, const char* id);

}

#endif
