// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "EditPlan.h"

#include "client/DnResolver.h"

namespace OrvHost {

namespace {

// Clients know the element at the root by its identity, but it is created by its internal name.
NewObject newObjectOf(const Model& model, const std::string& dn) {
    NewObject object = parseNewObject(model, dn);
    if (object.parentDn.empty() && object.className == kRootClass) {
        object.name = kRootName;
    }
    return object;
}

class PlanRunner {
public:
    PlanRunner(const Model& model, Clients& clients, unsigned long txHandle)
        : mModel(model),
          mObjects(clients.version3()),
          mValues(clients.version3_1()),
          mTxHandle(txHandle) {}

    void make(const PlannedCall& call) {
        switch (call.kind) {
        case PlannedCall::Kind::Delete:
            mObjects.remove(mTxHandle, call.dn);
            break;
        case PlannedCall::Kind::Create:
            mObjects.create(mTxHandle, newObjectOf(mModel, call.dn), call.attributes);
            break;
        case PlannedCall::Kind::Set:
            mValues.set(mTxHandle, call.dn, call.attributes);
            break;
        }
    }

private:
    const Model& mModel;
    Client& mObjects;
    Client& mValues;
    unsigned long mTxHandle;
};

}

void runPlan(const EditPlan& plan, const Model& model, Clients& clients, unsigned long txHandle,
             const CancellationToken* token) {
    PlanRunner runner(model, clients, txHandle);
    std::size_t done = 0;
    for (const PlannedCall& call : plan.calls) {
        if (token != nullptr && token->isCancelled()) {
            throw PlanCancelledError(done);
        }
        try {
            runner.make(call);
        } catch (const OperationError& refusal) {
            throw PlanRefusedError(refusal, call, done);
        }
        ++done;
    }
}

}
