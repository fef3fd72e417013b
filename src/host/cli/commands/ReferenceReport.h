// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_COMMANDS_REFERENCEREPORT_H
#define ORV_HOST_CLI_COMMANDS_REFERENCEREPORT_H

#include "cli/output/ValueJson.h"
#include "client/ReferenceSearch.h"

#include <string>
#include <vector>

namespace OrvHost {

/// "DN ATTRIBUTE -> TARGET".
std::string toText(const FoundReference& reference);

/// A list of documents with "dn", "attribute" and "target".
JsonValue toJson(const std::vector<FoundReference>& references);

/// Lines of a hint for people, about references to objects that do not exist; empty without any.
std::string hintOn(const std::vector<FoundReference>& missing);

}

#endif
