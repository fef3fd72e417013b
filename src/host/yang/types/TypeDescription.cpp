// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "TypeDescription.h"

#include "yang/types/TypeFacts.h"

namespace OrvHost {
namespace {

std::string describeRange(const lysc_type* type) {
    const lysc_range* range = rangeOf(type);
    if (range == nullptr) {
        return "";
    }
    switch (type->basetype) {
    case LY_TYPE_DEC64:
        return " (" +
               TypeCheck::describe(signedParts(range), as<lysc_type_dec>(type)->fraction_digits) +
               ")";
    case LY_TYPE_INT8:
    case LY_TYPE_INT16:
    case LY_TYPE_INT32:
    case LY_TYPE_INT64:
        return " (" + TypeCheck::describe(signedParts(range), 0) + ")";
    default:
        return " (" + TypeCheck::describe(unsignedParts(range)) + ")";
    }
}

std::string nameOf(LY_DATA_TYPE base) {
    switch (base) {
    case LY_TYPE_BINARY:
        return "binary";
    case LY_TYPE_UINT8:
        return "uint8";
    case LY_TYPE_UINT16:
        return "uint16";
    case LY_TYPE_UINT32:
        return "uint32";
    case LY_TYPE_UINT64:
        return "uint64";
    case LY_TYPE_BITS:
        return "bits";
    case LY_TYPE_BOOL:
        return "boolean";
    case LY_TYPE_DEC64:
        return "decimal64";
    case LY_TYPE_EMPTY:
        return "empty";
    case LY_TYPE_ENUM:
        return "enumeration";
    case LY_TYPE_IDENT:
        return "identityref";
    case LY_TYPE_INST:
        return "instance-identifier";
    case LY_TYPE_INT8:
        return "int8";
    case LY_TYPE_INT16:
        return "int16";
    case LY_TYPE_INT32:
        return "int32";
    case LY_TYPE_INT64:
        return "int64";
    default:
        return "string";
    }
}

}

std::string describeType(const lysc_type* type) {
    if (type->basetype != LY_TYPE_UNION) {
        return nameOf(type->basetype) + describeRange(type);
    }
    std::string text;
    const auto* types = as<lysc_type_union>(type)->types;
    LY_ARRAY_COUNT_TYPE i = 0;
    for (i = 0; i < LY_ARRAY_COUNT(types); ++i) {
        text += (i == 0 ? "" : " or ") + describeType(followLeafrefs(types[i]));
    }
    return text;
}

std::string expectedBy(const lysc_node* node) {
    const lysc_type* type = followLeafrefs(typeOfLeaf(node));
    if (kindOf(type) != ValueKind::Enumeration) {
        return describeType(type);
    }
    std::string text;
    for (const std::string& name : enumeratorsOf(type)) {
        text += (text.empty() ? "one of " : ", ") + name;
    }
    return text;
}

}
