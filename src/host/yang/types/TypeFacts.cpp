// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "TypeFacts.h"

#include <algorithm>
#include <utility>

namespace OrvHost {
namespace {

void appendIdentities(const lysc_ident* base, std::vector<std::string>& names) {
    LY_ARRAY_COUNT_TYPE i = 0;
    for (i = 0; i < LY_ARRAY_COUNT(base->derived); ++i) {
        const lysc_ident* identity = base->derived[i];
        if (identity->module->implemented != 0) {
            names.push_back(std::string(identity->module->name) + ":" + identity->name);
        }
        appendIdentities(identity, names);
    }
}

void appendEnumerators(const lysc_type* type, std::vector<std::string>& names) {
    LY_ARRAY_COUNT_TYPE i = 0;
    if (type->basetype == LY_TYPE_ENUM) {
        const auto* items = as<lysc_type_enum>(type)->enums;
        for (i = 0; i < LY_ARRAY_COUNT(items); ++i) {
            names.emplace_back(items[i].name);
        }
    } else if (type->basetype == LY_TYPE_IDENT) {
        const auto* bases = as<lysc_type_identityref>(type)->bases;
        for (i = 0; i < LY_ARRAY_COUNT(bases); ++i) {
            appendIdentities(bases[i], names);
        }
    } else if (type->basetype == LY_TYPE_UNION) {
        const auto* types = as<lysc_type_union>(type)->types;
        for (i = 0; i < LY_ARRAY_COUNT(types); ++i) {
            appendEnumerators(followLeafrefs(types[i]), names);
        }
    }
}

}

const lysc_type* typeOfLeaf(const lysc_node* node) {
    return node->nodetype == LYS_LEAF ? reinterpret_cast<const lysc_node_leaf*>(node)->type
                                      : reinterpret_cast<const lysc_node_leaflist*>(node)->type;
}

const lysc_type* followLeafrefs(const lysc_type* type) {
    return type->basetype == LY_TYPE_LEAFREF ? as<lysc_type_leafref>(type)->realtype : type;
}

bool isOpenIdentityref(const lysc_type* type) {
    return type->basetype == LY_TYPE_IDENT && enumeratorsOf(type).empty();
}

bool hasOpenIdentityref(const lysc_type* leafType) {
    const lysc_type* type = followLeafrefs(leafType);
    if (type->basetype != LY_TYPE_UNION) {
        return isOpenIdentityref(type);
    }
    const auto* types = as<lysc_type_union>(type)->types;
    LY_ARRAY_COUNT_TYPE i = 0;
    for (i = 0; i < LY_ARRAY_COUNT(types); ++i) {
        if (hasOpenIdentityref(types[i])) {
            return true;
        }
    }
    return false;
}

ValueKind kindOf(const lysc_type* leafType) {
    const lysc_type* type = followLeafrefs(leafType);
    switch (type->basetype) {
    case LY_TYPE_BOOL:
    case LY_TYPE_EMPTY:
        return ValueKind::Bool;
    case LY_TYPE_INT8:
    case LY_TYPE_INT16:
    case LY_TYPE_INT32:
    case LY_TYPE_INT64:
        return ValueKind::Int;
    case LY_TYPE_UINT8:
    case LY_TYPE_UINT16:
    case LY_TYPE_UINT32:
    case LY_TYPE_UINT64:
        return ValueKind::Uint;
    case LY_TYPE_DEC64:
        return ValueKind::Double;
    case LY_TYPE_ENUM:
        return ValueKind::Enumeration;
    case LY_TYPE_IDENT:
        return isOpenIdentityref(type) ? ValueKind::String : ValueKind::Enumeration;
    case LY_TYPE_UNION:
        break;
    default:
        return ValueKind::String;
    }
    const auto* types = as<lysc_type_union>(type)->types;
    const ValueKind first = kindOf(types[0]);
    LY_ARRAY_COUNT_TYPE i = 0;
    for (i = 1; i < LY_ARRAY_COUNT(types); ++i) {
        if (kindOf(types[i]) != first) {
            return ValueKind::String;
        }
    }
    // Members can differ in how they treat digits after the point, and `empty` has no text.
    return first == ValueKind::Double || first == ValueKind::Bool ? ValueKind::String : first;
}

int bitsOf(LY_DATA_TYPE base) {
    switch (base) {
    case LY_TYPE_INT8:
    case LY_TYPE_UINT8:
        return 8;
    case LY_TYPE_INT16:
    case LY_TYPE_UINT16:
        return 16;
    case LY_TYPE_INT32:
    case LY_TYPE_UINT32:
        return 32;
    default:
        return 64;
    }
}

const lysc_range* rangeOf(const lysc_type* type) {
    switch (type->basetype) {
    case LY_TYPE_DEC64:
        return as<lysc_type_dec>(type)->range;
    case LY_TYPE_STRING:
        return as<lysc_type_str>(type)->length;
    case LY_TYPE_BINARY:
        return as<lysc_type_bin>(type)->length;
    case LY_TYPE_INT8:
    case LY_TYPE_INT16:
    case LY_TYPE_INT32:
    case LY_TYPE_INT64:
    case LY_TYPE_UINT8:
    case LY_TYPE_UINT16:
    case LY_TYPE_UINT32:
    case LY_TYPE_UINT64:
        return as<lysc_type_num>(type)->range;
    default:
        return nullptr;
    }
}

std::vector<TypeCheck::SignedPart> signedParts(const lysc_range* range) {
    std::vector<TypeCheck::SignedPart> parts;
    LY_ARRAY_COUNT_TYPE i = 0;
    for (i = 0; range != nullptr && i < LY_ARRAY_COUNT(range->parts); ++i) {
        parts.push_back({range->parts[i].min_64, range->parts[i].max_64});
    }
    return parts;
}

std::vector<TypeCheck::UnsignedPart> unsignedParts(const lysc_range* range) {
    std::vector<TypeCheck::UnsignedPart> parts;
    LY_ARRAY_COUNT_TYPE i = 0;
    for (i = 0; range != nullptr && i < LY_ARRAY_COUNT(range->parts); ++i) {
        parts.push_back({range->parts[i].min_u64, range->parts[i].max_u64});
    }
    return parts;
}

std::vector<std::string> enumeratorsOf(const lysc_type* type) {
    std::vector<std::string> names;
    appendEnumerators(type, names);
    // An identity can be derived in two ways, and a union can name an enumerator twice.
    std::vector<std::string> unique;
    for (std::string& name : names) {
        if (std::find(unique.begin(), unique.end(), name) == unique.end()) {
            unique.push_back(std::move(name));
        }
    }
    return unique;
}

}
