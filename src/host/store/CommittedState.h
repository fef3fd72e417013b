// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_COMMITTEDSTATE_H
#define ORV_HOST_STORE_COMMITTEDSTATE_H

#include "ClaimTable.h"
#include "VersionedTree.h"

namespace OrvHost {

/// The objects of a store, and which transaction may write which of them. A store whose objects are
/// loaded anew gets another one; transactions that are open then keep theirs as long as they need
/// it.
struct CommittedState {
    explicit CommittedState(const Model& model) : tree(model) {}

    VersionedTree tree;
    ClaimTable claims;
};

}

#endif
