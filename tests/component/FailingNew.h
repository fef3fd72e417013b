// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_COMPONENT_FAILINGNEW_H
#define ORV_TESTS_COMPONENT_FAILINGNEW_H

#include <cstddef>

/// \file
/// This program's own `operator new`, which serves every shared object in the process as well. It
/// watches what a thread allocates in the component and can refuse it.

namespace Scripted {

/// While one lives, `new` is watched on its thread, except in HostCode. At most one at a time.
class NewWatch {
public:
    /// Refuses the \p failing th allocation, counted from 1, with std::bad_alloc; 0: none.
    explicit NewWatch(std::size_t failing = 0);
    NewWatch(const NewWatch&) = delete;
    NewWatch& operator=(const NewWatch&) = delete;
    ~NewWatch();

    /// How many allocations there have been, the refused one included.
    std::size_t seen() const;
    /// True if the refused one has been reached.
    bool sprung() const;
};

/// The blocks that were allocated under some watch and are still there, in the whole process.
std::size_t watchedBlocks();

}

#endif
