// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "TypedefChain.h"

#include <string_view>

namespace OrvHost {
namespace {

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

/// The typedef with that name in a module and its submodules, all of which see each other's
/// typedefs. Only the module itself keeps its submodules.
const lysp_tpdf* findIn(const lysp_module* part, std::string_view name) {
    const lysp_module* module = part->mod->parsed;
    const lysp_tpdf* found = findIn(module->typedefs, name);
    LY_ARRAY_COUNT_TYPE i = 0;
    for (i = 0; found == nullptr && i < LY_ARRAY_COUNT(module->includes); ++i) {
        found = findIn(module->includes[i].submodule->typedefs, name);
    }
    return found;
}

std::string_view ownPrefixOf(const lysp_module* module) {
    return module->is_submod != 0 ? reinterpret_cast<const lysp_submodule*>(module)->prefix
                                  : module->mod->prefix;
}

/// The module that `prefix` means in the module where it was written.
const lysp_module* resolvePrefix(const lysp_module* module, std::string_view prefix) {
    if (prefix == ownPrefixOf(module)) {
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

/// A typedef and the module that defines it.
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
    return {findIn(type->pmod, name), type->pmod};
}

}

std::vector<std::string> typedefsOf(const lysc_node* node) {
    std::vector<std::string> names;
    const auto* scope = static_cast<const lysp_node*>(node->priv);
    for (const lysp_type* type = parsedTypeOf(scope); type != nullptr && type->pmod != nullptr;) {
        const FoundTypedef found = findTypedef(type, scope);
        if (found.definition == nullptr) {
            break; // a built-in type of the language
        }
        names.push_back(std::string(found.module->mod->name) + ":" + found.definition->name);
        if (std::string_view(type->name).find(':') != std::string_view::npos) {
            scope = nullptr; // the typedef is in another module
        }
        type = &found.definition->type;
    }
    return names;
}

}
