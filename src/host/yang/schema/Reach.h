// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_SCHEMA_REACH_H
#define ORV_HOST_YANG_SCHEMA_REACH_H

#include "yang/schema/YangSchema.h"

#include <libyang/libyang.h>

#include <map>
#include <set>
#include <string>

namespace OrvHost {

/// An XPath expression of the modules, with what its names mean.
struct Expression {
    const lyxp_expr* parsed = nullptr;
    const lysc_prefix* prefixes = nullptr;
    const lys_module* module = nullptr; ///< of names without a prefix
    const lysc_node* context = nullptr; ///< the node that it starts from; null: the root

    const char* text() const { return lyxp_get_expr(parsed); }
};

/// What must be known of the objects to evaluate an expression.
struct Reach {
    /// Why it cannot be evaluated, for people; empty if it can.
    std::string whyNot;
    /// It asks only about the object and its ancestors.
    bool isOwn = true;
    /// Otherwise all that it asks about is this object, an ancestor of the one that the expression
    /// belongs to or that one itself, and what is below it. Null: it can be anywhere.
    const ObjectShape* root = nullptr;
    /// The objects that it asks about, and which of their attributes.
    std::map<const ObjectShape*, std::set<std::string>> reads;
    /// It can ask about all objects and all of their attributes.
    bool readsAll = false;

    void addReads(const Reach& other);
    /// \p node: in an object.
    void addReadOf(const YangSchema& schema, const lysc_node* node);

private:
    void addAllReads(const YangSchema& schema, const ObjectShape* object);
};

/// The object that a node belongs to; null if it is outside of all.
const ObjectShape* enclosingObject(const YangSchema& schema, const lysc_node* node);

/// The attribute of an object that a node is, or is a part of; null for the object itself and its
/// key.
const ValueShape* attributeAt(const YangSchema& schema, const lysc_node* node,
                              const ObjectShape& object);

/// The expression must be one about configuration, which cannot ask about state.
Reach reachOf(const YangSchema& schema, const Expression& expression);

}

#endif
