// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_CORE_ACTIONREADER_H
#define ORV_HOST_NETCONF_CORE_ACTIONREADER_H

#include "client/ReadValue.h"
#include "netconf/wire/WireModel.h"

#include <string>
#include <vector>

struct lyd_node;

namespace OrvHost {

/// A call of an action of RFC 7950, section 7.15, as the component takes it.
struct ActionRequest {
    std::string dn; ///< external
    const ActionShape* shape = nullptr;
    const ActionDef* def = nullptr;
    std::vector<NamedValue> parameters;
};

/// The action in the data of a request, which can be the node itself. Null if there is none: the
/// node is that of another operation.
const lyd_node* actionIn(const lyd_node* request);

/// \p action: what actionIn found; parameters that are not given are not added. \p classes is the
/// model of the schema of \p model. Throws RpcErrors with all that is wrong with the names of
/// objects and with the parameters, but for values that the component judges.
ActionRequest readAction(const WireModel& model, const Model& classes, const lyd_node* action);

/// The nodes of the output, in XML. Empty if the action has returned nothing. Throws RpcErrors if
/// the component's answer does not fit the module.
std::string outputText(const WireModel& model, const ActionRequest& request,
                       const ReadValue& result);

}

#endif
