// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_SOAK_ROUTERTAP_H
#define ORV_TESTS_SOAK_ROUTERTAP_H

#include "router/CmRouter.h"

#include <cstdint>

namespace Soak {

class Tally;

/// Stands between the component and the router, and counts the results that the router returns and
/// gets back.
///
/// Put it in before the component starts, only one at a time. Any thread, each transaction on one.
class RouterTap {
public:
    /// Both arguments must outlive this object, which must outlive the component.
    RouterTap(OrvHost::CmRouter& router, Tally& tally);
    RouterTap(const RouterTap&) = delete;
    RouterTap& operator=(const RouterTap&) = delete;

    /// The number of results that nobody has released.
    static std::int64_t unreleased();
    /// The number of iterators that the router has opened.
    static std::uint64_t iterators();
};

}

#endif
