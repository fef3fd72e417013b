// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_EDITS_EDITPLAN_H
#define ORV_HOST_CLIENT_EDITS_EDITPLAN_H

#include "client/Clients.h"
#include "model/Model.h"

#include <string>
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

/// Makes the calls of \p plan in the transaction \p txHandle, through versions 3 and 3_1, whatever
/// version is chosen. Asks \p token, which may be null, before each call.
///
/// Throws OperationError if the component refuses a call, and CancelledError. A part of the plan is
/// then written and cannot be taken back by itself: abort the transaction.
void runPlan(const EditPlan& plan, const Model& model, Clients& clients, unsigned long txHandle,
             const CancellationToken* token = nullptr);

}

#endif
