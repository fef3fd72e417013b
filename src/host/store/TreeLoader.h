// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_TREELOADER_H
#define ORV_HOST_STORE_TREELOADER_H

#include "CommitLog.h"
#include "MoTree.h"

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace OrvHost {

/// Puts the objects of a log into an empty tree. A copy works on the same tree.
class TreeLoader {
public:
    /// Both must outlive the object.
    TreeLoader(const Model& model, MoTree& tree);

    /// \p row must come after that of its parent. Throws LogUnavailable, with a text, if the row
    /// does not hold an object of the model.
    void operator()(const ObjectRow& row);

    /// Throws LogUnavailable if an object is of a commit after \p last.
    void requireCommitsUntil(CommitNumber last) const;

private:
    /// The objects so far, and what is known of the parent that was asked for last.
    struct Loaded {
        std::vector<std::pair<ObjectId, NodeId>> nodes; ///< in the order of their numbers
        CommitNumber lastChange = 0;                    ///< the last commit that changed one
        ObjectId parent = 0;
        NodeId parentNode = kRootNode;
        std::string dn;               ///< of the parent, with a comma, then of the object
        std::size_t parentLength = 0; ///< of the part of `dn` that belongs to the parent
    };

    void selectParent(const ObjectRow& row);
    void requireOrder(const ObjectRow& row) const;
    void requireFit(const ObjectRow& row) const;

    const Model& mModel;
    MoTree& mTree;
    std::shared_ptr<Loaded> mLoaded;
};

}

#endif
