// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "SourceLocator.h"

#include <array>
#include <utility>

namespace OrvHost {
namespace {

std::string keywordOf(std::uint16_t nodetype) {
    constexpr std::array<std::pair<std::uint16_t, const char*>, 15> kKeywords = {
        {{LYS_CONTAINER, "container"},
         {LYS_CHOICE, "choice"},
         {LYS_LEAF, "leaf"},
         {LYS_LEAFLIST, "leaf-list"},
         {LYS_LIST, "list"},
         {LYS_ANYXML, "anyxml"},
         {LYS_ANYDATA, "anydata"},
         {LYS_CASE, "case"},
         {LYS_RPC, "rpc"},
         {LYS_ACTION, "action"},
         {LYS_NOTIF, "notification"},
         {LYS_USES, "uses"},
         {LYS_GROUPING, "grouping"},
         {LYS_AUGMENT, "augment"},
         {LYS_INPUT, "input"}}};
    for (const auto& [type, keyword] : kKeywords) {
        if (type == nodetype) {
            return keyword;
        }
    }
    return "output";
}

/// The definition of a node. For a case that is written without its statement the library makes one
/// and frees it again, so a case is found from what is in it.
const lysp_node* definitionOf(const lysc_node* node) {
    if (node->nodetype != LYS_CASE) {
        return static_cast<const lysp_node*>(node->priv);
    }
    const lysc_node* child = lysc_node_child(node);
    const lysp_node* inside = definitionOf(child != nullptr ? child : node->parent);
    const bool isCase = inside->parent != nullptr && inside->parent->nodetype == LYS_CASE;
    return isCase ? inside->parent : inside;
}

/// The path by which ModuleStatements knows the definition.
std::string definitionPath(const lysc_node* compiled) {
    std::string path;
    for (const lysp_node* node = definitionOf(compiled); node != nullptr; node = node->parent) {
        std::string own = keywordOf(node->nodetype);
        if ((node->nodetype & (LYS_INPUT | LYS_OUTPUT)) == 0) {
            own += std::string(" ") + node->name;
        }
        if (!path.empty()) {
            own.append("/").append(path);
        }
        path = std::move(own);
    }
    return path;
}

}

SourcePosition SourceLocator::find(const std::string& module, const std::string& given) const {
    const std::string path = withSingleSpaces(given);
    const auto own = mFinder.found().find(module);
    if (own == mFinder.found().end()) {
        return {};
    }
    if (const int line = own->second.statements.lineOf(path); line > 0) {
        return {own->second.file, line};
    }
    // The definition is from a submodule or from a grouping of another module.
    for (const auto& [name, text] : mFinder.found()) {
        if (const int line = text.statements.lineOf(path); line > 0) {
            return {text.file, line};
        }
    }
    return {own->second.file, 0};
}

SourcePosition SourceLocator::of(const lysc_node* node) const {
    return find(node->module->name, definitionPath(node));
}

SourcePosition SourceLocator::of(const lysc_node* node, const std::string& statement,
                                 const std::string& argument) const {
    const std::string path = definitionPath(node);
    const SourcePosition exact = find(node->module->name, path + "/" + statement + " " + argument);
    return exact.line > 0 ? exact : of(node);
}

SourcePosition SourceLocator::of(const lys_module* module, const std::string& statement,
                                 const std::string& argument) const {
    return find(module->name, statement + " " + argument);
}

std::string pathOf(const lysc_node* node) {
    std::string path;
    for (; node != nullptr; node = node->parent) {
        if ((node->nodetype & (LYS_CHOICE | LYS_CASE)) != 0) {
            continue;
        }
        const bool isFirst = node->parent == nullptr;
        std::string step = "/";
        if (isFirst) {
            step.append(node->module->name).append(":");
        }
        path = step.append(node->name).append(path);
    }
    return path;
}

}
