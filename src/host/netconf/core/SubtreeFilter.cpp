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

/// A prefix that the client has declared, as the modules write it. Other texts stay as they are.
std::string withModule(const std::string& text, const lyd_node* node) {
    const std::size_t colon = text.find(':');
    if (node->schema != nullptr || colon == std::string::npos) {
        return text;
    }
    const auto* opaque = reinterpret_cast<const lyd_node_opaq*>(node);
    const lys_module* module = lyplg_type_identity_module(opaque->ctx, nullptr, text.c_str(), colon,
                                                          opaque->format, opaque->val_prefix_data);
    return module != nullptr ? module->name + text.substr(colon) : text;
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

bool holdsMatch(const lyd_node* first, const FilterNode& wanted) {
    for (const lyd_node* node = first; node != nullptr; node = node->next) {
        if (isLeaf(node) && wanted.isAbout(node->schema) && lyd_get_value(node) == wanted.text) {
            return true;
        }
    }
    return false;
}

/// True if something of the node is left.
bool reduce(lyd_node* node, const std::vector<FilterNode>& filter) {
    std::vector<const FilterNode*> deeper;
    for (const FilterNode& one : filter) {
        if (!one.isAbout(node->schema)) {
            continue;
        }
        if (isLeaf(node)) {
            if (one.text.empty() || lyd_get_value(node) == one.text) {
                return true;
            }
            continue;
        }
        if (one.children.empty()) {
            return true;
        }
        const bool isMatched =
            std::all_of(one.children.begin(), one.children.end(), [&](const FilterNode& child) {
                return !child.isContentMatch() || holdsMatch(lyd_child(node), child);
            });
        const bool selectsAll =
            std::all_of(one.children.begin(), one.children.end(),
                        [](const FilterNode& child) { return child.isContentMatch(); });
        if (isMatched && selectsAll) {
            return true;
        }
        if (isMatched) {
            deeper.push_back(&one);
        }
    }
    bool isLeft = false;
    for (lyd_node* child = deeper.empty() ? nullptr : lyd_child(node); child != nullptr;) {
        lyd_node* const next = child->next;
        const bool isKey = lysc_is_key(child->schema);
        bool isKept = false;
        for (const FilterNode* one : deeper) {
            isKept = isKept || reduce(child, one->children);
        }
        isLeft = isLeft || isKept;
        if (!isKept && !isKey) {
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

void TreeDeleter::operator()(lyd_node* first) const {
    lyd_free_all(first);
}

OwnedTree filtered(OwnedTree tree, const std::vector<FilterNode>& filter) {
    lyd_node* first = tree.release();
    for (lyd_node* node = first; node != nullptr;) {
        lyd_node* const next = node->next;
        if (!reduce(node, filter)) {
            first = node == first ? next : first;
            lyd_free_tree(node);
        }
        node = next;
    }
    return OwnedTree(first);
}

}
