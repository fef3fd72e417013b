// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_COMMANDS_REFERENCEREPORT_H
#define ORV_HOST_CLI_COMMANDS_REFERENCEREPORT_H

#include "cli/output/ValueJson.h"
#include "cli/session/Session.h"

#include <string>
#include <vector>

namespace OrvHost {

/// "DN ATTRIBUTE -> TARGET".
std::string toText(const FoundReference& reference);

/// A list of documents with "dn", "attribute" and "target".
JsonValue toJson(const std::vector<FoundReference>& references);

/// Lines for people; empty if there is nothing to say.
std::string noteOn(const ReferenceHint& hint);

/// Adds "missing" to the answer of a command, if there is something to say: the list, or null if it
/// is not known.
void addHint(JsonValue& document, const ReferenceHint& hint);

}

#endif
