// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_MODEL_TYPECODE_H
#define ORV_HOST_MODEL_TYPECODE_H

#include "OrvMoAttributeValue.h"
#include "Value.h"

#include <cstdint>
#include <optional>

namespace OrvHost {

/// The type code of values of `kind` in value records and in the model repository.
constexpr OrvMoAttributeType_3 typeCodeOf(ValueKind kind) {
    switch (kind) {
    case ValueKind::Bool:
        return OrvMoAttributeTypeBool_3;
    case ValueKind::Int:
        return OrvMoAttributeTypeInt64_3;
    case ValueKind::Uint:
        return OrvMoAttributeTypeUint64_3;
    case ValueKind::Double:
        return OrvMoAttributeTypeDouble_3;
    case ValueKind::Enumeration:
        return OrvMoAttributeTypeEnumeration_3;
    case ValueKind::String:
        return OrvMoAttributeTypeString_3;
    case ValueKind::MoRef:
        return OrvMoAttributeTypeMoRef_3;
    case ValueKind::Struct:
        return OrvMoAttributeTypeStruct_3;
    }
    return OrvMoAttributeTypeString_3;
}

/// The kind of values with a type code; nothing for a code that this host does not use.
constexpr std::optional<ValueKind> kindOfTypeCode(std::int32_t code) {
    switch (code) {
    case OrvMoAttributeTypeBool_3:
        return ValueKind::Bool;
    case OrvMoAttributeTypeInt64_3:
        return ValueKind::Int;
    case OrvMoAttributeTypeUint64_3:
        return ValueKind::Uint;
    case OrvMoAttributeTypeDouble_3:
        return ValueKind::Double;
    case OrvMoAttributeTypeEnumeration_3:
        return ValueKind::Enumeration;
    case OrvMoAttributeTypeString_3:
        return ValueKind::String;
    case OrvMoAttributeTypeMoRef_3:
        return ValueKind::MoRef;
    case OrvMoAttributeTypeStruct_3:
        return ValueKind::Struct;
    default:
        return std::nullopt;
    }
}

}

#endif
