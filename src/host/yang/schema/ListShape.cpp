// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ListShape.h"

#include "yang/schema/AssociationReader.h"
#include "yang/schema/ClassNodes.h"
#include "yang/types/TypeDescription.h"
#include "yang/types/TypeFacts.h"

#include <algorithm>
#include <vector>

namespace OrvHost {
namespace {

std::string contentsText(const lysc_node* parent, bool isInClass);

std::string typeText(const lysc_type* leafType) {
    const lysc_type* type = followLeafrefs(leafType);
    std::string text = describeType(type);
    LY_ARRAY_COUNT_TYPE i = 0;
    if (type->basetype == LY_TYPE_UNION) {
        const auto* types = as<lysc_type_union>(type)->types;
        for (i = 0; i < LY_ARRAY_COUNT(types); ++i) {
            text += "|" + typeText(types[i]);
        }
    } else if (type->basetype == LY_TYPE_STRING) {
        const auto* patterns = as<lysc_type_str>(type)->patterns;
        for (i = 0; i < LY_ARRAY_COUNT(patterns); ++i) {
            text += std::string(patterns[i]->inverted != 0 ? " not " : " ") + patterns[i]->expr;
        }
    } else if (type->basetype == LY_TYPE_ENUM || type->basetype == LY_TYPE_IDENT) {
        for (const std::string& name : enumeratorsOf(type)) {
            text += " " + name;
        }
    } else if (type->basetype == LY_TYPE_BITS) {
        const auto* bits = as<lysc_type_bits>(type)->bits;
        for (i = 0; i < LY_ARRAY_COUNT(bits); ++i) {
            text += std::string(" ") + bits[i].name;
        }
    }
    return text;
}

/// The keys in their order, which is that in the names of objects.
std::string keysText(const lysc_node* list) {
    std::string text;
    for (const lysc_node* key : keysOf(list)) {
        text += std::string(key->name) + " ";
    }
    return text;
}

/// What the node's kind has besides the flags that all nodes have.
std::string detailsText(const lysc_node* node, bool isInClass) {
    const auto boundsText = [](std::uint32_t min, std::uint32_t max) {
        return " " + std::to_string(min) + ".." + std::to_string(max);
    };
    switch (node->nodetype) {
    case LYS_LEAF:
        return typeText(typeOfLeaf(node));
    case LYS_LEAFLIST: {
        const auto* list = reinterpret_cast<const lysc_node_leaflist*>(node);
        return typeText(typeOfLeaf(node)) + boundsText(list->min, list->max);
    }
    case LYS_LIST: {
        if (isInClass && isClass(node)) {
            return "class " + keysText(node) + contentsText(node, true);
        }
        const auto* list = reinterpret_cast<const lysc_node_list*>(node);
        return boundsText(list->min, list->max) + contentsText(node, false);
    }
    case LYS_CONTAINER:
        return contentsText(node, false);
    default:
        return "";
    }
}

std::string nodeText(const lysc_node* node, bool isInClass) {
    constexpr std::uint16_t kFlags = LYS_CONFIG_MASK | LYS_MAND_TRUE | LYS_KEY | LYS_PRESENCE;
    std::string text = std::string(lys_nodetype2str(node->nodetype)) + " " + node->name + " " +
                       std::to_string(node->flags & kFlags) + " ";
    if (node->parent != nullptr && node->parent->nodetype == LYS_CASE) {
        text += std::string("case ") + node->parent->name + " ";
    }
    if (lysc_node_when(node) != nullptr) {
        text += "when ";
    }
    const bool isLeaf = (node->nodetype & (LYS_LEAF | LYS_LEAFLIST)) != 0;
    if (isLeaf && isReferenceByType(node)) {
        text += "reference ";
    }
    return text + detailsText(node, isInClass) + associationsText(node);
}

std::string contentsText(const lysc_node* parent, bool isInClass) {
    std::vector<std::string> contents;
    const lysc_node* node = nullptr;
    while ((node = lys_getnext(node, parent, nullptr, 0)) != nullptr) {
        contents.push_back(nodeText(node, isInClass));
    }
    std::sort(contents.begin(), contents.end());
    std::string text = "{";
    for (const std::string& one : contents) {
        text += one + ";\n";
    }
    return text + "}";
}

}

std::string shapeTextOf(const lysc_node* list) {
    return keysText(list) + contentsText(list, true);
}

}
