// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_BASE_NUMBERMAP_H
#define ORV_HOST_BASE_NUMBERMAP_H

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace OrvHost {

/// A map with whole numbers as keys. All entries are in one array, so that adding and taking out
/// many small ones needs no memory of its own for each. Finding, adding and taking out take
/// constant time on average.
///
/// Entries move when another one is added or taken out. They are in the order in which they were
/// added until one is taken out. No lock of its own.
template <class Key, class Value>
class NumberMap {
public:
    using Entry = std::pair<Key, Value>;
    using const_iterator = typename std::vector<Entry>::const_iterator;

    bool empty() const { return mEntries.empty(); }
    std::size_t size() const { return mEntries.size(); }
    const_iterator begin() const { return mEntries.begin(); }
    const_iterator end() const { return mEntries.end(); }

    /// Null if there is none.
    Value* find(Key key) { return const_cast<Value*>(std::as_const(*this).find(key)); }
    const Value* find(Key key) const {
        if (mEntries.empty()) {
            return nullptr;
        }
        const std::uint32_t slot = mSlots[slotOf(key)];
        return slot == kFree ? nullptr : &mEntries[slot].second;
    }

    /// The value of the key, made if it is not there. All or nothing if memory runs out.
    Value& operator[](Key key) {
        if (mSlots.size() < kRoom * (mEntries.size() + 1)) {
            grow();
        }
        std::uint32_t& slot = mSlots[slotOf(key)];
        if (slot == kFree) {
            mEntries.emplace_back(key, Value());
            slot = static_cast<std::uint32_t>(mEntries.size() - 1);
        }
        return mEntries[slot].second;
    }

    /// The last entry takes the place of the one that goes.
    void erase(Key key) noexcept {
        if (mEntries.empty()) {
            return;
        }
        const std::size_t hole = slotOf(key);
        const std::uint32_t place = mSlots[hole];
        if (place == kFree) {
            return;
        }
        if (place != mEntries.size() - 1) {
            mSlots[slotOf(mEntries.back().first)] = place;
            mEntries[place] = std::move(mEntries.back());
        }
        close(hole);
        mEntries.pop_back();
        if (mEntries.empty() && mSlots.size() > kKept) {
            *this = NumberMap(); // not all that the largest transaction needed is kept for ever
        }
    }

    /// Takes all out. The time depends on the entries, not on the room that is kept.
    void clear() noexcept {
        if (mSlots.size() > kKept) {
            *this = NumberMap();
            return;
        }
        for (std::size_t place = 0; place < mEntries.size(); ++place) {
            std::size_t at = homeOf(mEntries[place].first);
            while (mSlots[at] != place) { // slots before it may be free by now
                at = (at + 1) & (mSlots.size() - 1);
            }
            mSlots[at] = kFree;
        }
        mEntries.clear();
    }

private:
    static constexpr std::uint32_t kFree = UINT32_MAX;
    static constexpr std::size_t kRoom = 2; ///< slots for each entry, at least
    static constexpr std::size_t kFirstSize = 16;
    static constexpr std::size_t kKept = 65536;

    // The upper half of the product depends on all bits of the key.
    std::size_t homeOf(Key key) const {
        const std::uint64_t spread = std::uint64_t{key} * 0x9E3779B97F4A7C15U;
        return static_cast<std::size_t>(spread >> 32U) & (mSlots.size() - 1);
    }
    /// The slot of the key, or the free one where it belongs.
    std::size_t slotOf(Key key) const {
        std::size_t at = homeOf(key);
        while (mSlots[at] != kFree && mEntries[mSlots[at]].first != key) {
            at = (at + 1) & (mSlots.size() - 1);
        }
        return at;
    }

    void grow() {
        std::vector<std::uint32_t> larger(mSlots.empty() ? kFirstSize : mSlots.size() * 2, kFree);
        mEntries.reserve(larger.size() / kRoom);
        mSlots.swap(larger);
        for (std::size_t place = 0; place < mEntries.size(); ++place) {
            mSlots[slotOf(mEntries[place].first)] = static_cast<std::uint32_t>(place);
        }
    }

    // Slots that a collision moved to a place after the hole move up, so that no search ends too
    // early.
    void close(std::size_t hole) noexcept {
        const std::size_t mask = mSlots.size() - 1;
        for (std::size_t at = (hole + 1) & mask; mSlots[at] != kFree; at = (at + 1) & mask) {
            const std::size_t fromHome = (at - homeOf(mEntries[mSlots[at]].first)) & mask;
            const std::size_t fromHole = (at - hole) & mask;
            if (fromHome >= fromHole) {
                mSlots[hole] = mSlots[at];
                hole = at;
            }
        }
        mSlots[hole] = kFree;
    }

    std::vector<Entry> mEntries;
    std::vector<std::uint32_t> mSlots; ///< positions in mEntries; their number is a power of two
};

}

#endif
