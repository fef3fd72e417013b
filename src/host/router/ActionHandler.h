// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_ROUTER_ACTIONHANDLER_H
#define ORV_HOST_ROUTER_ACTIONHANDLER_H

#include "model/Model.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace OrvHost {

/// A call of an action, checked against the model. References are valid during the call.
struct ActionCall {
    unsigned long txHandle;
    const std::string& dn; ///< internal
    const ClassDef& moc;
    const ActionDef& action;
    /// In the caller's order; parameters that were not given and have a default are at the end.
    const std::vector<NamedValue>& parameters;
};

/// Runs actions. Returns the result, or nothing for an empty one; throws HostError to refuse. It is
/// called on the client's thread while the host holds no lock; it may use the router's tables in
/// the same transaction.
using ActionHandler = std::function<std::optional<AttributeValue>(const ActionCall& call)>;

}

#endif
