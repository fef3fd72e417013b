// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_SOAK_ROUTERTAP_H
#define ORV_TESTS_SOAK_ROUTERTAP_H

#include "model/Model.h"
#include "store/CmRouter.h"

#include <cstdint>

namespace Soak {

class Tally;

/// Stands between the component and the router: counts the results that the router gives out and
/// gets back, and keeps account of the work list that the component has to keep.
///
/// That list, of each reference attribute that was written in a class with bidirectional
/// associations, by a client or as a back-pointer, is never taken down: it is the one thing in the
/// component that grows with the number of transactions. What it weighs has to be known for the
/// rest to be seen to stay level. The account is of all writes that reach the router; a
/// back-pointer that the router refuses stands in it and not in the component's list, which is
/// rare.
///
/// Put it in before the component starts, one at a time. Any thread, a transaction on one.
class RouterTap {
public:
    /// All must outlive this object, which must outlive the component.
    RouterTap(const OrvHost::Model& model, OrvHost::CmRouter& router, Tally& tally);
    RouterTap(const RouterTap&) = delete;
    RouterTap& operator=(const RouterTap&) = delete;

    /// Results that nobody has released.
    static std::int64_t unreleased();
    /// Iterators that the router has opened.
    static std::uint64_t iterators();

    /// The calling thread's transaction has ended.
    static void endTransaction();
    static std::uint64_t workListEntries();
    static std::int64_t workListBytes();
};

}

#endif
