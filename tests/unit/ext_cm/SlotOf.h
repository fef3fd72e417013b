// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_UNIT_EXT_CM_SLOTOF_H
#define ORV_TESTS_UNIT_EXT_CM_SLOTOF_H

#include <cstddef>
#include <cstring>
#include <vector>

/// Places in a table of virtual operations, from 0. A destructor takes two.
using Slots = std::vector<std::ptrdiff_t>;

/// The place of \p member, a pointer to a virtual operation: it holds the place in bytes, plus one.
template <class Member>
std::ptrdiff_t slotOf(Member member) {
    std::ptrdiff_t place = 0;
    static_assert(sizeof(member) >= sizeof(place));
    std::memcpy(&place, &member, sizeof(place));
    return (place - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

#endif
