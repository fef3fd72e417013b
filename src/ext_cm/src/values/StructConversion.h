// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_STRUCTCONVERSION_H
#define ORV_EXT_CM_STRUCTCONVERSION_H

#include "AutoMemory.h"

#include <cstdint>
#include <type_traits>
#include <vector>

namespace OrvExtCmRouterService {

/// Rebuilds the structs of a value for one of the interface versions, member by member in their
/// order and each with all that is nested in it before the next. Does so without recursion: the
/// depth is the producer's to choose, and the host's threads may have little stack.
///
/// \p Maker makes the values of its version:
///
///     using Container = ...;
///     Container* convert(Container* original, Slot*& slots);
///
/// convert gives what takes the place of a member's value, which may be null where the version
/// permits it. For a struct that must be rebuilt it also gives the zeroed slots to rebuild it into.
///
/// The members themselves, with copies of their names, are made here.
template <class Maker>
class StructConversion {
public:
    using Container = typename Maker::Container;
    using Slot = std::remove_pointer_t<decltype(Container::values)>;
    using Member = std::remove_pointer_t<decltype(Slot::structValue)>;

    /// \p memory will own the members.
    StructConversion(Maker& maker, Orv::AutoMemory& memory) : mMaker(maker), mMemory(memory) {}

    /// Rebuilds all values of \p original, at least one, into \p slots.
    void rebuild(const Container& original, Slot* slots) {
        enter(original, slots);
        while (!mLevels.empty()) {
            advance();
        }
    }

private:
    /// A container whose structs are being rebuilt.
    struct Level {
        const Slot* originals;
        Slot* slots;
        std::uint32_t left; ///< values, the current one included
        const Member* next; ///< of the current value, not yet rebuilt
        Member** link;      ///< where the next rebuilt member goes
    };

    void enter(const Container& original, Slot* slots) {
        mLevels.push_back({original.values, slots, original.count, original.values->structValue,
                           &slots->structValue});
    }

    void advance() {
        Level& level = mLevels.back();
        if (level.next != nullptr) {
            rebuildNext(level);
        } else if (--level.left == 0) {
            mLevels.pop_back();
        } else {
            level.next = (++level.originals)->structValue;
            level.link = &(++level.slots)->structValue;
        }
    }

    void rebuildNext(Level& level) {
        const Member& original = *level.next;
        auto* const rebuilt = mMemory.malloc<Member>(1);
        rebuilt->name = mMemory.strdup(original.name);
        *level.link = rebuilt;
        level.link = &rebuilt->next;
        level.next = original.next;
        Slot* slots = nullptr;
        rebuilt->value = mMaker.convert(original.value, slots);
        if (slots != nullptr) {
            enter(*original.value, slots); // and `level` may be gone
        }
    }

    Maker& mMaker;
    Orv::AutoMemory& mMemory;
    std::vector<Level> mLevels;
};

}

#endif
