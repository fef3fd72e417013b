// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_SCHEMA_RULE_H
#define ORV_HOST_YANG_SCHEMA_RULE_H

#include "yang/schema/Reach.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace OrvHost {

/// A `when` of a node, or of a choice, a case or a container `attributes` around it.
struct Condition {
    Expression expression;
    /// How far the expression's context is above the node, in nodes of data; 0: the node itself.
    std::size_t ascent = 0;
};

/// One rule about the objects at one place of the modules.
struct Rule {
    enum class Kind : std::uint8_t {
        When,     ///< a node is there only under conditions, and maybe is demanded under them
        Choice,   ///< a mandatory choice under conditions
        Count,    ///< objects of a class whose number has a lower bound under conditions
        Must,     ///< `must`
        Unique,   ///< `unique`, and equal keys in a list of structs
        Leafref,  ///< the target of a leafref
        Instance, ///< the target of an instance-identifier
        Distinct, ///< the values of a leaf-list
    };

    Kind kind = Kind::When;
    /// The object that the rule is checked for; null: the top level.
    const ObjectShape* owner = nullptr;
    /// What the rule is about: the owner's list, or something in it.
    const lysc_node* node = nullptr;
    /// The nodes of data from below the owner down to the parent of `node`.
    std::vector<const lysc_node*> path;

    std::vector<Condition> conditions; ///< When, Choice, Count
    bool isDemanded = false;           ///< When: the node must be there if the conditions are true
    const lysc_must* must = nullptr;   ///< Must
    /// Unique: the nodes whose values must differ from one entry to the next, taken together.
    std::vector<const lysc_node*> together;

    Reach reach;
    /// The owner's attribute that `node` is or belongs to; empty if it is no attribute.
    std::string attribute;
    /// The rule does not matter to an owner in which that attribute has no value.
    bool needsValue = false;
    /// Count: the objects that are counted.
    const ObjectShape* counted = nullptr;
};

/// The nodes of data from below the object, or from the top, down to the parent of `node`.
std::vector<const lysc_node*> pathBelow(const ObjectShape* object, const lysc_node* node);

}

#endif
