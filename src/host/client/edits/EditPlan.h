// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_EDITS_EDITPLAN_H
#define ORV_HOST_CLIENT_EDITS_EDITPLAN_H

#include "client/Clients.h"
#include "model/Model.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace OrvHost {

/// One call of a plan.
struct PlannedCall {
    enum class Kind { Delete, Create, Set };

    Kind kind;
    std::string dn;                     ///< external
    std::vector<NamedValue> attributes; ///< none with Delete
};

/// Calls in the order in which they must be made, in the state for which they were planned.
struct EditPlan {
    std::vector<PlannedCall> calls;
};

/// A call of a plan that the component refused.
class PlanRefusedError : public OperationError, public PartlyWritten {
public:
    /// \p done: the number of calls of the plan that were made before \p call.
    PlanRefusedError(const OperationError& refusal, PlannedCall call, std::size_t done)
        : OperationError(refusal), PartlyWritten(done), mCall(std::move(call)) {}

    /// The subject of a create is the parent; this names the new object.
    const PlannedCall& call() const { return mCall; }

private:
    PlannedCall mCall;
};

/// A plan that was cancelled between two calls.
class PlanCancelledError : public CancelledError, public PartlyWritten {
public:
    explicit PlanCancelledError(std::size_t done) : PartlyWritten(done) {}
};

/// Makes the calls of \p plan in the transaction \p txHandle, through versions 3 and 3_1, whatever
/// version is chosen. Asks \p token, which may be null, before each call.
///
/// Throws PlanRefusedError if the component refuses a call, and PlanCancelledError. What was made
/// before cannot be taken back by itself: abort the transaction. Throws NotOfferedError before the
/// first call.
void runPlan(const EditPlan& plan, const Model& model, Clients& clients, unsigned long txHandle,
             const CancellationToken* token = nullptr);

}

#endif
