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

}

void runPlan(const EditPlan& plan, const Model& model, Clients& clients, unsigned long txHandle,
             const CancellationToken* token) {
    for (const PlannedCall& call : plan.calls) {
        if (token != nullptr) {
            token->throwIfCancelled();
        }
        switch (call.kind) {
        case PlannedCall::Kind::Delete:
            clients.version3().remove(txHandle, call.dn);
            break;
        case PlannedCall::Kind::Create:
            clients.version3().create(txHandle, newObjectOf(model, call.dn), call.attributes);
            break;
        case PlannedCall::Kind::Set:
            clients.version3_1().set(txHandle, call.dn, call.attributes);
            break;
        }
    }
}

}
