// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_REFUSEDWRITE_H
#define ORV_HOST_CLIENT_REFUSEDWRITE_H

#include "ClientErrors.h"

#include <string>
#include <vector>

namespace OrvHost {

class ClientSession;

/// What a refused write leaves in the current transaction, and what the user should do about it:
/// one line each, no line if nothing is left. Without a transaction nothing is ever left.
std::vector<std::string> explainWhatStays(ClientSession& session, const OperationError& error);

}

#endif
