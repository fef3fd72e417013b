// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_RULES_DATATREE_H
#define ORV_HOST_YANG_RULES_DATATREE_H

#include "model/RuleCheck.h"
#include "yang/schema/YangSchema.h"

#include <libyang/libyang.h>

#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace OrvHost {

/// Some of the objects of a view as a tree of the YANG library, with defaults in their places.
/// First say which objects are needed, then build the tree. One thread.
class DataTree {
public:
    /// \p view must outlive this object.
    DataTree(std::shared_ptr<const YangSchema> schema, const ObjectView& view);
    ~DataTree();
    DataTree(const DataTree&) = delete;
    DataTree& operator=(const DataTree&) = delete;

    /// The object, which must exist, is needed with all its ancestors.
    void need(const std::string& dn);
    const std::set<std::string>& needed() const { return mNeeded; }

    /// Siblings of one class come in the order of the view, of which expressions can ask. It costs
    /// a look at the names of all siblings. Without this call their order is not defined.
    void keepOrder() { mKeepsOrder = true; }

    /// \throws InstanceDataError if the values do not fit the modules' types
    void build();

    /// The first node at the top; null if there is none.
    lyd_node* first() const { return mFirst; }
    /// The object's node; null if it was not needed.
    lyd_node* find(const std::string& dn) const;
    /// The DN of the object that a node is, or belongs to; empty if it belongs to none.
    std::string dnOf(const lyd_node* node) const;

private:
    std::vector<std::string> inOrder() const;
    void addDefaults();
    void index(lyd_node* first, const std::string& parentDn);

    std::shared_ptr<const YangSchema> mSchema;
    const ObjectView& mView;
    std::set<std::string> mNeeded;
    bool mKeepsOrder = false;
    lyd_node* mFirst = nullptr;
    std::unordered_map<std::string, lyd_node*> mNodes;
    std::unordered_map<const lyd_node*, std::string> mDns;
};

}

#endif
