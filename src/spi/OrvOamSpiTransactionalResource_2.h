// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_SPI_ORVOAMSPITRANSACTIONALRESOURCE_2_H
#define ORV_SPI_ORVOAMSPITRANSACTIONALRESOURCE_2_H

#include "OrvMgmtSpiInterface_1.h"
#include "OrvReturn.h"
#include "OrvSpiNames.h"

#include <cstddef>

/// \file
/// What a participant of transactions offers. Conventions: OrvConventions.h.

/// A participant of transactions, offered by a component and called by what drives transactions in
/// the host.
///
/// The phases of one transaction: `join`, any operations, `validate` (as often as the host likes,
/// also with operations after it), then `prepare` and `commit`, or `abort`, and always `finish`.
/// The component does not check the order and accepts every handle, known or not.
///
/// All slots are called on the thread that drives the transaction, with no operation of the same
/// transaction running.
struct OrvOamSpiTransactionalResource_2 {
    OrvMgmtSpiInterface_1 identity;

    /// Slot 1. The participant has been enrolled.
    /// When:  started or stopped; may be called from inside OrvOamSpiTransaction_1::join.
    /// Codes: OrvOk. Another participant may refuse with a code. The component does nothing here.
    OrvReturnT (*join)(unsigned long txHandle);

    /// Slot 2. The last chance to refuse.
    /// When:  after a good verdict, or without one. Started or stopped.
    /// Codes: OrvOk; any other refuses the commit. The component does nothing here.
    OrvReturnT (*prepare)(unsigned long txHandle);

    /// Slot 3. The transaction is to take effect.
    /// When:  after all participants have prepared. Started or stopped.
    /// Codes: OrvOk. The component does nothing here: what it wrote, the router holds.
    OrvReturnT (*commit)(unsigned long txHandle);

    /// Slot 4. The transaction is to have no effect.
    /// When:  in place of `commit`. Started or stopped.
    /// Codes: OrvOk. The component does nothing here: undoing its writes is the router's part.
    OrvReturnT (*abort)(unsigned long txHandle);

    /// Slot 5. Drops all that was kept for the transaction. Iterators and values of version 1 that
    /// the component handed out in it are dead from now on.
    /// When:  last, after `commit` or `abort`, also after a failed one. Started or stopped. Takes
    ///        the three locks of the component one after the other; calls nothing of the host.
    /// Codes: OrvOk, also for a handle that is not known. OrvFailure only if a lock fails.
    OrvReturnT (*finish)(unsigned long txHandle);

    /// Slot 6. Judges the references that the transaction wrote, and the far sides that the
    /// component wrote, and nothing else: OrvAssociations.h, 6. Each violation is reported to the
    /// thread context of the calling thread: of unidirectional associations all, of bidirectional
    /// ones the first.
    /// Out:   \p result, with OrvOk: the verdict. With another code it is untouched, and there is
    ///        no verdict.
    /// When:  started, before `prepare`. The component calls back from inside, as their headers
    ///        say: the router (existsMo, getMoAttribute, and the release of what it read), the
    ///        model and the thread context. So the router must still answer for this transaction.
    /// Codes: OrvOk, also for a bad verdict. OrvFailure if \p result is null, or after an exception
    ///        of the host.
    /// Why:   false stands also for "could not be judged": without a model or a thread context,
    ///        when stopped, or when one of them fails while something is judged, no transaction is
    ///        valid. But true does not mean that all was looked at: what could not be followed when
    ///        it was written, because the router or the model failed, or because there is no
    ///        router under VekOamSpiManagedObject_3_RouterId, was never recorded and is not judged
    ///        (OrvAssociations.h, 8).
    OrvReturnT (*validate)(unsigned long txHandle, bool* result);
};

/// Identity of the component's table.
constexpr VekMgmtSpiInterface_1 OrvOamSpiTransactionalResource_2_ExtCmId = {
    OrvOamSpiExtCmRouterService, "OrvOamSpiTransactionalResource", "2"};

static_assert(offsetof(OrvOamSpiTransactionalResource_2, join) == 3 * sizeof(void*), "slot 1");
static_assert(offsetof(OrvOamSpiTransactionalResource_2, prepare) == 4 * sizeof(void*), "slot 2");
static_assert(offsetof(OrvOamSpiTransactionalResource_2, commit) == 5 * sizeof(void*), "slot 3");
static_assert(offsetof(OrvOamSpiTransactionalResource_2, abort) == 6 * sizeof(void*), "slot 4");
static_assert(offsetof(OrvOamSpiTransactionalResource_2, finish) == 7 * sizeof(void*), "slot 5");
static_assert(offsetof(OrvOamSpiTransactionalResource_2, validate) == 8 * sizeof(void*), "slot 6");
static_assert(sizeof(OrvOamSpiTransactionalResource_2) == 9 * sizeof(void*), "six slots");

#endif
