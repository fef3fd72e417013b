// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_WIRE_OWNEDTREE_H
#define ORV_HOST_NETCONF_WIRE_OWNEDTREE_H

#include <memory>

struct lyd_node;

namespace OrvHost {

struct TreeDeleter {
    void operator()(lyd_node* first) const;
};
/// A tree of data with all its siblings, or null.
using OwnedTree = std::unique_ptr<lyd_node, TreeDeleter>;

}

#endif
