// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_ROUTER_CMROUTER_H
#define ORV_HOST_ROUTER_CMROUTER_H

#include "ActionHandler.h"
#include "OrvInterfaceBinders.h"
#include "RouterCore.h"
#include "RouterTable1.h"
#include "RouterTable3.h"
#include "RouterTable3_1.h"
#include "base/OnlyOne.h"
#include "store/MoStore.h"
#include "transactions/ThreadContext.h"

namespace OrvHost {

/// The CM router: the managed-object tables "1", "3" and "3_1" over an MoStore, all with internal
/// DNs, and the store's part in transactions.
///
/// The router knows a transaction from its join to its finish: enrol it in each transaction
/// (TransactionService::enrolInEach). An operation with any other handle is answered with
/// OrvNotActive. Reads see the committed state as it was at join, and the transaction's own writes.
/// Every write is checked against the model; the reason for a refusal goes to the thread context as
/// a message of the kind Explanation. At validate the router checks what can be seen only in the
/// whole transaction: mandatory attributes of created objects, choices, the number of objects under
/// one parent, further rules (setRules), and conflicts with other transactions; these messages are
/// of the kind Verdict.
///
/// The router does not check how many references an attribute holds: while back-pointers are
/// updated, the number can be one that the model does not allow. The component checks it at
/// validate.
///
/// Threads: any number at once, each transaction on one thread at a time. Only one object at a time
/// can live in a process (see the binders).
class CmRouter {
public:
    /// All arguments must outlive the router; \p store must use the same \p model.
    /// \throws std::logic_error if it does not, or if there is a router already
    CmRouter(const Model& model, MoStore& store, ThreadContext& threadContext);
    CmRouter(const CmRouter&) = delete;
    CmRouter& operator=(const CmRouter&) = delete;

    /// Sets the handler that runs actions; without one every action succeeds with an empty result.
    /// Do not call it while operations run.
    void setActionHandler(ActionHandler handler);
    /// Sets who is asked for the author of a transaction that joins; without it none has one. Do
    /// not call it while operations run.
    void setAuthorLookup(AuthorLookup lookup);

    /// Sets what is checked at validate besides the model's own rules; null: nothing. \p rules must
    /// outlive the router. Do not call it while operations run.
    void setRules(const RuleCheck* rules);
    /// What the check of these rules has cost at the latest validation of an open transaction;
    /// nothing if there was none. Throws HostError for an unknown transaction.
    std::optional<RuleCost> ruleCostOf(unsigned long txHandle) const;

    /// What a commit of an open transaction would change. Throws HostError for an unknown
    /// transaction.
    ChangeSet changesOf(unsigned long txHandle) const;

    /// OrvOamSpiManagedObject_1_RouterId.
    OrvOamSpiManagedObject_1* getInterface1() { return mTable1.getInterface(); }
    /// OrvOamSpiManagedObject_3_RouterId.
    OrvOamSpiManagedObject_3* getInterface3() { return mTable3.getInterface(); }
    /// VekOamSpiManagedObject_3_RouterId: the same functions.
    OrvOamSpiManagedObject_3* getVekInterface3() { return mTable3.getVekInterface(); }
    /// VekOamSpiManagedObject_3_1_RouterId.
    VekOamSpiManagedObject_3_1* getInterface3_1() { return mTable3_1.getInterface(); }
    /// The router as a participant of transactions, to be enrolled in each of them:
    /// OrvOamSpiTransactionalResource_2 as the router offers it.
    OrvOamSpiTransactionalResource_2* getResource() { return mResource.getInterface(); }

private:
    OnlyOne<CmRouter> mOnlyOne; ///< before the binders, which end the process
    RouterCore mCore;
    RouterTable1 mTable1;
    RouterTable3 mTable3;
    RouterTable3_1 mTable3_1;
    Orv::TransactionalResource2Binder<RouterCore> mResource;
};

}

#endif
