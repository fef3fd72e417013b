// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "SubtreeFilter.h"

#include <libyang/libyang.h>
#include <libyang/plugins_types.h>

#include <algorithm>

namespace OrvHost {

namespace {

std::string withoutBlanks(const std::string& text) {
    const std::size_t begin = text.find_first_not_of(" \t\r\n");
    const std::size_t end = text.find_last_not_of(" \t\r\n");
    return begin == std::string::npos ? "" : text.substr(begin, end - begin + 1);
}

/// The text as the name of an identity, "module:name": the client's prefix, or none, stands for a
/// namespace that it has declared. Other texts stay as they are.
std::string withModule(const std::string& text, const lyd_node* node) {
    if (node->schema != nullptr || text.empty()) {
        return text;
    }
    const std::size_t colon = text.find(':');
    const std::size_t prefix = colon == std::string::npos ? 0 : colon;
    const auto* opaque = reinterpret_cast<const lyd_node_opaq*>(node);
    if (opaque->val_prefix_data == nullptr) { // no namespace is declared
        return text;
    }
    const lys_module* module = lyplg_type_identity_module(
        opaque->ctx, nullptr, text.c_str(), prefix, opaque->format, opaque->val_prefix_data);
    return module == nullptr            ? text
           : colon == std::string::npos ? std::string(module->name) + ":" + text
                                        : module->name + text.substr(colon);
}

FilterNode readNode(const lyd_node* node) {
    FilterNode read;
    if (node->schema != nullptr) {
        read.nameSpace = node->schema->module->ns;
        read.name = node->schema->name;
    } else {
        const auto* opaque = reinterpret_cast<const lyd_node_opaq*>(node);
        read.nameSpace = opaque->name.module_ns != nullptr ? opaque->name.module_ns : "";
        read.name = opaque->name.name;
    }
    read.children = readFilter(lyd_child(node));
    const bool isInner =
        node->schema != nullptr && (node->schema->nodetype & (LYS_LEAF | LYS_LEAFLIST)) == 0;
    if (read.children.empty() && !isInner) {
        const char* const value = lyd_get_value(node);
        read.text = withoutBlanks(value != nullptr ? value : "");
        read.identity = withModule(read.text, node);
    }
    return read;
}

bool isLeaf(const lyd_node* node) {
    return (node->schema->nodetype & (LYS_LEAF | LYS_LEAFLIST)) != 0;
}

bool hasValue(const lyd_node* leaf, const FilterNode& wanted) {
    const auto* const schema = reinterpret_cast<const lysc_node_leaf*>(leaf->schema);
    return lyd_get_value(leaf) ==
           (schema->type->basetype == LY_TYPE_IDENT ? wanted.identity : wanted.text);
}

bool holdsMatch(const lyd_node* first, const FilterNode& wanted) {
    for (const lyd_node* node = first; node != nullptr; node = node->next) {
        if (isLeaf(node) && wanted.isAbout(node->schema) && hasValue(node, wanted)) {
            return true;
        }
    }
    return false;
}

bool matches(const lyd_node* node, const FilterNode& filter) {
    return std::all_of(filter.children.begin(), filter.children.end(),
                       [&](const FilterNode& child) {
                           return !child.isContentMatch() || holdsMatch(lyd_child(node), child);
                       });
}

bool hasOnlyMatches(const FilterNode& filter) {
    return std::all_of(filter.children.begin(), filter.children.end(),
                       [](const FilterNode& child) { return child.isContentMatch(); });
}

using Filters = std::vector<const FilterNode*>;

Filters pointersTo(const std::vector<FilterNode>& nodes) {
    Filters pointers;
    for (const FilterNode& node : nodes) {
        pointers.push_back(&node);
    }
    return pointers;
}

/// Frees what none of the filters wants. True if something of the node is left; if nothing is, it
/// is for the caller to free.
bool reduce(lyd_node* node, const Filters& filters) {
    Filters deeper; // of all filters about the node at once: what one wants another may not
    for (const FilterNode* const one : filters) {
        if (!one->isAbout(node->schema)) {
            continue;
        }
        if (isLeaf(node)) {
            if (one->text.empty() || hasValue(node, *one)) {
                return true;
            }
            continue;
        }
        if (!matches(node, *one)) {
            continue;
        }
        if (hasOnlyMatches(*one)) {
            return true;
        }
        const Filters inside = pointersTo(one->children);
        deeper.insert(deeper.end(), inside.begin(), inside.end());
    }
    bool isLeft = false;
    for (lyd_node* child = deeper.empty() ? nullptr : lyd_child(node); child != nullptr;) {
        lyd_node* const next = child->next;
        const bool isKept = reduce(child, deeper);
        isLeft = isLeft || isKept;
        if (!isKept && !lysc_is_key(child->schema)) {
            lyd_free_tree(child);
        }
        child = next;
    }
    return isLeft;
}

}

bool FilterNode::isAbout(const lysc_node* node) const {
    return name == node->name && (nameSpace.empty() || nameSpace == node->module->ns);
}

std::vector<FilterNode> readFilter(const lyd_node* first) {
    std::vector<FilterNode> nodes;
    for (const lyd_node* node = first; node != nullptr; node = node->next) {
        nodes.push_back(readNode(node));
    }
    return nodes;
}

OwnedTree filtered(OwnedTree tree, const std::vector<FilterNode>& filter) {
    const Filters filters = pointersTo(filter);
    lyd_node* first = tree.release();
    for (lyd_node* node = first; node != nullptr;) {
        lyd_node* const next = node->next;
        if (!reduce(node, filters)) {
            first = node == first ? next : first;
            lyd_free_tree(node);
        }
        node = next;
    }
    return OwnedTree(first);
}

}
