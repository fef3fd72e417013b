// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ClassNodes.h"

#include "yang/schema/AssociationReader.h"

#include <string_view>

namespace OrvHost {
namespace {

constexpr std::string_view kTransparent = "attributes";

bool hasOneKey(const lysc_node* list) {
    const lysc_node* key = keyOf(list);
    return key != nullptr && (key->next == nullptr || !lysc_is_key(key->next));
}

}

const lysc_node* keyOf(const lysc_node* list) {
    const lysc_node* child = lysc_node_child(list);
    return child != nullptr && lysc_is_key(child) ? child : nullptr;
}

bool isClass(const lysc_node* node) {
    return node->nodetype == LYS_LIST && hasOneKey(node) && !hasStatement(node, "struct");
}

bool isTransparentInClass(const lysc_node* node) {
    return node->nodetype == LYS_CONTAINER && node->name == kTransparent &&
           (node->flags & LYS_PRESENCE) == 0;
}

bool isCallable(const lysc_node* node) {
    return (node->nodetype & (LYS_RPC | LYS_ACTION)) != 0;
}

}
