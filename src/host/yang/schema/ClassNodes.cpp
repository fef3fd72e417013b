// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ClassNodes.h"

#include "yang/schema/AssociationReader.h"
#include "yang/types/TypeFacts.h"

#include <string_view>

namespace OrvHost {
namespace {

constexpr std::string_view kTransparent = "attributes";

bool canBePath(const lysc_type* type) {
    type = followLeafrefs(type);
    if (type->basetype != LY_TYPE_UNION) {
        return type->basetype == LY_TYPE_INST;
    }
    const auto* types = as<lysc_type_union>(type)->types;
    LY_ARRAY_COUNT_TYPE i = 0;
    for (i = 0; i < LY_ARRAY_COUNT(types); ++i) {
        if (canBePath(types[i])) {
            return true;
        }
    }
    return false;
}

}

std::vector<const lysc_node*> keysOf(const lysc_node* list) {
    std::vector<const lysc_node*> keys;
    for (const lysc_node* child = lysc_node_child(list); child != nullptr && lysc_is_key(child);
         child = child->next) {
        keys.push_back(child);
    }
    return keys;
}

bool isClass(const lysc_node* node) {
    return node->nodetype == LYS_LIST && !keysOf(node).empty() && !hasStatement(node, "struct") &&
           whyNoClass(node).empty();
}

// A reference in a name would be neither translated nor updated. An instance-identifier names an
// entry with "=", which cannot be in a name, and how it is written depends on the format of the
// data.
std::string whyNoClass(const lysc_node* list) {
    const std::vector<const lysc_node*> keys = keysOf(list);
    for (const lysc_node* key : keys) {
        if (isReferenceByType(key)) {
            return std::string("its key \"") + key->name + "\" is a reference";
        }
        if (followLeafrefs(typeOfLeaf(key))->basetype == LY_TYPE_INST) {
            return std::string("its key \"") + key->name + "\" is an instance-identifier";
        }
        if (keys.size() > 1 && canBePath(typeOfLeaf(key))) {
            return std::string("its key \"") + key->name + "\" can be an instance-identifier";
        }
    }
    return "";
}

bool isTransparentInClass(const lysc_node* node) {
    return node->nodetype == LYS_CONTAINER && node->name == kTransparent &&
           (node->flags & LYS_PRESENCE) == 0;
}

bool isCallable(const lysc_node* node) {
    return (node->nodetype & (LYS_RPC | LYS_ACTION)) != 0;
}

}
