// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_SOAK_ROUTERTAP_H
#define ORV_TESTS_SOAK_ROUTERTAP_H

#include "model/Model.h"
#include "router/CmRouter.h"

#include <cstdint>

namespace Soak {

class Tally;

/// Stands between the component and the router: counts the results that the router returns and gets
/// back, and computes the memory of the work list that the component has to keep.
///
/// That list has an entry for each reference attribute that was written in a class with
/// bidirectional associations, by a client or as a back-pointer. Entries are never removed: it is
/// the only part of the component that grows with the number of transactions. Its size must be
/// known to check that the rest does not grow. All writes that reach the router are counted; a
/// back-pointer that the router refuses is counted here but is not in the component's list, which
/// is rare.
///
/// Put it in before the component starts, only one at a time. Any thread, each transaction on one.
class RouterTap {
public:
    /// All arguments must outlive this object, which must outlive the component.
    RouterTap(const OrvHost::Model& model, OrvHost::CmRouter& router, Tally& tally);
    RouterTap(const RouterTap&) = delete;
    RouterTap& operator=(const RouterTap&) = delete;

    /// The number of results that nobody has released.
    static std::int64_t unreleased();
    /// The number of iterators that the router has opened.
    static std::uint64_t iterators();

    /// Call it when the calling thread's transaction has ended.
    static void endTransaction();
    static std::uint64_t workListEntries();
    static std::int64_t workListBytes();
};

}

#endif
