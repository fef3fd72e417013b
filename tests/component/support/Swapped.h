// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_COMPONENT_SUPPORT_SWAPPED_H
#define ORV_TESTS_COMPONENT_SUPPORT_SWAPPED_H

#include <utility>

namespace Scripted {

/// While it lives, \p place holds another value: for example a function of a test's own in a table
/// of the host, past the journal, for what is called a million times.
template <class Thing>
class Swapped {
public:
    Swapped(Thing& place, Thing meanwhile)
        : mPlace(place), mKept(std::exchange(place, std::move(meanwhile))) {}
    Swapped(const Swapped&) = delete;
    Swapped& operator=(const Swapped&) = delete;
    ~Swapped() { mPlace = std::move(mKept); }

private:
    Thing& mPlace;
    Thing mKept;
};

}

#endif
