// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_AFTERMATH_H
#define ORV_HOST_CLI_AFTERMATH_H

#include "CliError.h"

#include <string>
#include <vector>

namespace OrvHost {

class Session;

/// What a refused write leaves behind in the current transaction, and what is to be done about it:
/// a line for each, none if nothing stays. Without a transaction nothing ever does.
std::vector<std::string> aftermathOf(Session& session, const OperationError& error);

}

#endif
