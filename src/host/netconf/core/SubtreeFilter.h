// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_CORE_SUBTREEFILTER_H
#define ORV_HOST_NETCONF_CORE_SUBTREEFILTER_H

#include "netconf/wire/OwnedTree.h"

#include <string>
#include <vector>

struct lyd_node;
struct lysc_node;

namespace OrvHost {

/// An element of a subtree filter of RFC 6241, section 6.
struct FilterNode {
    std::string nameSpace; ///< empty: any
    std::string name;
    std::string text; ///< of an element without children: the value that is wanted; empty: any
    /// The text with the name of the module in place of the prefix, if it can be an identity. Nodes
    /// of the library have it so in any case.
    std::string identity;
    std::vector<FilterNode> children;

    /// True if the node of the modules can be the one that is meant.
    bool isAbout(const lysc_node* node) const;
    bool isContentMatch() const { return children.empty() && !text.empty(); }
};

/// The elements of a parsed filter, whose first one may be null.
std::vector<FilterNode> readFilter(const lyd_node* first);

/// Takes out of a tree what the filter does not select.
OwnedTree filtered(OwnedTree tree, const std::vector<FilterNode>& filter);

}

#endif
