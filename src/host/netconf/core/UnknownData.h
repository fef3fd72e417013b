// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_CORE_UNKNOWNDATA_H
#define ORV_HOST_NETCONF_CORE_UNKNOWNDATA_H

#include "netconf/wire/RpcError.h"
#include "netconf/wire/WireModel.h"

#include <vector>

struct lyd_node;

namespace OrvHost {

/// The node of the modules that an element, which the parser could not fit into them, is about.
/// Null if there is none.
const lysc_node* meantNode(const WireModel& model, const lyd_node* node);

/// Finds out why the parser could not fit an element and what is below it into the modules: an
/// unknown namespace or element, a key that is missing, a value that its type refuses. At least one
/// error.
std::vector<RpcError> whyUnknown(const WireModel& model, const lyd_node* node);

}

#endif
