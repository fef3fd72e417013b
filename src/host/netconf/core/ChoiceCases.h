// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_CORE_CHOICECASES_H
#define ORV_HOST_NETCONF_CORE_CHOICECASES_H

#include "netconf/core/EditOperation.h"

#include <map>

struct lyd_node;
struct lysc_node;

namespace OrvHost {

/// The choice of which two nodes of the modules, children of one parent, are different cases, so
/// that only one of them can be there. Null if they can stand together.
const lysc_node* choiceBetween(const lysc_node* one, const lysc_node* other);

/// What an edit gives a value to among the children of one parent, as far as they are of choices.
/// One thread.
class TakenCases {
public:
    /// \p element: of the edit, with \p operation; \p node: what it is in the modules. Only what
    /// sets something takes its case.
    void add(const lyd_node* element, EditOperation operation, const lysc_node* node);

    /// An element that takes another case than one before it; null if there is none.
    const lyd_node* secondCase() const;

    /// True if the edit takes another case than that of \p node, which therefore goes.
    bool exclude(const lysc_node* node) const;

    bool isEmpty() const { return mTaken.empty(); }

private:
    std::map<const lysc_node*, const lyd_node*> mTaken; ///< the first element of each node
};

}

#endif
