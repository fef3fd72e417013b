// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_NODETABLE_H
#define ORV_HOST_STORE_NODETABLE_H

#include "StoreTypes.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace OrvHost {

/// A growing array of nodes that never move, in blocks of a fixed size.
template <class Node>
class NodeTable {
public:
    Node& operator[](NodeId id) { return mBlocks[id / kBlock][id % kBlock]; }
    const Node& operator[](NodeId id) const { return mBlocks[id / kBlock][id % kBlock]; }

    std::size_t size() const { return mSize; }
    /// Adds a node at the end. All or nothing if memory runs out.
    void add() {
        if (mSize == mBlocks.size() * kBlock) {
            mBlocks.push_back(std::make_unique<Node[]>(kBlock));
        }
        ++mSize;
    }

private:
    static constexpr std::size_t kBlock = 1024;

    std::vector<std::unique_ptr<Node[]>> mBlocks;
    std::size_t mSize = 0;
};

}

#endif
