// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "TypeReader.h"

#include "yang/TypeCheck.h"
#include "yang/YangText.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace OrvHost {
namespace {

template <class Type>
const Type* as(const lysc_type* type) {
    return reinterpret_cast<const Type*>(type);
}

bool isSignedRange(LY_DATA_TYPE base) {
    return base == LY_TYPE_DEC64 || base == LY_TYPE_INT8 || base == LY_TYPE_INT16 ||
           base == LY_TYPE_INT32 || base == LY_TYPE_INT64;
}

const lysc_range* rangeOf(const lysc_type* type) {
    switch (type->basetype) {
    case LY_TYPE_DEC64:
        return as<lysc_type_dec>(type)->range;
    case LY_TYPE_STRING:
        return as<lysc_type_str>(type)->length;
    case LY_TYPE_BINARY:
        return as<lysc_type_bin>(type)->length;
    default:
        return isSignedRange(type->basetype) || kindOf(type) == ValueKind::Uint
                   ? as<lysc_type_num>(type)->range
                   : nullptr;
    }
}

/// The parts of a range of signed numbers.
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

TypeCheck::Function checkOf(const lysc_node* node, const lysc_type* type,
                            const std::shared_ptr<const YangContext>& context) {
    switch (kindOf(type)) {
    case ValueKind::Bool:
    case ValueKind::Enumeration:
        return {}; // the kind and the enumerators tell all
    case ValueKind::Int:
        return type->basetype == LY_TYPE_UNION ? checkByLibrary(node, context) : signedCheck(type);
    case ValueKind::Uint:
        return type->basetype == LY_TYPE_UNION ? checkByLibrary(node, context)
                                               : unsignedCheck(type);
    case ValueKind::Double:
        return TypeCheck::ofDecimal(signedParts(rangeOf(type)),
                                    as<lysc_type_dec>(type)->fraction_digits);
    default:
        const bool isPlainText =
            type->basetype == LY_TYPE_STRING && as<lysc_type_str>(type)->patterns == nullptr;
        return isPlainText ? TypeCheck::ofText(unsignedParts(rangeOf(type)))
                           : checkByLibrary(node, context);
    }
}

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

const lysp_type* parsedTypeOf(const lysp_node* node) {
    if (node == nullptr) {
        return nullptr;
    }
    if (node->nodetype == LYS_LEAF) {
        return &reinterpret_cast<const lysp_node_leaf*>(node)->type;
    }
    return node->nodetype == LYS_LEAFLIST ? &reinterpret_cast<const lysp_node_leaflist*>(node)->type
                                          : nullptr;
}

const lysp_tpdf* findIn(const lysp_tpdf* typedefs, std::string_view name) {
    LY_ARRAY_COUNT_TYPE i = 0;
    for (i = 0; i < LY_ARRAY_COUNT(typedefs); ++i) {
        if (name == typedefs[i].name) {
            return &typedefs[i];
        }
    }
    return nullptr;
}

/// The typedef of that name in a module or in the submodules that it includes.
const lysp_tpdf* findIn(const lysp_module* module, std::string_view name) {
    const lysp_tpdf* found = findIn(module->typedefs, name);
    LY_ARRAY_COUNT_TYPE i = 0;
    for (i = 0; found == nullptr && i < LY_ARRAY_COUNT(module->includes); ++i) {
        found = findIn(module->includes[i].submodule->typedefs, name);
    }
    return found;
}

/// The module that `prefix` stands for where it was written.
const lysp_module* resolvePrefix(const lysp_module* module, std::string_view prefix) {
    if (prefix == module->mod->prefix) {
        return module->mod->parsed;
    }
    LY_ARRAY_COUNT_TYPE i = 0;
    for (i = 0; i < LY_ARRAY_COUNT(module->imports); ++i) {
        if (prefix == module->imports[i].prefix) {
            return module->imports[i].module->parsed;
        }
    }
    return nullptr;
}

/// A typedef and the module that it stands in.
struct FoundTypedef {
    const lysp_tpdf* definition = nullptr;
    const lysp_module* module = nullptr;
};

FoundTypedef findTypedef(const lysp_type* type, const lysp_node* scope) {
    const std::string_view name = type->name;
    const std::size_t colon = name.find(':');
    if (colon != std::string_view::npos) {
        const lysp_module* module = resolvePrefix(type->pmod, name.substr(0, colon));
        return module == nullptr ? FoundTypedef()
                                 : FoundTypedef{findIn(module, name.substr(colon + 1)), module};
    }
    for (; scope != nullptr; scope = scope->parent) {
        if (const lysp_tpdf* found = findIn(lysp_node_typedefs(scope), name); found != nullptr) {
            return {found, type->pmod};
        }
    }
    // A submodule sees the typedefs of its module and of that module's other submodules.
    const lysp_tpdf* found = findIn(type->pmod, name);
    return {found != nullptr ? found : findIn(type->pmod->mod->parsed, name), type->pmod};
}

}

const lysc_type* typeOfLeaf(const lysc_node* node) {
    return node->nodetype == LYS_LEAF ? reinterpret_cast<const lysc_node_leaf*>(node)->type
                                      : reinterpret_cast<const lysc_node_leaflist*>(node)->type;
}

const lysc_type* followLeafrefs(const lysc_type* type) {
    return type->basetype == LY_TYPE_LEAFREF ? as<lysc_type_leafref>(type)->realtype : type;
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
    case LY_TYPE_IDENT:
        return ValueKind::Enumeration;
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
    // Members can differ in what they do with digits behind the point, and `empty` is no text.
    return first == ValueKind::Double || first == ValueKind::Bool ? ValueKind::String : first;
}

TypeDef readType(const lysc_node* node, const std::shared_ptr<const YangContext>& context) {
    const lysc_type* type = followLeafrefs(typeOfLeaf(node));
    TypeDef result;
    result.kind = kindOf(type);
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
    const bool isText = followLeafrefs(typeOfLeaf(node))->basetype == LY_TYPE_STRING;
    if (type.kind == ValueKind::Enumeration || isText) {
        return type;
    }
    type.kind = ValueKind::String;
    type.check = [node, context](const std::string& text) {
        return context->refusalOfName(node, text);
    };
    return type;
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

std::vector<std::string> typedefsOf(const lysc_node* node) {
    std::vector<std::string> names;
    const auto* scope = static_cast<const lysp_node*>(node->priv);
    for (const lysp_type* type = parsedTypeOf(scope); type != nullptr && type->pmod != nullptr;) {
        const FoundTypedef found = findTypedef(type, scope);
        if (found.definition == nullptr) {
            break; // a type of the language itself
        }
        names.push_back(std::string(found.module->mod->name) + ":" + found.definition->name);
        type = &found.definition->type;
        // A typedef can be used far from where it stands; what it builds on is looked up from the
        // module again.
        scope = nullptr;
    }
    return names;
}

}
