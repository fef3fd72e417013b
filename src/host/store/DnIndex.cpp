// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "DnIndex.h"

namespace OrvHost {

namespace {

constexpr std::size_t kFirstSize = 64;

bool isTooFull(std::size_t used, std::size_t size) {
    return used * 10 > size * 7;
}

}

DnIndex::DnIndex() : mSlots(kFirstSize), mMask(kFirstSize - 1) {}

void DnIndex::place(std::vector<Slot>& slots, std::uint32_t hash, NodeId node) noexcept {
    const std::size_t mask = slots.size() - 1;
    std::size_t at = hash & mask;
    while (slots[at].node != kNoNode) {
        at = (at + 1) & mask;
    }
    slots[at] = {hash, node};
}

void DnIndex::reserve(std::size_t count) {
    std::size_t size = mSlots.size();
    while (isTooFull(mUsed + count, size)) {
        size *= 2;
    }
    if (size == mSlots.size()) {
        return;
    }
    std::vector<Slot> larger(size);
    for (const Slot& slot : mSlots) {
        if (slot.node != kNoNode) {
            place(larger, slot.hash, slot.node);
        }
    }
    mSlots.swap(larger);
    mMask = size - 1;
}

void DnIndex::insert(std::uint32_t hash, NodeId node) {
    reserve(1);
    place(mSlots, hash, node);
    ++mUsed;
}

void DnIndex::erase(std::uint32_t hash, NodeId node) noexcept {
    std::size_t hole = hash & mMask;
    while (mSlots[hole].node != node) {
        if (mSlots[hole].node == kNoNode) {
            return;
        }
        hole = (hole + 1) & mMask;
    }
    // Entries that a collision moved to a place after the hole move up, so that no search ends too
    // early.
    for (std::size_t at = (hole + 1) & mMask; mSlots[at].node != kNoNode; at = (at + 1) & mMask) {
        // A search for an entry starts at its home, so it may move only if the hole is not before
        // that.
        const std::size_t distanceFromHome = (at - mSlots[at].hash) & mMask;
        const std::size_t distanceFromHole = (at - hole) & mMask;
        if (distanceFromHome >= distanceFromHole) {
            mSlots[hole] = mSlots[at];
            hole = at;
        }
    }
    mSlots[hole] = Slot();
    --mUsed;
}

}
