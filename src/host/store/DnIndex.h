// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_DNINDEX_H
#define ORV_HOST_STORE_DNINDEX_H

#include "StoreTypes.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace OrvHost {

/// Finds objects by the hash of their DN. It keeps no DN: the caller compares. One DN may have
/// several objects, of which at most one is alive. No lock of its own.
///
/// An open hash table with linear probing, at most seven tenths full; a slot is 8 bytes.
class DnIndex {
public:
    DnIndex();

    /// Makes room, so that \p count more entries can be added without allocating.
    void reserve(std::size_t count);
    void insert(std::uint32_t hash, NodeId node);
    void erase(std::uint32_t hash, NodeId node) noexcept;
    std::size_t bytes() const { return mSlots.capacity() * sizeof(Slot); }

    /// The first object with \p hash that \p matches accepts, or kNoNode.
    template <class Predicate>
    NodeId find(std::uint32_t hash, Predicate&& matches) const {
        for (std::size_t at = hash & mMask; mSlots[at].node != kNoNode; at = (at + 1) & mMask) {
            if (mSlots[at].hash == hash && matches(mSlots[at].node)) {
                return mSlots[at].node;
            }
        }
        return kNoNode;
    }

private:
    struct Slot {
        std::uint32_t hash = 0;
        NodeId node = kNoNode;
    };
    static void place(std::vector<Slot>& slots, std::uint32_t hash, NodeId node) noexcept;

    std::vector<Slot> mSlots; ///< their number is a power of two
    std::size_t mMask;        ///< that number minus one
    std::size_t mUsed = 0;
};

}

#endif
