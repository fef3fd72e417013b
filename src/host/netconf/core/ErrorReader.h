// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_CORE_ERRORREADER_H
#define ORV_HOST_NETCONF_CORE_ERRORREADER_H

#include "netconf/wire/RpcError.h"
#include "yang/schema/YangSchema.h"

#include <exception>
#include <vector>

namespace OrvHost {

class ClientSession;

/// The namespace of the project's own content of error-info.
constexpr const char* kViolationNamespace = "urn:orv:netconf-errors";

/// Turns what a request threw into the errors of its reply: at least one, and for a refused
/// validation one for each message, to the letter. \p session is asked for explanations.
std::vector<RpcError> errorsOf(const std::exception_ptr& error, const YangSchema& schema,
                               ClientSession& session);

}

#endif
