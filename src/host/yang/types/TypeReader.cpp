// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "TypeReader.h"

#include "yang/source/ModuleStatements.h"
#include "yang/types/TypeCheck.h"
#include "yang/types/TypeDescription.h"
#include "yang/types/TypeFacts.h"
#include "yang/types/TypedefChain.h"

namespace OrvHost {
namespace {

TypeCheck::Function signedCheck(const lysc_type* type) {
    std::vector<TypeCheck::SignedPart> parts = signedParts(rangeOf(type));
    if (parts.empty()) {
        const std::int64_t highest = INT64_MAX >> (64 - bitsOf(type->basetype));
        parts.push_back({-highest - 1, highest});
    }
    return TypeCheck::ofInteger(std::move(parts));
}

TypeCheck::Function unsignedCheck(const lysc_type* type) {
    std::vector<TypeCheck::UnsignedPart> parts = unsignedParts(rangeOf(type));
    if (parts.empty()) {
        parts.push_back({0, UINT64_MAX >> (64 - bitsOf(type->basetype))});
    }
    return TypeCheck::ofUnsigned(std::move(parts));
}

TypeCheck::Function checkByLibrary(const lysc_node* node,
                                   const std::shared_ptr<const YangContext>& context) {
    return [node, context](const std::string& text) { return context->refusal(node, text); };
}

/// The library permits no value of an identityref without identities; in a union it asks the other
/// types only.
TypeCheck::Function withOpenIdentities(const lysc_type* type, TypeCheck::Function check) {
    if (!hasOpenIdentityref(type)) {
        return check;
    }
    return TypeCheck::anyOf(std::move(check), TypeCheck::ofIdentityName());
}

TypeCheck::Function checkOf(const lysc_node* node, const lysc_type* type,
                            const std::shared_ptr<const YangContext>& context) {
    switch (kindOf(type)) {
    case ValueKind::Bool:
    case ValueKind::Enumeration:
        return {}; // the kind and the enumerators describe the type completely
    case ValueKind::Int:
        return type->basetype == LY_TYPE_UNION ? checkByLibrary(node, context) : signedCheck(type);
    case ValueKind::Uint:
        return type->basetype == LY_TYPE_UNION ? checkByLibrary(node, context)
                                               : unsignedCheck(type);
    case ValueKind::Double:
        return TypeCheck::ofDecimal(signedParts(rangeOf(type)),
                                    as<lysc_type_dec>(type)->fraction_digits);
    default:
        if (isOpenIdentityref(type)) {
            return TypeCheck::ofIdentityName();
        }
        if (type->basetype == LY_TYPE_STRING && as<lysc_type_str>(type)->patterns == nullptr) {
            return TypeCheck::ofText(unsignedParts(rangeOf(type)));
        }
        return withOpenIdentities(type, checkByLibrary(node, context));
    }
}

}

TypeDef readType(const lysc_node* node, const std::shared_ptr<const YangContext>& context) {
    const lysc_type* type = followLeafrefs(typeOfLeaf(node));
    TypeDef result;
    result.kind = kindOf(type);
    result.isFalseAbsent = type->basetype == LY_TYPE_EMPTY;
    result.check = checkOf(node, type, context);
    result.description = describeType(type);
    if (result.kind == ValueKind::Enumeration) {
        result.enumerators = enumeratorsOf(type);
    }
    const std::vector<std::string> typedefs = typedefsOf(node);
    if (!typedefs.empty()) {
        result.description =
            std::string(withoutPrefix(typedefs.front())) + ", " + result.description;
    }
    return result;
}

TypeDef readKeyType(const lysc_node* node, const std::shared_ptr<const YangContext>& context) {
    TypeDef type = readType(node, context);
    const lysc_type* declared = followLeafrefs(typeOfLeaf(node));
    const bool isText = declared->basetype == LY_TYPE_STRING || isOpenIdentityref(declared);
    if (type.kind == ValueKind::Enumeration || isText) {
        return type;
    }
    type.kind = ValueKind::String;
    type.check = withOpenIdentities(declared, [node, context](const std::string& text) {
        return context->refusalOfName(node, text);
    });
    return type;
}

}
